#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "desktop/BarView.h"
#include "desktop/Hand.h"
#include "desktop/Picture.h"
#include "desktop/Process.h"

namespace nevo::desktoptest {

using Names = std::vector<std::string>;

/// A window right on the root.
struct TopWindow {
    xcb_window_t window = XCB_WINDOW_NONE;
    Rect place;
    std::string name;
};

/// A display, a session bus and a home of its own for each test, and the verbs of a person who sits
/// before it. A verb that comes to nothing ends the test, with what stands on the desktop. Whatever
/// a test started has to be running at its end and then to end well when it is told to, unless the
/// test ended it.
class DesktopSession : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Programs.
    Process& startBar(const std::string& options = {});
    Process& startNevo();
    /// A program of the distribution, by its command. Later on it goes by its first word.
    Process& startProgram(const std::string& command);
    /// A window manager, and waits until it is at work.
    void startWindowManager();
    /// Starts the bar and five tray programs, and waits until all stand in the bar.
    void startDesktop(const std::string& barOptions = {});
    /// Ends it at once, and waits until it is gone.
    void kill(Process& program, int signal);
    /// Runs a program that can't go on, with settings on top of the session's: true when it ends
    /// with status 1 and one plain line on standard error.
    testing::AssertionResult refuses(const std::string& program, const Environment& changes = {});

    Process& bar() { return *barProcess; }
    Process& nevo() const { return *nevoProcess; }
    Process& program(const std::string& name);
    /// Where a domain of stored values is kept.
    std::filesystem::path defaultsFile(const std::string& domain) const;
    const Environment& environment() const { return settings; }

    // What stands in the bar. Items go by the name of the program that was started; Nevo's own by
    // their own names.
    std::vector<Item> items() const { return barView->items(); }
    Item item(const std::string& name) const;
    std::string nameOf(const Item& item) const;
    /// The programs' items, Nevo's left out, left to right, those without a width too.
    std::vector<Item> programItems() const;
    Names names() const;
    /// Of those the ones that a person can see.
    Names namesOnScreen() const;
    Item toggleItem() const { return item("Nevo_Toggle"); }
    /// Waits until the items stand side by side up to the bar's right part, with nothing between
    /// them; false when they never do.
    bool becomesDense() const;

    /// The visible windows, the topmost last.
    std::vector<TopWindow> topWindows() const;
    /// Of those the ones that reach below the bar.
    std::vector<Rect> windowsBelowBar() const;

    // The person.
    void click(const Item& item) { hand->click(item.place.center()); }
    void rightClick(const Item& item) { hand->click(item.place.center(), 3); }
    void superDrag(const Item& item, double toX);
    /// Gives the display another main monitor, "WIDTH/mmxHEIGHT/mm+X+Y" within the screen.
    void setMonitor(const std::string& geometry) {
        addMonitor("*main-" + geometry, geometry, "screen");
    }
    /// A monitor beside the main one.
    void addSecondMonitor(const std::string& geometry) { addMonitor("second", geometry, "none"); }
    void removeSecondMonitor() { runXrandr({"--delmonitor", "second"}); }
    Picture screenshot() const { return Picture::ofScreen(*server); }

    /// Waits until `condition` holds; ends the test when it doesn't.
    void waitFor(const std::string& what, const std::function<bool()>& condition) const;
    /// Waits until so many programs' items can be seen, and have found their final width.
    void waitForItems(std::size_t count) const;
    /// Waits until exactly these programs' items can be seen, in this order.
    void waitForOnScreen(const Names& expected) const;

    /// All that the programs have written, and the items as they stand.
    std::string log() const;

    std::unique_ptr<xcb::Connection> server;
    std::unique_ptr<BarView> barView;
    std::unique_ptr<Hand> hand;
    std::filesystem::path folder;

private:
    void runXrandr(std::vector<std::string> arguments);
    void addMonitor(const std::string& name, const std::string& geometry,
                    const std::string& output);
    std::unique_ptr<Process> start(const std::string& command, const std::string& logName);
    void expectAlive(Process& process);
    void expectGoodEnd(std::unique_ptr<Process>& process);
    void expectSilentSanitizers() const;
    void keepEvidence() const;

    Environment settings;
    std::unique_ptr<Process> xServer;
    std::unique_ptr<Process> sessionBus;
    std::vector<std::unique_ptr<Process>> programs;
    std::unique_ptr<Process> barProcess;
    std::unique_ptr<Process> nevoProcess;
};

}  // namespace nevo::desktoptest
