#include "desktop/WindowSession.h"

#include <fmt/format.h>

#include <QApplication>

namespace nevo::desktoptest {

using Kind = Control::Kind;

Control group(Kind kind, const std::string& key, std::vector<Control> children) {
    Control result;
    result.kind = kind;
    result.key = key;
    result.title = key;
    result.children = std::move(children);
    return result;
}

Control text(const std::string& key, const std::string& title, Control::TextStyle style) {
    Control result = group(Kind::text, key, {});
    result.title = title;
    result.style = style;
    return result;
}

Control button(const std::string& key, Heard& heard, Kind kind) {
    Control result = group(kind, key, {});
    result.press = [key, &heard] { heard.push_back(key); };
    return result;
}

Control toggle(const std::string& key, Heard& heard, bool isOn) {
    Control result = group(Kind::toggle, key, {});
    result.isOn = isOn;
    result.setOn = [key, &heard](bool on) { heard.push_back(key + (on ? "=on" : "=off")); };
    return result;
}

Control choice(const std::string& key, Heard& heard, Kind kind, const Names& values,
               const std::string& selected) {
    Control result = group(kind, key, {});
    for (const std::string& value : values) result.options.push_back({value, "Title " + value, {}});
    result.selected = selected;
    result.select = [key, &heard](const std::string& value) { heard.push_back(key + "=" + value); };
    return result;
}

Control slider(const std::string& key, Heard& heard, double number, double step) {
    Control result = group(Kind::slider, key, {});
    result.number = number;
    result.most = 10;
    result.step = step;
    result.numberText = fmt::format("{} s", number);
    result.slide = [key, &heard](double to) { heard.push_back(fmt::format("{}={}", key, to)); };
    return result;
}

Control orderList(const std::string& key, Heard& heard, const Names& values) {
    Control result = choice(key, heard, Kind::orderList, values, {});
    result.reorder = [key, &heard](const Names& order) {
        heard.push_back(fmt::format("{}={}", key, fmt::join(order, ",")));
    };
    return result;
}

Control dropZone(const std::string& key, Heard& heard) {
    Control result = button(key, heard, Kind::dropZone);
    result.takeFile = [key, &heard](const std::string& path) { heard.push_back(key + "=" + path); };
    return result;
}

Control card(const std::string& key, Heard& heard, bool isChosen) {
    Control result = button(key, heard, Kind::card);
    result.isOn = isChosen;
    result.children = {text(key + ".text", "What " + key + " is for")};
    return result;
}

void WindowSession::SetUp() {
    X11Session::SetUp();
    // A list that was opened by a click takes no other one before the time of a double click.
    constexpr int shorterThanBetweenClicks = 200;
    QApplication::setDoubleClickInterval(shorterThanBetweenClicks);
    startWindowManager();
    // As Nevo itself: the bar takes windows of a program that has no icon for icons left behind.
    icon = std::make_unique<Probe>();
    waitFor("the icon stands in the bar", [this] { return !items().empty(); });
    // Qt has to know of the window manager.
    settle();
    connection = std::make_unique<XServer>(connect());
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection->get(), connection->root(), XCB_CW_EVENT_MASK, &mask);
    pump = std::make_unique<EventPump>(*connection, [] {});
    windows = std::make_unique<X11Windows>(images, *connection, *pump);
}

void WindowSession::TearDown() {
    window.reset();
    settle();
    windows.reset();
    pump.reset();
    connection.reset();
    icon.reset();
    X11Session::TearDown();
}

WindowConfiguration WindowSession::configured(const std::string& name) {
    WindowConfiguration result;
    result.name = name;
    result.title = "Window " + name;
    result.size = {420, 300};
    return result;
}

void WindowSession::open(Control content, const WindowConfiguration& configuration) {
    window = windows->create(configuration);
    window->setContent(std::move(content));
    window->makeKeyAndOrderFront();
    bool isOpen = soon([&] {
        QWidget* made = widgetOf(configuration.name);
        return made != nullptr && made->isActiveWindow();
    });
    if (!isOpen) throw Failed(configuration.name + " doesn't come up");
    settle();
}

QWidget* WindowSession::widgetOf(const std::string& window) {
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top->objectName().toStdString() == window && top->isVisible()) return top;
    }
    return nullptr;
}

QWidget& WindowSession::widget(const std::string& key, const std::string& window) {
    QWidget* top = widgetOf(window);
    if (top == nullptr) throw Failed("there is no window " + window);
    for (QWidget* each : top->findChildren<QWidget*>(QString::fromStdString(key))) {
        // Those that wait to be deleted are hidden.
        if (!each->isHidden()) return *each;
    }
    throw Failed("there is no control " + key);
}

std::string WindowSession::focused() {
    QWidget* widget = QApplication::focusWidget();
    return widget == nullptr ? std::string() : widget->objectName().toStdString();
}

Point WindowSession::placeIn(const QWidget& widget, double x, double y) {
    QPoint inside(static_cast<int>(widget.width() * x), static_cast<int>(widget.height() * y));
    QPoint place = widget.mapToGlobal(inside);
    return {static_cast<double>(place.x()), static_cast<double>(place.y())};
}

testing::AssertionResult WindowSession::hearsSoon(const Heard& expected) {
    if (soon([&] { return heard == expected; })) {
        heard.clear();
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "heard: " << testing::PrintToString(heard);
}

void WindowSession::settle() {
    bool hasCome = false;
    platform().runLoop.postAfter(0.1, [&] { hasCome = true; });
    EXPECT_TRUE(soon([&] { return hasCome; }));
}

}  // namespace nevo::desktoptest
