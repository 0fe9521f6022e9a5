#pragma once

#include "desktop/DesktopSession.h"
#include "platform/sim/SimDesktop.h"
#include "platform/x11/X11Desktop.h"
#include "platform/x11/XServer.h"

namespace nevo::desktoptest {

/// Where an item's position is stored.
struct PlaceKey {
    std::string domain;
    std::string name;
};

/// The simulated desktop, with the verbs of the contract.
class SimSession : public testing::Test {
protected:
    /// The program runs, and does nothing of its own.
    SimSession() {
        desktop.start([](const Platform&) { return std::make_shared<int>(); });
    }
    Platform platform() { return desktop.platform(); }
    /// Another program shows an item; gives its process.
    ProcessId showItem(const std::string& label);
    void endProgram(const std::string& label) { desktop.applications.kill(label); }
    static PlaceKey placeKey(const std::string& label) {
        return {"org.example." + label, SimItemPlan().name};
    }
    /// Where the item's window really is, on its way too.
    Rect standing(const std::string& label);
    /// A hand holds Super and drags. Origin at the top left.
    void drag(Point from, Point to);
    void movePointer(Point to) { desktop.events.move(to); }
    bool soon(const std::function<bool()>& condition);
    /// Another size for the main screen, and a second one beside it: origin at the top left of the
    /// main one.
    void setScreens(Size main, const Rect& second);
    void removeSecondScreen() { desktop.removeDisplay(2); }

private:
    SimDesktop desktop;
};

/// The real one, with the same verbs: the platform as the manager has it, inside the test.
class X11Session : public DesktopSession {
protected:
    void SetUp() override;
    void TearDown() override;
    Platform platform() { return desktop->platform(); }
    ProcessId showItem(const std::string& label);
    void endProgram(const std::string& label);
    PlaceKey placeKey(const std::string& label) const;
    Rect standing(const std::string& label) const { return itemOf(label).place; }
    void drag(Point from, Point to) { hand->superDrag(from, to); }
    void movePointer(Point to) { hand->moveTo(to); }
    bool soon(const std::function<bool()>& condition);
    void setScreens(Size main, const Rect& second);
    void removeSecondScreen() { removeSecondMonitor(); }

private:
    Item itemOf(const std::string& label) const;

    std::map<std::string, Process*> shown;
    std::string programName = "contract";
    int argc = 1;
    std::array<char*, 2> argv{programName.data(), nullptr};
    std::unique_ptr<XServer> xServer;
    std::unique_ptr<X11Desktop> desktop;
};

}  // namespace nevo::desktoptest
