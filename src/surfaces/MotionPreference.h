#pragma once

#include "platform/Windows.h"

namespace nevo {

/// How much may move in this program's windows; follows the user's wish at once.
class MotionPreference {
public:
    explicit MotionPreference(Windows& of) : windows(of), reducedMotion(of.prefersReducedMotion()) {
        windows.reducedMotionDidChange = [this] { reducedMotion = windows.prefersReducedMotion(); };
    }
    ~MotionPreference() { windows.reducedMotionDidChange = nullptr; }
    MotionPreference(const MotionPreference&) = delete;
    MotionPreference& operator=(const MotionPreference&) = delete;

    /// How one page takes the place of another.
    Transition betweenPages() const {
        return reducedMotion ? Transition::crossFade : Transition::move;
    }

private:
    Windows& windows;
    bool reducedMotion;
};

}  // namespace nevo
