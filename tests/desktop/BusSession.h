#pragma once

#include <QCoreApplication>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include "desktop/DesktopSession.h"

namespace nevo::desktoptest {

/// A desktop on whose bus the test itself offers something.
class BusSession : public DesktopSession {
protected:
    void SetUp() override {
        DesktopSession::SetUp();
        application = std::make_unique<QCoreApplication>(argc, argv.data());
    }
    void TearDown() override {
        application.reset();
        DesktopSession::TearDown();
    }

    /// As `waitFor`, but answers calls from the bus meanwhile.
    void await(const std::string& what, const std::function<bool()>& condition) {
        waitFor(what, [&] {
            QCoreApplication::processEvents();
            return condition();
        });
    }
    std::string busAddress() const { return environment().at("DBUS_SESSION_BUS_ADDRESS"); }

private:
    std::string programName = "test";
    int argc = 1;
    std::array<char*, 2> argv{programName.data(), nullptr};
    std::unique_ptr<QCoreApplication> application;
};

}  // namespace nevo::desktoptest
