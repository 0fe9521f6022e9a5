#pragma once

#include <QWidget>

#include "desktop/ContractSessions.h"
#include "desktop/TestClients.h"
#include "platform/Windows.h"
#include "platform/x11/EventPump.h"
#include "platform/x11/X11Images.h"
#include "platform/x11/X11Windows.h"

namespace nevo::desktoptest {

// A tree of controls, told briefly. What a person does is added to `heard` as "key", or
// "key=value".
using Heard = std::vector<std::string>;
Control group(Control::Kind kind, const std::string& key, std::vector<Control> children);
Control text(const std::string& key, const std::string& title,
             Control::TextStyle style = Control::TextStyle::body);
Control button(const std::string& key, Heard& heard, Control::Kind kind = Control::Kind::button);
Control toggle(const std::string& key, Heard& heard, bool isOn = false);
Control choice(const std::string& key, Heard& heard, Control::Kind kind, const Names& values,
               const std::string& selected);
Control slider(const std::string& key, Heard& heard, double number, double step);
Control orderList(const std::string& key, Heard& heard, const Names& values);
Control dropZone(const std::string& key, Heard& heard);
/// A card with a text; in a row of them one may be chosen.
Control card(const std::string& key, Heard& heard, bool isChosen);

/// Windows of the real desktop, inside the test, and a person before them.
class WindowSession : public X11Session {
protected:
    void SetUp() override;
    void TearDown() override;

    static WindowConfiguration configured(const std::string& name = "test");
    /// Opens a window with that content, and waits until the keys go to it.
    void open(Control content, const WindowConfiguration& configuration = configured());
    /// Qt's window, found by its name; nullptr when there is none.
    static QWidget* widgetOf(const std::string& window = "test");
    /// The widget of a control, in sight or not; ends the test when there is none.
    static QWidget& widget(const std::string& key, const std::string& window = "test");
    template <class Type>
    static Type& widgetAs(const std::string& key) {
        auto* found = qobject_cast<Type*>(&widget(key));
        if (found == nullptr) throw Failed(key + " is another kind of widget");
        return *found;
    }
    static std::string focused();

    /// In root pixels; `x` and `y` are shares of the widget's size.
    static Point placeIn(const QWidget& widget, double x = 0.5, double y = 0.5);
    void clickOn(const std::string& key) { hand->click(placeIn(widget(key))); }
    testing::AssertionResult hearsSoon(const Heard& expected);
    /// Lets all that was asked of the display so far come back as events.
    void settle();

    Heard heard;
    X11Images images;
    std::unique_ptr<X11Windows> windows;
    std::unique_ptr<Window> window;

private:
    std::unique_ptr<Probe> icon;
    std::unique_ptr<XServer> connection;
    std::unique_ptr<EventPump> pump;
};

}  // namespace nevo::desktoptest
