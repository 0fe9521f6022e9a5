// What the bar leaves to its helper: pictures by name, read from files that nobody has checked, and
// menus of other programs.

#include <fmt/format.h>
#include <sys/stat.h>

#include <QImage>
#include <cstring>
#include <fstream>
#include <sstream>

#include "desktop/BusSession.h"
#include "desktop/FakeMenu.h"

namespace nevo::desktoptest {
namespace {

namespace fs = std::filesystem;

constexpr int ended(int signal) { return 128 + signal; }

class HelperIcons : public DesktopSession {
protected:
    struct Answer {
        std::string header;
        /// In the middle: ARGB, premultiplied.
        std::uint32_t pixel = 0;
    };

    /// Gives the helper's exit status.
    int ask(const std::string& lines) {
        fs::path input = folder / "questions";
        std::ofstream(input, std::ios::binary) << lines;
        fs::path output = folder / "answers";
        Process helper(
            {"sh", "-c", R"(exec "$0" --icons < "$1" > "$2")", NEVO_BAR_HELPER, input, output},
            environment(), folder / "log/helper");
        int status = helper.waitForEnd();
        take(readFile(output));
        return status;
    }

    void take(const std::string& bytes) {
        answers.clear();
        for (std::size_t at = 0; at < bytes.size();) {
            std::size_t end = bytes.find('\n', at);
            Answer answer{bytes.substr(at, end - at)};
            std::istringstream header(answer.header);
            std::size_t id = 0, width = 0, height = 0;
            header >> id >> width >> height;
            ASSERT_LE(end + 1 + width * height * 4, bytes.size()) << answer.header;
            std::size_t middle = end + 1 + (height / 2 * width + width / 2) * 4;
            if (width > 0) std::memcpy(&answer.pixel, bytes.data() + middle, 4);
            answers.push_back(answer);
            at = end + 1 + width * height * 4;
        }
    }

    std::string write(const fs::path& name, const std::string& text) {
        fs::path file = folder / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }
    std::string paint(const fs::path& name, int width, int height, QColor color,
                      QImage::Format format = QImage::Format_ARGB32) {
        QImage image(width, height, format);
        image.fill(color);
        std::string file = write(name, {});
        image.save(QString::fromStdString(file), "png");
        return file;
    }
    std::string draw(const fs::path& name, int width, int height, const std::string& content) {
        return write(name, fmt::format("<svg xmlns='http://www.w3.org/2000/svg' width='{}' "
                                       "height='{}'>{}</svg>",
                                       width, height, content));
    }
    static std::string rect(int width, int height, const std::string& color) {
        return fmt::format("<rect width='{}' height='{}' fill='{}'/>", width, height, color);
    }

    std::vector<Answer> answers;
};

TEST_F(HelperIcons, comeByNameAndByPathInTheSizeThatFits) {
    write("home/.config/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Mine\n");
    write("home/.icons/Mine/index.theme",
          "[Icon Theme]\nName=Mine\nDirectories=16\n[16]\nSize=16\nType=Fixed\n");
    paint("home/.icons/Mine/16/audio-x-generic.png", 16, 16, Qt::blue);
    paint("theme/hicolor/22x22/status/app.png", 22, 22, Qt::red);
    paint("theme/hicolor/48x48/status/app.png", 48, 48, Qt::green);
    paint("theme/wide.png", 16, 8, QColor(255, 0, 0, 128));
    paint("theme/audio-x-generic.png", 8, 8, Qt::black);
    draw("theme/shape-symbolic.svg", 16, 16, rect(16, 16, "#2e3436"));
    std::string drawing = draw("drawing.svg", 40000, 20000, rect(40000, 20000, "#00f"));
    std::string xpm =
        write("old.xpm", "/* XPM */\nstatic char* x[] = {\"1 1 1 1\",\"a c #ff00ff\",\"a\"};");

    struct Case {
        int size;
        bool hasFolder;
        std::string name;
        std::string header;
        std::uint32_t pixel;
    };
    const std::vector<Case> cases = {
        {22, true, "app", "22 22", 0xffff0000},
        {40, true, "app", "40 40", 0xff00ff00},
        {64, true, "app", "48 48", 0xff00ff00},
        {65, true, "app", "65 65", 0xff00ff00},
        {24, false, "app", "0 0", 0},
        {24, true, "wide", "24 12", 0x80800000},
        {24, true, "audio-x-generic", "24 24", 0xff000000},
        {24, false, "audio-x-generic", "24 24", 0xff0000ff},
        {24, true, "shape", "0 0", 0},
        {24, true, "shape-symbolic", "24 24", 0xffffffff},
        {24, false, drawing, "24 12", 0xff0000ff},
        {24, true, xpm, "24 24", 0xffff00ff},
        {24, true, "../theme/wide", "0 0", 0},
        {24, true, "nothing-of-that-name", "0 0", 0},
        {24, true, "", "0 0", 0},
    };
    std::string lines;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        lines += fmt::format("{} {}\t{}\t{}\n", i, cases[i].size,
                             cases[i].hasFolder ? (folder / "theme").string() : "", cases[i].name);
    }
    EXPECT_EQ(ask(lines), 0) << readFile(folder / "log/helper");
    ASSERT_EQ(answers.size(), cases.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(answers[i].header, fmt::format("{} {}", i, cases[i].header)) << cases[i].name;
        EXPECT_EQ(answers[i].pixel, cases[i].pixel) << cases[i].name << " " << cases[i].size;
    }
}

TEST_F(HelperIcons, brokenFilesCostOnlyTheirPicture) {
    std::string good = paint("good.png", 8, 8, Qt::red);
    std::string whole = readFile(good);
    fs::path pipe = folder / "pipe.png";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::string lines;
    for (const std::string& file :
         {paint("huge.png", 20000, 20000, Qt::white, QImage::Format_Mono),
          paint("long.png", 4097, 1, Qt::white),
          write("heavy.png", whole + std::string(5'000'000, ' ')),
          write("cut.png", whole.substr(0, whole.size() / 2)), write("text.png", "no picture"),
          write("empty.svg", ""), write("broken.svg", "<svg><g>"), pipe.string(), folder.string(),
          std::string("/dev/zero")}) {
        lines += fmt::format("1 24\t\t{}\n", file);
    }
    EXPECT_EQ(ask(lines + fmt::format("2 24\t\t{}\n", good)), 0);
    ASSERT_EQ(answers.size(), 11U);
    for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(answers[i].header, "1 0 0") << i;
    EXPECT_EQ(answers.back().header, "2 24 24");

    // Four megabytes that draw millions of dashes: the helper gives up by itself.
    std::string line = "<path stroke='red' stroke-dasharray='.01' d='M0 0";
    for (int i = 0; i < 100; ++i) line += "L16 0L0 16";
    line += "'/>";
    std::string bomb;
    while (bomb.size() + line.size() < 4'000'000) bomb += line;
    lines = fmt::format("3 24\t\t{}\n4 24\t\t{}\n", good, draw("bomb.svg", 16, 16, bomb));
    EXPECT_EQ(ask(lines), ended(SIGPROF));
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].header, "3 24 24");
}

TEST_F(HelperIcons, anotherFormOfLineEndsItWithASentence) {
    for (std::string line : {"", "1 24", "1 24\tname", "x 24\t\tname", "1 7\t\tname",
                             "1 257\t\tname", "1 24x\t\tname", "-1 24\t\tname", "1\t24\tname"}) {
        fs::remove(folder / "log/helper");
        EXPECT_EQ(ask("5 24\t\tnothing-of-that-name\n" + line + "\n6 24\t\tx\n"), 2) << line;
        EXPECT_EQ(answers.size(), 1U) << line;
        std::string text = readFile(folder / "log/helper");
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
        EXPECT_TRUE(text.ends_with(".\n")) << text;
    }
    EXPECT_EQ(ask("1 24\t\t" + std::string(100'000, 'x') + "\n"), 2);
}

class HelperMenu : public BusSession {
protected:
    static constexpr Point beside{1000, 500};

    void SetUp() override {
        BusSession::SetUp();
        offer();
    }
    void TearDown() override {
        helper.reset();
        program.reset();
        BusSession::TearDown();
    }

    void offer() {
        program.reset();
        program = std::make_unique<FakeMenu>(busAddress());
        program->levels[0] = {
            {1, {{"label", "Say _hello"}}},
            {2, {{"label", "Not now"}, {"enabled", false}}},
            {3, {{"label", "Checked & more"}, {"toggle-type", "checkmark"}, {"toggle-state", 1}}},
            {4, {{"label", "Chosen"}, {"toggle-type", "radio"}, {"toggle-state", 1}}},
            {9, {{"label", "Not to be seen"}, {"visible", false}}},
            {5, {{"label", "More"}, {"children-display", "submenu"}}}};
        program->levels[5] = {{51, {{"label", "First"}}}, {52, {{"label", "Second"}}}};
    }

    /// Below a rectangle at the top of the screen.
    void open(int x = 300) {
        helper.reset();
        helper = std::make_unique<Process>(
            std::vector<std::string>{NEVO_BAR_HELPER, "--menu", program->name(), FakeMenu::path,
                                     std::to_string(x), "0", "24", "24"},
            environment(), folder / "log/helper");
    }
    void openAndWait(int x = 300) {
        open(x);
        waitForLevels(1);
        // It answers for the first time when it has taken pointer and keyboard.
        int before = program->asked;
        program->sayThatRowsChanged();
        await("it listens", [&] { return program->asked > before; });
    }
    void waitForLevels(std::size_t count) {
        await(fmt::format("{} levels of the menu can be seen", count),
              [&] { return windowsBelowBar().size() == count; });
    }
    int statusAtEnd() {
        await("the helper ends", [this] { return !helper->isRunning(); });
        EXPECT_EQ(helper->output(), "");
        return *helper->exitStatus();
    }
    bool hasHeard(const std::string& event) const {
        const auto& all = program->events;
        return std::find(all.begin(), all.end(), event) != all.end();
    }
    void expectChoice(int id) {
        EXPECT_EQ(statusAtEnd(), 0);
        EXPECT_TRUE(hasHeard(fmt::format("clicked {}", id)))
            << testing::PrintToString(program->events);
        auto isClick = [](const std::string& event) { return event.starts_with("clicked"); };
        EXPECT_EQ(std::count_if(program->events.begin(), program->events.end(), isClick), 1);
        EXPECT_GT(program->clickTime, 0U);
        EXPECT_TRUE(hasHeard("opened 0"));
        EXPECT_TRUE(hasHeard("closed 0"));
        program->events.clear();
    }
    void expectNoChoice() {
        EXPECT_EQ(statusAtEnd(), 0);
        EXPECT_EQ(program->events, (Names{"opened 0", "closed 0"}));
        program->events.clear();
    }
    /// The middle of a row of the menu's first level, all of which are equally high.
    Point row(std::size_t number, std::size_t count) const {
        Rect menu = windowsBelowBar().front();
        double part = (static_cast<double>(number) + 0.5) / static_cast<double>(count);
        return {menu.x + 40, menu.y + menu.height * part};
    }

    std::unique_ptr<FakeMenu> program;
    std::unique_ptr<Process> helper;
};

TEST_F(HelperMenu, tellsItsProgramWhatIsChosen) {
    openAndWait();
    Rect menu = windowsBelowBar()[0];
    EXPECT_EQ(menu.x, 300);
    EXPECT_EQ(menu.y, 24);
    hand->click(row(1, 5));
    hand->click(row(2, 5));
    expectChoice(3);

    // A submenu whose rows take their time, with the mouse.
    openAndWait(1590);
    EXPECT_EQ(windowsBelowBar()[0].maxX(), 1600);
    program->held = 5;
    // The first move over a menu counts for nothing: it may have opened under the pointer.
    hand->moveTo(row(3, 5));
    await("the submenu's rows are asked for", [this] {
        hand->moveTo(row(4, 5));
        hand->moveTo({row(4, 5).x + 1, row(4, 5).y});
        return program->shown[5] == 1;
    });
    EXPECT_EQ(windowsBelowBar().size(), 1U);
    hand->click(row(4, 5));
    program->release();
    waitForLevels(2);
    hand->click(windowsBelowBar()[1].center());
    EXPECT_EQ(statusAtEnd(), 0);
    EXPECT_TRUE(hasHeard("opened 5"));
    EXPECT_TRUE(hasHeard("clicked 51") || hasHeard("clicked 52"));
    program->events.clear();

    // With the keyboard.
    openAndWait();
    hand->press(upKey);
    hand->press(rightKey);
    waitForLevels(2);
    hand->press(downKey);
    hand->press(returnKey);
    expectChoice(52);
    openAndWait();
    hand->type("h");
    expectChoice(1);
}

TEST_F(HelperMenu, closesWhenNothingIsChosen) {
    openAndWait();
    hand->press(escapeKey);
    expectNoChoice();
    openAndWait();
    hand->click(beside);
    expectNoChoice();

    // While a button is down in another program's window, that program has the pointer.
    const std::uint32_t buttons = XCB_EVENT_MASK_BUTTON_PRESS;
    xcb_change_window_attributes(server->get(), server->root(), XCB_CW_EVENT_MASK, &buttons);
    hand->drag(beside, {beside.x + 4, beside.y}, [&] { openAndWait(); });
    await("a click beside it closes it", [&] {
        hand->click(beside);
        return !helper->isRunning();
    });
    expectNoChoice();

    // Without a program, a menu, or an answer.
    openAndWait();
    program->events.clear();
    program->leave();
    EXPECT_EQ(statusAtEnd(), 0);
    open();
    EXPECT_EQ(statusAtEnd(), 1);
    offer();
    program->levels[0].clear();
    open();
    EXPECT_EQ(statusAtEnd(), 1);
    program->held = 0;
    open();
    EXPECT_EQ(statusAtEnd(), 1);
}

TEST_F(HelperMenu, followsItsProgram) {
    openAndWait();
    Rect before = windowsBelowBar()[0];
    program->levels[0].push_back({6, {{"label", "New"}}});
    for (int i = 0; i < 100; ++i) program->sayThatRowsChanged();
    await("it has a row more", [&] { return windowsBelowBar()[0].height > before.height; });
    program->levels[0][0].properties["enabled"] = false;
    program->sayThatRowsChanged();
    hand->click(row(5, 6));
    expectChoice(6);

    // The row goes whose submenu is open.
    openAndWait();
    hand->press(upKey);
    hand->press(upKey);
    hand->press(rightKey);
    waitForLevels(2);
    before = windowsBelowBar()[0];
    program->levels[0].erase(program->levels[0].begin() + 5);
    program->sayThatRowsChanged();
    waitForLevels(1);
    await("it has a row less", [&] { return windowsBelowBar()[0].height < before.height; });
    hand->click(row(4, 5));
    expectChoice(6);

    // From the end of very many rows, with the keyboard, back to some.
    for (int id = 100; id < 400; ++id) program->levels[0].push_back({id, {{"label", "Row"}}});
    openAndWait();
    hand->press(upKey);
    hand->press(upKey);
    program->levels[0].resize(2);
    program->sayThatRowsChanged();
    await("it has few rows", [&] { return windowsBelowBar()[0].height < before.height; });
    EXPECT_EQ(windowsBelowBar()[0].y, 24);
    program->levels[0].clear();
    program->sayThatRowsChanged();
    expectNoChoice();
}

TEST_F(HelperMenu, staysOnTheScreenWhateverItsProgramOffers) {
    program->levels[0] = {{1, {{"label", QString(100'000, 'x')}}}};
    for (int id = 2; id <= 100'000; ++id) program->levels[0].push_back({id, {}});
    openAndWait();
    Rect menu = windowsBelowBar()[0];
    EXPECT_GE(menu.y, 0);
    EXPECT_LE(menu.maxX(), 1600);
    EXPECT_LE(menu.maxY(), 600);
    hand->press(escapeKey);
    expectNoChoice();

    // Below each row the whole menu again.
    program->levels[0] = {{7, {{"label", "Round"}, {"children-display", "submenu"}}},
                          {0, {{"label", "Top"}, {"children-display", "submenu"}}},
                          {8, {{"label", "Plain"}}}};
    program->levels[7] = program->levels[0];
    openAndWait();
    hand->press(downKey);
    hand->press(rightKey);
    waitForLevels(2);
    hand->press(rightKey);
    hand->press(returnKey);
    expectChoice(8);
    EXPECT_EQ(program->shown[0], 2);
}

}  // namespace
}  // namespace nevo::desktoptest
