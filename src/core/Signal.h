#pragma once

#include <functional>

#include "platform/NotificationCenter.h"

namespace nevo {

/// Tells observers that something has changed or is about to, without saying what
/// (`objectWillChange`).
class Signal {
public:
    Registration observe(std::function<void()> observer) {
        return center.addObserver(name,
                                  [call = std::move(observer)](const Notification&) { call(); });
    }
    void send() { center.post(name); }

private:
    static constexpr const char* name = "change";
    NotificationCenter center;
};

}  // namespace nevo
