#pragma once

#include <map>
#include <memory>

#include "platform/Platform.h"

namespace nevo {

/// Covers the menu bar of every display but the main one, where the user wants that. Main thread
/// only.
class SecondaryMenuBarCoverController
    : public std::enable_shared_from_this<SecondaryMenuBarCoverController> {
public:
    /// Covers nothing yet; follows the displays from here on.
    static std::shared_ptr<SecondaryMenuBarCoverController> create(const Platform& platform);

    /// As last applied. Whoever changes it calls `update`.
    bool isEnabled = false;
    /// Brings the covers in line with the displays.
    void update();

private:
    explicit SecondaryMenuBarCoverController(const Platform& platform);
    void cover(const Screen& screen);

    const Platform& platform;
    /// By display.
    std::map<std::uint32_t, std::unique_ptr<Panel>> windows;
    Registration observer;
};

}  // namespace nevo
