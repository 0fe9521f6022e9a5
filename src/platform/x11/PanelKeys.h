#pragma once

#include <functional>
#include <memory>

#include "platform/Panels.h"
#include "platform/x11/EventPump.h"
#include "platform/x11/Keyboard.h"

namespace nevo {

/// Keys for a panel, which never has the focus: while they are held the keyboard is grabbed, as
/// menus do it. The window in use keeps the focus, so there is nothing to give back at the end,
/// also if this process dies; window managers have no say in it, and don't take it away either.
///
/// The grab is made on the connection and the window of the hot keys: a hot key reaches them also
/// while a panel has the keys, though other programs' don't reach those.
class PanelKeys {
public:
    using Handler = std::function<void(PanelKey)>;

    PanelKeys(XServer& x, EventPump& pump, Keyboard& keys);
    ~PanelKeys();

    /// Tells `handler` of keys until the registration ends; of several the newest has them. Empty
    /// where another program holds the keyboard.
    Registration hold(Handler handler);
    /// Lets the keyboard go until the registration ends, for a menu of this program that grabs it
    /// by itself.
    Registration lend();

private:
    struct Held;
    /// A registration finds it gone when the desktop is.
    std::shared_ptr<Held> held;
};

}  // namespace nevo
