// A window of the program as a whole on the real desktop: its place, size and level, what
// assistive technology says of it, and how it goes away.

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>

#include "desktop/WindowSession.h"
#include "platform/xcb/Properties.h"

namespace nevo::desktoptest {
namespace {

using Kind = Control::Kind;

class WindowFrame : public WindowSession {
protected:
    xcb_window_t xWindow() { return static_cast<xcb_window_t>(widgetOf()->winId()); }
    bool isAbove() {
        xcb::Atoms atoms(server->get(), {});
        xcb::PropertyRead read(server->get(), xWindow(), atoms["_NET_WM_STATE"]);
        auto states = read.numbers().value_or(std::vector<std::uint32_t>());
        return std::count(states.begin(), states.end(), atoms["_NET_WM_STATE_ABOVE"]) == 1;
    }
    /// What a window manager's close button sends.
    void askToClose() {
        xcb::Atoms atoms(server->get(), {});
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = xWindow();
        message.type = atoms["WM_PROTOCOLS"];
        message.data.data32[0] = atoms["WM_DELETE_WINDOW"];
        xcb_send_event(server->get(), 0, message.window, 0,
                       reinterpret_cast<const char*>(&message));
        server->flush();
    }
};

TEST_F(WindowFrame, standsInTheMiddleWithItsNameSizeAndLevel) {
    auto configuration = configured();
    configuration.level = 3;
    open(text("text", "Text"), configuration);
    EXPECT_EQ(widgetOf()->size(), QSize(420, 300));
    QPoint off = widgetOf()->geometry().center() -
                 QApplication::primaryScreen()->availableGeometry().center();
    EXPECT_LT(off.manhattanLength(), 40);
    xcb::Atoms atoms(server->get(), {});
    EXPECT_EQ(xcb::PropertyRead(server->get(), xWindow(), atoms["WM_WINDOW_ROLE"]).text(), "test");
    EXPECT_EQ(xcb::PropertyRead(server->get(), xWindow(), atoms["_NET_WM_NAME"]).text(),
              "Window test");

    xcb_window_t before = xWindow();
    EXPECT_TRUE(soon([&] { return isAbove(); }));
    window->setLevel(0);
    EXPECT_TRUE(soon([&] { return !isAbove(); }));
    window->setLevel(3);
    EXPECT_TRUE(soon([&] { return isAbove(); }));
    EXPECT_EQ(xWindow(), before);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(WindowFrame, aPersonClosesItAndItMayGoAtOnce) {
    int told = 0;
    auto openOne = [&] {
        open(toggle("toggle", heard));
        window->didClose = [&] {
            ++told;
            EXPECT_FALSE(window->isVisible());
            window.reset();
        };
    };
    openOne();
    askToClose();
    EXPECT_TRUE(soon([&] { return told == 1; }));
    openOne();
    hand->press(escapeKey);
    EXPECT_TRUE(soon([&] { return told == 2; }));
    EXPECT_EQ(widgetOf(), nullptr);

    openOne();
    window->close();
    EXPECT_FALSE(window->isVisible());
    window->makeKeyAndOrderFront();
    EXPECT_TRUE(window->isVisible());
    settle();
    EXPECT_EQ(told, 2);
}

TEST_F(WindowFrame, anyControlMayTakeItsWindowAway) {
    for (const char* key : {"button", "toggle", "radio/b", "card"}) {
        std::vector<Control> all{button("button", heard), toggle("toggle", heard),
                                 choice("radio", heard, Kind::radioGroup, {"a", "b"}, "a"),
                                 card("card", heard, false)};
        for (Control& each : all) {
            each.press = [this] { window.reset(); };
            each.setOn = [this](bool) { window.reset(); };
            each.select = [this](const std::string&) { window.reset(); };
        }
        open(group(Kind::column, {}, all));
        widget(key).setFocus();
        hand->press(spaceKey);
        EXPECT_TRUE(soon([&] { return widgetOf() == nullptr; })) << key;
        settle();
    }
}

TEST_F(WindowFrame, aBareOneIsMovedByItsBackgroundAndClosesNotByItself) {
    auto configuration = configured();
    configuration.isBare = true;
    configuration.isMovableByBackground = true;
    open(text("text", "Text"), configuration);
    QPoint before = widgetOf()->pos();
    Point from{before.x() + 200.0, before.y() + 250.0};
    // The window manager takes over after the first step.
    hand->drag(from, {from.x + 100, from.y + 40}, [this] { settle(); });
    EXPECT_TRUE(soon([&] { return (widgetOf()->pos() - before).manhattanLength() > 100; }));
    hand->press(escapeKey);
    settle();
    EXPECT_TRUE(window->isVisible());
}

TEST_F(WindowFrame, returnPressesTheDefaultButton) {
    Control chosen = button("chosen", heard);
    chosen.isDefault = true;
    open(group(Kind::column, {},
               {toggle("toggle", heard), group(Kind::row, {}, {button("other", heard), chosen})}));
    for (const char* key : {"toggle", "other", "chosen", "toggle"}) {
        EXPECT_EQ(focused(), key);
        hand->press(tabKey);
        settle();
    }
    widget("toggle").setFocus();
    hand->press(returnKey);
    EXPECT_TRUE(hearsSoon({"chosen"}));
    widget("other").setFocus();
    hand->press(returnKey);
    EXPECT_TRUE(hearsSoon({"other"}));
    widget("chosen").setFocus();
    widget("toggle").setFocus();
    hand->press(returnKey);
    EXPECT_TRUE(hearsSoon({"chosen"}));
}

/// A tree of all that has words; `more` is added to each of them.
Control wordy(Heard& heard, const std::string& more) {
    Control on = toggle("toggle", heard);
    on.detail = "What happens when it is on, in a line that is longer than the window is wide";
    Control pick = choice("picker", heard, Kind::picker, {"One choice", "Another"}, "One choice");
    Control slide = slider("slider", heard, 5, 1);
    Control cards =
        group(Kind::row, {}, {card("first", heard, true), card("second", heard, false)});
    Control buttons =
        group(Kind::row, {}, {button("Agree & go on", heard), button("Think about it", heard)});
    Control page =
        group(Kind::column, "Page",
              {group(Kind::section, "Behaviour", {on, pick, slide}), cards,
               choice("radio", heard, Kind::radioGroup, {"here", "there"}, "here"),
               text("warning", "This can't be undone by itself", Control::TextStyle::warning),
               text("badge", "Recommended", Control::TextStyle::badge), dropZone("zone", heard),
               orderList("list", heard, {"Alpha", "Beta"}), buttons});
    std::function<void(Control&)> lengthen = [&](Control& control) {
        for (std::string* words : {&control.title, &control.detail, &control.numberText}) {
            if (!words->empty()) *words += more;
        }
        for (ControlOption& option : control.options) option.title += more;
        for (Control& child : control.children) lengthen(child);
    };
    lengthen(page);
    return group(Kind::tabs, "tabs", {page, group(Kind::column, "Another page", {})});
}

TEST_F(WindowFrame, nothingIsCutOffWhenWordsOrLettersAreLarger) {
    QFont usual = QApplication::font();
    for (const auto& [more, points] : {std::pair{"", 10}, {" and a third", 10}, {" ...", 17}}) {
        QFont font = usual;
        font.setPointSize(points);
        QApplication::setFont(font);
        open(wordy(heard, more));
        int seen = 0;
        for (QWidget* each : widgetOf()->findChildren<QWidget*>()) {
            auto* label = qobject_cast<QLabel*>(each);
            bool hasWords =
                label ? !label->text().isEmpty() : qobject_cast<QAbstractButton*>(each) != nullptr;
            if (!each->isVisible() || !hasWords) continue;
            ++seen;
            std::string what = each->objectName().toStdString() + more;
            QSize least = each->minimumSizeHint().expandedTo(QSize(0, 0));
            int height =
                each->hasHeightForWidth() ? each->heightForWidth(each->width()) : least.height();
            EXPECT_GE(each->width(), least.width()) << what;
            EXPECT_GE(each->height(), height) << what;
            EXPECT_TRUE(each->parentWidget()->rect().contains(each->geometry())) << what;
        }
        EXPECT_GE(seen, 20);
        window.reset();
        settle();
    }
    QApplication::setFont(usual);
}

TEST_F(WindowFrame, textsAreNeverMarkup) {
    const std::string words = "<b>bold</b> & <img src=x>";
    Control on = toggle("toggle", heard);
    on.title = on.detail = words;
    open(group(Kind::column, {}, {text("text", words), on}));
    for (QLabel* label : widgetOf()->findChildren<QLabel*>()) {
        EXPECT_TRUE(label->text().isEmpty() || label->textFormat() == Qt::PlainText);
    }
    EXPECT_EQ(widgetAs<QLabel>("text").text().toStdString(), words);
    EXPECT_EQ(widget("toggle").accessibleName().toStdString(), words);
}

TEST_F(WindowFrame, assistiveTechnologyHearsEachNameAndWhatItIs) {
    Control silent = choice("picker", heard, Kind::picker, {"a"}, "a");
    silent.hidesTitle = true;
    silent.detail = "Why";
    open(group(Kind::column, {},
               {toggle("toggle", heard, true), silent, slider("slider", heard, 5, 1),
                group(Kind::row, {}, {card("one", heard, false), card("two", heard, true)}),
                group(Kind::row, "alone", {card("press", heard, false)}),
                button("link", heard, Kind::link), orderList("list", heard, {"a"}),
                dropZone("zone", heard)}));
    using Role = QAccessible::Role;
    for (const auto& [key, role] : {std::pair{"toggle", Role::CheckBox},
                                    {"picker", Role::ComboBox},
                                    {"slider", Role::Slider},
                                    {"one", Role::RadioButton},
                                    {"two", Role::RadioButton},
                                    {"press", Role::Button},
                                    {"link", Role::Button},
                                    {"list", Role::List},
                                    {"zone", Role::Button}}) {
        auto* seen = QAccessible::queryAccessibleInterface(&widget(key));
        ASSERT_NE(seen, nullptr);
        // A closed list is called by what it shows, and named by its label.
        auto labels = seen->relations(QAccessible::Label);
        auto* named = labels.isEmpty() ? seen : labels.first().first;
        EXPECT_EQ(named->text(QAccessible::Name).toStdString(), key);
        EXPECT_EQ(seen->role(), role) << key;
        EXPECT_EQ(seen->state().checked, key == std::string("toggle") || key == std::string("two"));
    }
    auto* picker = QAccessible::queryAccessibleInterface(&widget("picker"));
    EXPECT_EQ(picker->text(QAccessible::Description), "Why");
    for (QLabel* label : widgetOf()->findChildren<QLabel*>()) {
        EXPECT_TRUE(label->text() != "picker" || label->isHidden());
    }
}

}  // namespace
}  // namespace nevo::desktoptest
