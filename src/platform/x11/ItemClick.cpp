#include "platform/x11/ItemClick.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/menubar/BarProtocol.h"
#include "platform/x11/PanelWindow.h"
#include "platform/x11/QtWindow.h"

namespace nevo {

namespace {
constexpr std::uint32_t anyButton = 0x1f00;
constexpr int lookMilliseconds = 10;
/// Five seconds: who holds a button that long is about something else.
constexpr int mostLooks = 500;
/// Programs ask for the place of their icon as they open a menu, some after they have asked others.
constexpr int visitMilliseconds = 1000;
/// Of this program's own windows, one upon the other.
constexpr std::size_t mostCovers = 8;
/// That wait for their item.
constexpr double mostNotches = 20;
}  // namespace

ItemClick::ItemClick(XServer& x, BarClient& client, SyntheticInput& input)
    : server(x), bar(client), synthetic(input) {
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { advance(); });
}

ItemClick::~ItemClick() { end(); }

void ItemClick::press(WindowNumber item, std::uint8_t button) {
    end();
    auto state = queryPointer(server);
    if (!state || bar.itemOfNumber(item) == nullptr) return;
    number = item;
    step = Step::coming;
    patience = mostLooks;
    buttons = {button};
    sendVisit(true, state->root.x);
}

void ItemClick::release() {
    if (step != Step::coming) return;
    step = Step::waiting;
    timer.start(lookMilliseconds);
    advance();
}

void ItemClick::scroll(WindowNumber item, Point notches) {
    constexpr std::uint8_t up = 4, down = 5, left = 6, right = 7;
    std::vector<std::uint8_t> turns;
    auto add = [&](double count, std::uint8_t button) {
        turns.insert(turns.end(), static_cast<std::size_t>(std::min(std::abs(count), mostNotches)),
                     button);
    };
    add(notches.y, notches.y > 0 ? up : down);
    add(notches.x, notches.x > 0 ? left : right);
    if (turns.empty()) return;
    if (step == Step::none || number != item) {
        press(item, turns.front());
        if (step == Step::none) return;
        buttons.clear();
    }
    if (buttons.size() < static_cast<std::size_t>(mostNotches))
        buttons.insert(buttons.end(), turns.begin(), turns.end());
    // It is here, or on its way.
    step = Step::waiting;
    patience = mostLooks;
    timer.start(lookMilliseconds);
}

void ItemClick::advance() {
    const auto* item = bar.itemOfNumber(number);
    if (step == Step::done || item == nullptr || --patience < 0) return end();
    auto state = queryPointer(server);
    Point place = item->geometry.center();
    bool isHeld = !state || (state->mask & anyButton) != 0;
    if (isHeld || !bar.barFrame().contains(place)) return;
    clickAt({std::floor(place.x), std::floor(place.y)});
    step = Step::done;
    timer.start(visitMilliseconds);
}

void ItemClick::clickAt(Point place) {
    std::vector<PanelWindow*> covers;
    for (PanelWindow* cover = panelAt(place); cover != nullptr && covers.size() < mostCovers;
         cover = panelAt(place)) {
        covers.push_back(cover);
        cover->letMouseThrough(true);
        waitForQt();
    }
    auto made = std::exchange(buttons, {});
    synthetic.click(place, made);
    for (PanelWindow* cover : covers) cover->letMouseThrough(false);
    if (clicked) clicked(static_cast<int>(made.size()));
}

/// The panel of this program's that would take the mouse there.
PanelWindow* ItemClick::panelAt(Point place) const {
    xcb::Reply<xcb_translate_coordinates_reply_t> inside(xcb_translate_coordinates_reply(
        server.get(),
        xcb_translate_coordinates(server.get(), server.root(), server.root(),
                                  static_cast<std::int16_t>(place.x),
                                  static_cast<std::int16_t>(place.y)),
        nullptr));
    if (!inside || inside->child == XCB_NONE) return nullptr;
    return dynamic_cast<PanelWindow*>(QWidget::find(inside->child));
}

void ItemClick::sendVisit(bool comes, double x) const {
    const auto* item = bar.itemOfNumber(number);
    if (item == nullptr) return;
    bar.send(barprotocol::visit, item->frame, comes ? 1 : 0,
             static_cast<std::uint32_t>(static_cast<std::int32_t>(x)), server.lease(), 0);
}

void ItemClick::end() {
    timer.stop();
    if (step == Step::none) return;
    step = Step::none;
    sendVisit(false, 0);
}

}  // namespace nevo
