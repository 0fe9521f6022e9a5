#include "desktop/DesktopSession.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/xcb/Properties.h"

namespace nevo::desktoptest {

namespace fs = std::filesystem;

namespace {

/// Icons ask for several widths one after the other when they have docked.
constexpr auto longestPauseBetweenWidths = std::chrono::milliseconds(300);

Names wordsOf(const std::string& command) {
    std::istringstream stream(command);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::string joined(const Names& names) { return fmt::format("[{}]", fmt::join(names, ", ")); }

fs::path newFolder() {
    std::string pattern = fs::temp_directory_path() / "nevo-desktop-XXXXXX";
    return ::mkdtemp(pattern.data()) == nullptr ? fs::path() : fs::path(pattern);
}

}  // namespace

void DesktopSession::SetUp() {
    folder = newFolder();
    for (const char* name :
         {"log", "home", "home/.config", "home/.local/share", "home/.cache", "tmp"}) {
        fs::create_directories(folder / name);
    }
    fs::create_directory(folder / "runtime");
    fs::permissions(folder / "runtime", fs::perms::owner_all);
    settings = {{"PATH", "/usr/local/bin:/usr/bin:/bin"},
                {"HOME", folder / "home"},
                {"XDG_CONFIG_HOME", folder / "home/.config"},
                {"XDG_RUNTIME_DIR", folder / "runtime"},
                // Where programs look for another instance of theirs.
                {"TMPDIR", folder / "tmp"},
                {"LANG", "C.UTF-8"},
                // Each line counts, and stands where it belongs.
                {"NEVO_LOG_ALL", "1"},
                // Toolkits would wait for accessibility and settings services that aren't there.
                {"NO_AT_BRIDGE", "1"},
                {"GSETTINGS_BACKEND", "memory"},
                {"LSAN_OPTIONS", "print_suppressions=0:suppressions=" NEVO_LEAK_RULES}};
    std::string line;
    std::tie(xServer, line) = startAndReadLine(
        {"Xvfb", "-displayfd", "{}", "-screen", "0", "1600x600x24", "-noreset", "-nolisten", "tcp"},
        settings, folder / "log/Xvfb");
    settings["DISPLAY"] = ":" + line;
    std::tie(sessionBus, line) =
        startAndReadLine({"dbus-daemon", "--session", "--nofork", "--print-address={}"}, settings,
                         folder / "log/dbus-daemon");
    settings["DBUS_SESSION_BUS_ADDRESS"] = line;
    // The machine's own is nobody's business here.
    settings["DBUS_SYSTEM_BUS_ADDRESS"] = line;

    // The connection of the test itself takes it from there.
    ::setenv("DISPLAY", settings["DISPLAY"].c_str(), 1);
    server = xcb::Connection::open(line);
    if (!server) throw Failed(line);
    barView = std::make_unique<BarView>(*server);
    hand = std::make_unique<Hand>(*server);
}

void DesktopSession::TearDown() {
    if (HasFailure()) {
        keepEvidence();
    } else {
        for (auto& process : programs) expectAlive(*process);
        expectGoodEnd(nevoProcess);
        expectGoodEnd(barProcess);
        expectSilentSanitizers();
        if (HasFailure()) keepEvidence();
    }
    // In the order in which a session ends; the display last.
    nevoProcess.reset();
    programs.clear();
    barProcess.reset();
    sessionBus.reset();
    hand.reset();
    barView.reset();
    server.reset();
    xServer.reset();
    fs::remove_all(folder);
}

void DesktopSession::expectAlive(Process& process) {
    EXPECT_TRUE(process.isRunning())
        << process.name() << " ended with " << process.exitStatus().value_or(0) << ":\n"
        << process.output();
}

void DesktopSession::expectGoodEnd(std::unique_ptr<Process>& process) {
    if (!process) return;
    process->signal(SIGTERM);
    EXPECT_EQ(process->waitForEnd(), 0) << process->name() << ":\n" << process->output();
}

void DesktopSession::expectSilentSanitizers() const {
    for (const char* name : {"nevo", "nevo-menubar"}) {
        std::string text = readFile(folder / "log" / name);
        for (const char* complaint : {"Sanitizer", "runtime error:"}) {
            EXPECT_EQ(text.find(complaint), std::string::npos) << name << ":\n" << text;
        }
    }
}

void DesktopSession::keepEvidence() const {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    fs::path place =
        fs::path(NEVO_FAILURE_FOLDER) / fmt::format("{}.{}", info->test_suite_name(), info->name());
    std::error_code ignored;
    fs::remove_all(place, ignored);
    fs::create_directories(place, ignored);
    Process copy({"cp", "-R", (folder / "log").string() + "/.", folder / "home", place}, settings,
                 "/dev/null");
    copy.waitForEnd();
    if (server) screenshot().save(place / "screen.png");
    std::ofstream(place / "state.txt") << log();
    ADD_FAILURE() << log() << "\nPicture and logs: " << place.string();
}

std::unique_ptr<Process> DesktopSession::start(const std::string& command,
                                               const std::string& logName) {
    return std::make_unique<Process>(wordsOf(command), settings, folder / "log" / logName);
}

Process& DesktopSession::startBar(const std::string& options) {
    barProcess = start(NEVO_BAR_PROGRAM " " + options, "nevo-menubar");
    waitFor("the bar owns the tray", [this] { return barView->control() != 0; });
    return *barProcess;
}

Process& DesktopSession::startNevo() {
    nevoProcess = start(NEVO_PROGRAM, "nevo");
    waitFor("Nevo's toggle stands in the bar", [this] {
        auto all = items();
        return std::any_of(all.begin(), all.end(), [this](const Item& item) {
            return nameOf(item) == "Nevo_Toggle" && item.onScreen;
        });
    });
    return *nevoProcess;
}

Process& DesktopSession::startProgram(const std::string& command) {
    programs.push_back(start(command, fs::path(wordsOf(command)[0]).filename()));
    return *programs.back();
}

void DesktopSession::startWindowManager() {
    startProgram("openbox");
    xcb::Atoms atoms(server->get(), {});
    waitFor("a window manager runs", [&] {
        xcb::PropertyRead read(server->get(), server->root(), atoms["_NET_SUPPORTING_WM_CHECK"]);
        return read.number().has_value();
    });
}

void DesktopSession::startDesktop(const std::string& barOptions) {
    startBar(barOptions);
    Names commands{"volumeicon", "parcellite", "xfce4-clipman", "qlipper",
                   "qasmixer --tray --no-single"};
    for (const std::string& command : commands) startProgram(command);
    waitForItems(commands.size());
}

void DesktopSession::kill(Process& process, int signal) {
    process.signal(signal);
    process.waitForEnd();
    for (auto* ours : {&barProcess, &nevoProcess}) {
        if (ours->get() == &process) {
            ours->reset();
            return;
        }
    }
    std::erase_if(programs, [&](const auto& each) { return each.get() == &process; });
}

testing::AssertionResult DesktopSession::refuses(const std::string& program,
                                                 const Environment& changes) {
    Environment changed = settings;
    for (const auto& [key, value] : changes) changed[key] = value;
    Process process({program}, changed, folder / "log" / "refused");
    int status = process.waitForEnd();
    std::string text = process.output();
    fs::remove(folder / "log" / "refused");
    auto lines = std::count(text.begin(), text.end(), '\n');
    if (status == 1 && lines == 1 && text.ends_with(".\n")) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << process.name() << " ended with " << status << " and said:\n"
           << text;
}

Process& DesktopSession::program(const std::string& name) {
    for (auto& process : programs) {
        if (process->name() == name) return *process;
    }
    throw Failed("the test hasn't started " + name);
}

fs::path DesktopSession::defaultsFile(const std::string& domain) const {
    return folder / "home/.config/nevo/defaults" / (domain + ".json");
}

std::string DesktopSession::nameOf(const Item& item) const {
    for (const auto& process : programs) {
        if (process->pid() == item.pid) return process->name();
    }
    return item.name;
}

Item DesktopSession::item(const std::string& name) const {
    for (const Item& item : items()) {
        if (nameOf(item) == name) return item;
    }
    throw Failed("there is no item of " + name);
}

std::vector<Item> DesktopSession::programItems() const {
    auto all = items();
    std::erase_if(
        all, [this](const Item& item) { return nevoProcess && item.pid == nevoProcess->pid(); });
    return all;
}

Names DesktopSession::names() const {
    Names names;
    for (const Item& item : programItems()) names.push_back(nameOf(item));
    return names;
}

Names DesktopSession::namesOnScreen() const {
    Names names;
    for (const Item& item : programItems()) {
        if (item.onScreen) names.push_back(nameOf(item));
    }
    return names;
}

bool DesktopSession::becomesDense() const {
    return holdsSoon([this] {
        auto all = items();
        double right = barView->systemAreaLeft();
        return std::all_of(all.rbegin(), all.rend(), [&](const Item& item) {
            bool touches = item.slot.maxX() == right;
            right = item.slot.x;
            return touches;
        });
    });
}

std::vector<TopWindow> DesktopSession::topWindows() const {
    auto c = server->get();
    xcb::Atoms atoms(c, {});
    xcb::Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(c, xcb_query_tree(c, server->root()), nullptr));
    std::vector<TopWindow> windows;
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        xcb_window_t window = xcb_query_tree_children(tree.get())[i];
        xcb::PropertyRead name(c, window, atoms["_NET_WM_NAME"]);
        xcb::Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr));
        xcb::Reply<xcb_get_geometry_reply_t> place(
            xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr));
        if (!attributes || !place || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
        Rect rect{static_cast<double>(place->x), static_cast<double>(place->y),
                  static_cast<double>(place->width), static_cast<double>(place->height)};
        windows.push_back({window, rect, name.text().value_or("")});
    }
    return windows;
}

std::vector<Rect> DesktopSession::windowsBelowBar() const {
    std::vector<Rect> places;
    for (const TopWindow& window : topWindows()) {
        if (window.place.maxY() > barView->frame().maxY()) places.push_back(window.place);
    }
    return places;
}

void DesktopSession::superDrag(const Item& item, double toX) {
    Point from = item.place.center();
    hand->superDrag(from, {toX, from.y});
}

void DesktopSession::addMonitor(const std::string& name, const std::string& geometry,
                                const std::string& output) {
    // A new name for each main monitor: the server refuses one in use, and drops a monitor whose
    // output goes to another.
    runXrandr({"--setmonitor", name, geometry, output});
}

void DesktopSession::runXrandr(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "xrandr");
    Process tool(std::move(arguments), settings, folder / "log/xrandr");
    if (tool.waitForEnd() != 0) throw Failed("there is no such monitor:\n" + tool.output());
}

void DesktopSession::waitFor(const std::string& what,
                             const std::function<bool()>& condition) const {
    if (holdsSoon(condition)) return;
    throw Failed("It isn't so that " + what);
}

void DesktopSession::waitForItems(std::size_t count) const {
    using Clock = std::chrono::steady_clock;
    std::vector<Rect> places;
    auto since = Clock::now();
    waitFor(fmt::format("{} items stand still in the bar", count), [&] {
        std::vector<Rect> now;
        for (const Item& item : programItems()) {
            if (item.onScreen) now.push_back(item.place);
        }
        if (now != places) since = Clock::now();
        places = now;
        return places.size() == count && Clock::now() - since > longestPauseBetweenWidths;
    });
}

void DesktopSession::waitForOnScreen(const Names& expected) const {
    waitFor(joined(expected) + " can be seen", [&] { return namesOnScreen() == expected; });
}

std::string DesktopSession::log() const {
    std::ostringstream text;
    text << "Bar: " << testing::PrintToString(barView ? barView->frame() : Rect()) << "\n";
    if (barView) {
        for (const Item& item : items()) text << "  " << item << "\n";
    }
    for (const char* name : {"nevo-menubar", "nevo"}) {
        std::istringstream lines(readFile(folder / "log" / name));
        std::vector<std::string> last;
        for (std::string line; std::getline(lines, line);) last.push_back(line);
        constexpr std::size_t most = 40;
        if (last.size() > most) last.erase(last.begin(), last.end() - most);
        text << name << "'s log:\n  " << fmt::format("{}", fmt::join(last, "\n  ")) << "\n";
    }
    return text.str();
}

}  // namespace nevo::desktoptest
