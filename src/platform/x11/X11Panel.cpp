#include "platform/x11/X11Panel.h"

#include <QGuiApplication>
#include <algorithm>
#include <cmath>

#include "platform/WindowServer.h"
#include "platform/x11/PanelPainter.h"

namespace nevo {

namespace {

double sharedArea(const Rect& a, const Rect& b) {
    double width = std::min(a.maxX(), b.maxX()) - std::max(a.x, b.x);
    double height = std::min(a.maxY(), b.maxY()) - std::max(a.y, b.y);
    return std::max(0.0, width) * std::max(0.0, height);
}

QRect wholePixels(const Rect& r) {
    auto nearest = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, -32768.0, 32767.0)));
    };
    int left = nearest(r.x);
    int top = nearest(r.y);
    return {left, top, std::max(1, nearest(r.maxX()) - left), std::max(1, nearest(r.maxY()) - top)};
}

}  // namespace

X11Panel::X11Panel(const std::shared_ptr<PanelContext>& shared,
                   const PanelConfiguration& configuration)
    : context(shared),
      currentFrame(configuration.frame),
      background(configuration.background),
      isComposited(shared->compositor.isRunning()),
      window(new PanelWindow(shared->server,
                             {configuration.level > menuBarWindowLevel, configuration.hasShadow,
                              !configuration.ignoresMouseEvents},
                             isComposited)),
      views([this] { window->redraw(); }) {
    context->panels.push_back(this);
    window->draw = [this](QSize size) { return paint(size); };
    window->drawShape = [this](QSize size) {
        return shapeOfViews(scaled(views.now(), scale()), background, size);
    };
    window->onMouse = [this](EventType type, Point pixel, ModifierFlags modifiers) {
        hear(type, {pixel.x / scale(), pixel.y / scale()}, modifiers);
    };
    window->onWheel = [this](Point notches, Point pixel, ModifierFlags modifiers) {
        deliverWheel(notches, {pixel.x / scale(), pixel.y / scale()}, modifiers);
    };
    window->toolTipAt = [this](Point pixel) {
        const auto* view = views.at({pixel.x / scale(), pixel.y / scale()},
                                    [](const PanelView& each) { return !each.toolTip.empty(); });
        if (view == nullptr) return PanelWindow::ToolTip();
        return PanelWindow::ToolTip{view->toolTip, scaled(view->frame, scale())};
    };
    place();
}

X11Panel::~X11Panel() {
    std::erase(context->panels, this);
    if (window->internalWinId() != 0) {
        context->numbers.drop(static_cast<xcb_window_t>(window->internalWinId()));
    }
}

void X11Panel::setFrame(Rect frame) {
    currentFrame = frame;
    place();
}

void X11Panel::place() {
    const Coordinates& coordinates = context->server.coordinates;
    window->setPlace(wholePixels(coordinates.toRoot(coordinates.flipped(currentFrame))));
}

std::optional<Screen> X11Panel::screen() const {
    auto screens = context->screens.screens();
    auto less = [this](const Screen& a, const Screen& b) {
        return sharedArea(a.frame, currentFrame) < sharedArea(b.frame, currentFrame);
    };
    auto most = std::max_element(screens.begin(), screens.end(), less);
    if (most == screens.end() || !most->frame.intersects(currentFrame)) return std::nullopt;
    return *most;
}

void X11Panel::setView(const PanelView& view, std::optional<Animation> animation) {
    views.set(view, animation);
}

QImage X11Panel::paint(QSize size) const {
    return paintedViews(scaled(views.now(), scale()), background, size,
                        PanelTheme::of(QGuiApplication::palette()));
}

void X11Panel::setAlpha(double alpha) {
    fade = nullptr;
    alphaGoal = alpha;
    showAlpha();
}

void X11Panel::animateAlpha(double alpha, Animation animation, std::function<void()> done) {
    double from = alphaNow();
    alphaGoal = alpha;
    std::erase_if(fades,
                  [](const auto& each) { return each->state() != QAbstractAnimation::Running; });
    fades.push_back(motion(from, alpha, animation, [this] { showAlpha(); }));
    fade = fades.back().get();
    QObject::connect(fade, &QVariantAnimation::finished, window.get(),
                     [this, call = std::move(done)] {
                         showAlpha();
                         if (call) tellLater(call);
                     });
    showAlpha();
}

/// Not from inside an animation, which may go with the panel.
void X11Panel::tellLater(const std::function<void()>& done) {
    auto tell = [shown = window.get(), alive = std::weak_ptr(life), done] {
        if (!alive.expired()) shown->whileAlive(done);
    };
    QMetaObject::invokeMethod(window.get(), tell, Qt::QueuedConnection);
}

double X11Panel::alphaNow() const {
    bool isUnderway = fade != nullptr && fade->state() == QAbstractAnimation::Running;
    return isUnderway && isComposited ? fade->currentValue().toDouble() : alphaGoal;
}

void X11Panel::showAlpha() { window->setOpacity(alphaNow()); }

void X11Panel::orderFront() { window->showInFront(); }

void X11Panel::orderOut() {
    window->hide();
    resignKey();
    leftPressed.clear();
    rightPressed.clear();
    otherPressed.clear();
}

bool X11Panel::makeKey() {
    keys = context->keys.hold([this](PanelKey key) {
        // From a copy: the handler may destroy the panel.
        auto call = onKey;
        if (call) window->whileAlive([&] { call(key); });
    });
    return static_cast<bool>(keys);
}

void X11Panel::setComposited(bool composited) {
    isComposited = composited;
    window->setComposited(composited);
    showAlpha();
}

void X11Panel::hear(EventType type, Point inPanel, ModifierFlags modifiers) {
    auto alive = std::weak_ptr(life);
    auto held = context;
    held->monitors.modifiersOfEvent = modifiers;
    if (!isSwallowed(type, inPanel, modifiers) && !alive.expired()) {
        deliver(type, inPanel, modifiers);
    }
    held->monitors.modifiersOfEvent.reset();
}

bool X11Panel::isSwallowed(EventType type, Point inPanel, ModifierFlags modifiers) const {
    auto number = context->numbers.of(static_cast<xcb_window_t>(window->winId()));
    return context->monitors.offer(
        {type, {currentFrame.x + inPanel.x, currentFrame.y + inPanel.y}, modifiers, number});
}

void X11Panel::deliver(EventType type, Point inPanel, ModifierFlags modifiers) {
    bool isRight = type == EventType::rightMouseDown || type == EventType::rightMouseUp;
    bool isOther = type == EventType::otherMouseDown || type == EventType::otherMouseUp;
    bool isPress = type == EventType::leftMouseDown || type == EventType::rightMouseDown ||
                   type == EventType::otherMouseDown;
    bool isRelease = type == EventType::leftMouseUp || type == EventType::rightMouseUp ||
                     type == EventType::otherMouseUp;
    if (!isPress && !isRelease && type != EventType::leftMouseDragged) return;
    std::string& pressed = isRight ? rightPressed : isOther ? otherPressed : leftPressed;
    if (isPress) pressed = viewAt(inPanel);
    std::string key = isRelease ? std::exchange(pressed, {}) : pressed;
    // From a copy: the handler may destroy the panel.
    auto call = onEvent;
    if (!key.empty() && call) call({type, key, inPanel, modifiers});
}

void X11Panel::deliverWheel(Point notches, Point inPanel, ModifierFlags modifiers) {
    std::string key = viewAt(inPanel);
    auto call = onEvent;
    if (!key.empty() && call) call({EventType::scrollWheel, key, inPanel, modifiers, notches});
}

/// The key of the view that takes the mouse there; empty for none.
std::string X11Panel::viewAt(Point inPanel) const {
    const auto* view = views.at(inPanel, [](const PanelView& each) { return each.takesMouse; });
    return view ? view->key : std::string();
}

X11Panels::X11Panels(XServer& x, Screens& screens, LocalMonitors& monitors, WindowNumbers& numbers,
                     Compositor& compositor, PanelKeys& keys)
    : context(std::make_shared<PanelContext>(
          PanelContext{x, screens, monitors, numbers, compositor, keys, {}})) {
    compositor.changed = [this] {
        bool isRunning = context->compositor.isRunning();
        for (X11Panel* panel : context->panels) panel->setComposited(isRunning);
    };
}

X11Panels::~X11Panels() {
    context->compositor.changed = nullptr;
    // Of windows that were let go in the middle of an event, if no loop has turned since.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::unique_ptr<Panel> X11Panels::create(const PanelConfiguration& configuration) {
    return std::make_unique<X11Panel>(context, configuration);
}

}  // namespace nevo
