#include "platform/x11/PanelWindow.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>
#include <cmath>

#include "platform/x11/CutOut.h"
#include "platform/x11/ProgramName.h"
#include "platform/x11/QtScale.h"
#include "platform/x11/SoftShadow.h"

namespace nevo {

namespace {

Qt::WindowFlags flagsOf(const PanelWindow::Nature& nature) {
    Qt::WindowFlags flags = Qt::Tool | Qt::WindowDoesNotAcceptFocus | Qt::WindowStaysOnTopHint |
                            Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    // A window manager would keep it off the bar's strip, and below the bar.
    if (nature.isAboveBar) flags |= Qt::X11BypassWindowManagerHint;
    return flags;
}

ModifierFlags modifiersOf(Qt::KeyboardModifiers keys) {
    return (keys & Qt::ShiftModifier ? shiftModifier : 0) |
           (keys & Qt::ControlModifier ? controlModifier : 0) |
           (keys & Qt::AltModifier ? optionModifier : 0) |
           (keys & Qt::MetaModifier ? commandModifier : 0);
}

}  // namespace

PanelWindow::PanelWindow(XServer& x, const Nature& asked, bool composited)
    : QWidget(nullptr, flagsOf(asked)), server(x), nature(asked), isComposited(composited) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    // Its program is never the active one.
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setMouseTracking(true);
    setCursor(Qt::ArrowCursor);
    setWindowTitle(programName);
    setAccessibleName(programName);
}

void PanelWindow::Release::operator()(PanelWindow* window) const {
    window->draw = nullptr;
    window->drawShape = nullptr;
    window->onMouse = nullptr;
    window->onWheel = nullptr;
    window->toolTipAt = nullptr;
    window->isReleased = true;
    window->hide();
    if (window->handling == 0) delete window;
}

void PanelWindow::whileAlive(const std::function<void()>& work) {
    ++handling;
    work();
    // What lies further up the stack may still have to do with the window.
    if (--handling == 0 && isReleased) deleteLater();
}

void PanelWindow::setPlace(const QRect& root) {
    isStale = isStale || root.size() != rootPlace.size();
    rootPlace = root;
    arrange();
}

void PanelWindow::setOpacity(double value) {
    bool wasSeen = std::exchange(opacity, value) > 0;
    if (isVisible() && wasSeen != (opacity > 0)) limit();
    update();
}

void PanelWindow::letMouseThrough(bool lets) {
    letsMouseThrough = lets;
    limit();
}

void PanelWindow::setComposited(bool composited) {
    if (std::exchange(isComposited, composited) == composited) return;
    isStale = true;
    arrange();
}

void PanelWindow::redraw() {
    isStale = true;
    update();
}

void PanelWindow::showInFront() {
    if (isStale) render();
    introduce();
    limit();
    show();
    raise();
}

/// What others make of the window.
void PanelWindow::introduce() {
    auto window = static_cast<xcb_window_t>(winId());
    // Qt marks all of its windows as ones that may be embedded: a tray host that looks for items
    // which an earlier one has left would take the panel in.
    removeProperty(window, server.atom("_XEMBED_INFO"));
    // Compositors give no shadow of theirs to a window that tells where it has its own.
    QPoint start = pictureCorner();
    QPoint end = start + QPoint(rootPlace.width(), rootPlace.height());
    writeMargins(window, server.atom("_GTK_FRAME_EXTENTS"),
                 {start.x(), start.y(), qRound(width() * scale) - end.x(),
                  qRound(height() * scale) - end.y()});
}

int PanelWindow::room() const { return nature.hasShadow && isComposited ? windowShadowRoom : 0; }

/// Qt's units may be larger than a pixel: the window covers the place, and the rest stays empty.
void PanelWindow::arrange() {
    QRect whole = rootPlace.adjusted(-room(), -room(), room(), room());
    QPoint middle = rootPlace.center();
    QtScale at = QtScale::at({static_cast<double>(middle.x()), static_cast<double>(middle.y())});
    QRect inQt = at.around(whole);
    scale = at.factor;
    corner = whole.topLeft() - at.toRoot(inQt).topLeft();
    setGeometry(inQt);
    if (isVisible()) {
        if (isStale) render();
        introduce();
        limit();
    }
    update();
}

void PanelWindow::render() {
    isStale = false;
    shown = draw ? draw(rootPlace.size()) : QImage();
    outline = isComposited || shown.isNull() ? Outline() : cutOut(shown);
    if (room() > 0) shown = onShadow(shown);
}

QImage PanelWindow::onShadow(const QImage& picture) {
    QImage shape = drawShape ? drawShape(rootPlace.size()) : QImage();
    // Most changes are inside of the shape: its shadow, which takes some time, stays the same.
    if (shape != shadowedShape) shadow = windowShadow(shape);
    shadowedShape = shape;
    QImage whole = shadow;
    QPainter painter(&whole);
    // Where an edge covers a pixel in part, both have their part in it.
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.drawImage(room(), room(), picture);
    return whole;
}

void PanelWindow::limit() {
    auto window = static_cast<xcb_window_t>(winId());
    bool isSeen = opacity > 0;
    std::optional<Outline> visible;
    if (!isSeen) {
        visible.emplace();
    } else if (!isComposited) {
        visible = outline;
    }
    setVisibleOutline(window, visible, pictureCorner());
    Outline input;
    if (isSeen && nature.takesMouse && !letsMouseThrough) {
        input.push_back({0, 0, static_cast<std::uint16_t>(rootPlace.width()),
                         static_cast<std::uint16_t>(rootPlace.height())});
    }
    setInputOutline(window, input, pictureCorner());
}

void PanelWindow::paintEvent(QPaintEvent*) {
    if (isStale) {
        render();
        limit();
    }
    QPainter painter(this);
    if (isComposited) painter.setOpacity(opacity);
    // Pixel by pixel, not in Qt's units.
    painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
    painter.drawImage(corner, shown);
}

Point PanelWindow::inPicture(QPointF position) const {
    double x = std::round(position.x() * scale) - pictureCorner().x();
    double y = std::round(position.y() * scale) - pictureCorner().y();
    return {x, rootPlace.height() - y};
}

QRect PanelWindow::inQt(const Rect& frame) const {
    QPoint start = pictureCorner();
    QRectF pixels(start.x() + frame.x, start.y() + rootPlace.height() - frame.maxY(), frame.width,
                  frame.height);
    return QRectF(pixels.topLeft() / scale, pixels.size() / scale).toAlignedRect();
}

bool PanelWindow::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        showToolTip(*static_cast<QHelpEvent*>(event));
        return true;
    }
    if (event->type() == QEvent::PaletteChange) redraw();
    return QWidget::event(event);
}

void PanelWindow::showToolTip(const QHelpEvent& help) {
    ToolTip found = toolTipAt ? toolTipAt(inPicture(help.pos())) : ToolTip();
    QString text = QString::fromStdString(found.text);
    // A name that looks like markup is none.
    if (Qt::mightBeRichText(text)) text = Qt::convertFromPlainText(text);
    QToolTip::showText(help.globalPos(), text, this, inQt(found.frame));
}

void PanelWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) tell(EventType::leftMouseDown, *event);
    if (event->button() == Qt::RightButton) tell(EventType::rightMouseDown, *event);
    if (event->button() == Qt::MiddleButton) tell(EventType::otherMouseDown, *event);
}

void PanelWindow::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) tell(EventType::leftMouseUp, *event);
    if (event->button() == Qt::RightButton) tell(EventType::rightMouseUp, *event);
    if (event->button() == Qt::MiddleButton) tell(EventType::otherMouseUp, *event);
}

void PanelWindow::wheelEvent(QWheelEvent* event) {
    constexpr int notch = QWheelEvent::DefaultDeltasPerStep;
    turned += event->angleDelta();
    QPoint notches(turned.x() / notch, turned.y() / notch);
    turned -= notches * notch;
    auto call = onWheel;
    if (!call || notches.isNull()) return;
    QPointF place = event->position();
    Point turns{static_cast<double>(notches.x()), static_cast<double>(notches.y())};
    whileAlive([&] { call(turns, inPicture(place), modifiersOf(event->modifiers())); });
}

void PanelWindow::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) {
        tell(EventType::leftMouseDragged, *event);
    } else if (event->buttons() == Qt::NoButton) {
        tell(EventType::mouseMoved, *event);
    }
}

void PanelWindow::tell(EventType type, const QMouseEvent& event) {
    // From a copy: the handler may let go of this window.
    auto call = onMouse;
    if (!call) return;
    // The position in the widget is rounded to whole units of Qt's.
    QPointF place = event.scenePosition();
    whileAlive([&] { call(type, inPicture(place), modifiersOf(event.modifiers())); });
}

}  // namespace nevo
