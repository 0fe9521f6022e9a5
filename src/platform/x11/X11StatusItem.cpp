#include "platform/x11/X11StatusItem.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/x11/Pictures.h"

namespace nevo {

namespace {
/// The bar's text colour.
const QColor barText(255, 255, 255);
const QColor highlight(255, 255, 255, 60);
// Points.
constexpr double padding = 4;
constexpr double leastWidth = 8;
constexpr double textSize = 13;
/// A wider window is a divider's, which shows nothing.
constexpr int widestPainted = 1024;

QFont barFont(double scale) {
    QFont font;
    font.setPixelSize(static_cast<int>(std::lround(textSize * scale)));
    return font;
}
}  // namespace

X11StatusItem::X11StatusItem(const std::shared_ptr<StatusBarContext>& shared, double length)
    : context(shared), window(shared->server, shared->bar), itemLength(length) {
    shared->items.push_back(this);
    updateLength();
    // At the next turn, when the creator has given it its name: so it comes to its place at once.
    shared->loop.post([this, alive = std::weak_ptr(life)] {
        auto held = context.lock();
        if (alive.expired() || !held) return;
        if (held->flushPositions) held->flushPositions();
        window.dock();
    });
}

X11StatusItem::~X11StatusItem() {
    if (auto held = context.lock()) std::erase(held->items, this);
}

void X11StatusItem::setLength(double length) {
    if (auto held = context.lock(); held && held->flushPositions) held->flushPositions();
    itemLength = length;
    changed();
}

void X11StatusItem::setVisible(bool visible) {
    auto held = context.lock();
    if (isShown == visible || !held) return;
    if (held->flushPositions) held->flushPositions();
    isShown = visible;
    window.setMapped(visible);
    held->server.flush();
}

void X11StatusItem::setAutosaveName(const std::string& name) {
    auto held = context.lock();
    if (!held) return;
    if (held->flushPositions) held->flushPositions();
    window.setName(name);
    held->server.flush();
}

void X11StatusItem::setImage(std::optional<Image> image) {
    picture = std::move(image);
    changed();
}

void X11StatusItem::setTitle(const std::string& title) {
    if (text == title) return;
    text = title;
    changed();
}

void X11StatusItem::setImagePosition(int position) {
    imageOnly = position == 1;
    changed();
}

void X11StatusItem::setEnabled(bool enabled) { takesClicks = enabled; }

void X11StatusItem::setHighlighted(bool highlighted) {
    if (std::exchange(isLit, highlighted) != highlighted) changed();
}

void X11StatusItem::setHidden(bool hidden) {
    if (std::exchange(isBlank, hidden) != hidden) changed();
}

void X11StatusItem::setAlpha(double alpha) {
    if (std::exchange(opacity, alpha) != alpha) changed();
}

std::optional<WindowNumber> X11StatusItem::windowNumber() const {
    auto held = context.lock();
    const auto* item = held ? held->bar.itemOfClient(window.id()) : nullptr;
    if (item == nullptr) return std::nullopt;
    return item->number;
}

Rect X11StatusItem::bounds() const {
    auto held = context.lock();
    const auto* item = held ? held->bar.itemOfClient(window.id()) : nullptr;
    double points = scale();
    if (item != nullptr) return {0, 0, item->slot.width / points, item->slot.height / points};
    double width = itemLength < 0 ? contentWidth() / points : itemLength;
    return {0, 0, width, held ? held->bar.barFrame().height / points : 0};
}

std::optional<Rect> X11StatusItem::screenFrame() const {
    auto held = context.lock();
    const auto* item = held && isShown ? held->bar.itemOfClient(window.id()) : nullptr;
    if (item == nullptr) return std::nullopt;
    const auto& coordinates = held->server.coordinates;
    return coordinates.flipped(coordinates.fromRoot(item->slot));
}

std::optional<Rect> X11StatusItem::windowScreenFrame() const {
    auto held = context.lock();
    auto frame = screenFrame();
    if (!held || !frame) return std::nullopt;
    auto screens = held->screens.screens();
    for (const Screen& screen : screens) {
        if (screen.frame.contains(frame->center())) return screen.frame;
    }
    // Pushed off, or of no width: it still belongs to the bar's screen.
    const auto& coordinates = held->server.coordinates;
    Rect bar = coordinates.flipped(coordinates.fromRoot(held->bar.barFrame()));
    for (const Screen& screen : screens) {
        if (screen.frame.intersects(bar)) return screen.frame;
    }
    return std::nullopt;
}

double X11StatusItem::scale() const {
    auto held = context.lock();
    return held ? held->server.coordinates.scale : 1;
}

int X11StatusItem::contentWidth() const {
    double width = 0;
    if (picture) width += picture->size.width * scale();
    bool showsText = !text.empty() && !(imageOnly && picture);
    if (showsText) {
        QFontMetrics metrics(barFont(scale()));
        width += metrics.horizontalAdvance(QString::fromStdString(text));
    }
    double most = std::max(leastWidth * scale(), std::ceil(width) + 2 * padding * scale());
    return static_cast<int>(std::ceil(most));
}

void X11StatusItem::updateLength() {
    window.setLength(itemLength < 0 ? itemLength : itemLength * scale(), contentWidth());
}

void X11StatusItem::changed() {
    auto held = context.lock();
    if (!held) return;
    updateLength();
    held->server.flush();
    // Looks often change several at a time: painted once.
    if (std::exchange(paintScheduled, true)) return;
    held->loop.post([this, alive = std::weak_ptr(life)] {
        if (!alive.expired()) paint();
    });
}

void X11StatusItem::paint() {
    paintScheduled = false;
    bool isDivider = window.width() > widestPainted;
    QImage canvas(std::min(window.width(), widestPainted), window.height(),
                  QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    if (!isBlank && !isDivider) {
        QPainter painter(&canvas);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setOpacity(std::clamp(opacity, 0.0, 1.0));
        paintContent(painter, canvas.rect());
    }
    window.show(canvas);
}

void X11StatusItem::paintContent(QPainter& painter, QRect area) const {
    if (isLit) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(highlight);
        painter.drawRoundedRect(QRectF(area).adjusted(0, scale(), 0, -scale()), 4 * scale(),
                                4 * scale());
    }
    bool showsText = !text.empty() && !(imageOnly && picture);
    int left = static_cast<int>(std::lround(padding * scale()));
    if (picture) {
        // Scaled down in proportion, never up.
        double width = picture->size.width * scale();
        double height = picture->size.height * scale();
        double part = std::min(
            {1.0, area.width() / std::max(1.0, width), area.height() / std::max(1.0, height)});
        QSize size(static_cast<int>(std::lround(width * part)),
                   static_cast<int>(std::lround(height * part)));
        int x = showsText ? left : (area.width() - size.width()) / 2;
        painter.drawImage(QPoint(x, (area.height() - size.height()) / 2),
                          rendered(*picture, size, barText));
        left = x + size.width();
    }
    if (!showsText) return;
    painter.setPen(barText);
    painter.setFont(barFont(scale()));
    painter.drawText(area.adjusted(left, 0, 0, 0), Qt::AlignVCenter, QString::fromStdString(text));
}

bool X11StatusItem::handle(const xcb_generic_event_t& event) {
    auto type = event.response_type & 0x7f;
    if (type == XCB_BUTTON_PRESS || type == XCB_BUTTON_RELEASE || type == XCB_MOTION_NOTIFY) {
        const auto& button = reinterpret_cast<const xcb_button_press_event_t&>(event);
        if (button.event != window.id()) return false;
        if (type == XCB_MOTION_NOTIFY) {
            bool isDrag = (button.state & XCB_BUTTON_MASK_1) != 0;
            isSwallowed(isDrag ? EventType::leftMouseDragged : EventType::mouseMoved, button);
        } else {
            handleButton(button, type == XCB_BUTTON_PRESS);
        }
        return true;
    }
    return window.handle(event, [this] { paint(); });
}

bool X11StatusItem::isSwallowed(EventType type, const xcb_button_press_event_t& event) const {
    auto held = context.lock();
    if (!held) return true;
    const auto& coordinates = held->server.coordinates;
    Point place = coordinates.fromRoot(
        Point{static_cast<double>(event.root_x), static_cast<double>(event.root_y)});
    return held->monitors.offer({type, coordinates.flipped(place), modifiersFromState(event.state),
                                 windowNumber().value_or(0)});
}

void X11StatusItem::handleButton(const xcb_button_press_event_t& event, bool isPress) {
    bool isLeft = event.detail == XCB_BUTTON_INDEX_1;
    if (!isLeft && event.detail != XCB_BUTTON_INDEX_3) return;
    auto type = isLeft ? (isPress ? EventType::leftMouseDown : EventType::leftMouseUp)
                       : (isPress ? EventType::rightMouseDown : EventType::rightMouseUp);
    auto alive = std::weak_ptr(life);
    auto held = context.lock();
    if (!held) return;
    held->monitors.modifiersOfEvent = modifiersFromState(event.state);
    bool swallowed = isSwallowed(type, event);
    if (!swallowed && !alive.expired() && isLeft) {
        bool isInside = event.event_x >= 0 && event.event_y >= 0 &&
                        event.event_x < window.width() && event.event_y < window.height();
        bool isClick = !isPress && pressedInside && isInside && takesClicks;
        pressedInside = isPress;
        // The action may remove this item: called last, from a copy.
        auto call = isClick ? action : nullptr;
        if (call) call();
    }
    held->monitors.modifiersOfEvent.reset();
}

}  // namespace nevo
