#pragma once

#include <QTimer>
#include <functional>
#include <vector>

#include "platform/x11/BarClient.h"
#include "platform/x11/SyntheticInput.h"

namespace nevo {

class PanelWindow;

/// A click on one item, wherever it is. One that is out of sight is brought by the bar, unseen, to
/// where the pointer is, so that its program's menu opens there, and stays for a moment. The click
/// is made as by a hand: many programs take no event that another one has sent them.
class ItemClick {
public:
    ItemClick(XServer& x, BarClient& client, SyntheticInput& input);
    /// Sends the item back.
    ~ItemClick();
    ItemClick(const ItemClick&) = delete;
    ItemClick& operator=(const ItemClick&) = delete;

    /// The item comes, for a click with that button of X's. One that hasn't been made by then is
    /// dropped.
    void press(WindowNumber item, std::uint8_t button);
    /// The click is made when the item has come and no hand holds a button: only then can a program
    /// open a menu.
    void release();
    /// The same for notches of the wheel, one way or the other. None of them is dropped while they
    /// are for the same item.
    void scroll(WindowNumber item, Point notches);

    /// Called when so many clicks have been made, before anybody has heard of them.
    std::function<void(int count)> clicked;

private:
    enum class Step { none, coming, waiting, done };

    void advance();
    void clickAt(Point place);
    PanelWindow* panelAt(Point place) const;
    void sendVisit(bool comes, double x) const;
    void end();

    XServer& server;
    BarClient& bar;
    SyntheticInput& synthetic;
    QTimer timer;
    Step step = Step::none;
    WindowNumber number = 0;
    /// What is still to be made, in this order.
    std::vector<std::uint8_t> buttons;
    int patience = 0;
};

}  // namespace nevo
