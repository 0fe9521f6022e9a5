#include "platform/x11/PanelMotion.h"

#include <QEasingCurve>
#include <QRectF>
#include <algorithm>
#include <cmath>

namespace nevo {

namespace {

/// With the control points that the functions of these names have.
QEasingCurve curveOf(TimingFunction timing) {
    if (timing == TimingFunction::linear) return QEasingCurve::Linear;
    QEasingCurve curve(QEasingCurve::BezierSpline);
    double start = timing == TimingFunction::easeInEaseOut ? 0.42 : 0;
    curve.addCubicBezierSegment({start, 0}, {0.58, 1}, {1, 1});
    return curve;
}

bool isRunning(const std::unique_ptr<QVariantAnimation>& way) {
    return way && way->state() == QAbstractAnimation::Running;
}

QRectF toQt(const Rect& frame) { return {frame.x, frame.y, frame.width, frame.height}; }

}  // namespace

std::unique_ptr<QVariantAnimation> motion(const QVariant& from, const QVariant& to,
                                          const Animation& animation, std::function<void()> step) {
    auto way = std::make_unique<QVariantAnimation>();
    way->setStartValue(from);
    way->setEndValue(to);
    // One that takes no time would be over, and have told so, before it is given out.
    way->setDuration(std::max(1, static_cast<int>(std::lround(animation.seconds * 1000))));
    way->setEasingCurve(curveOf(animation.timing));
    QObject::connect(way.get(), &QVariantAnimation::valueChanged, way.get(),
                     [call = std::move(step)] { call(); });
    way->start();
    return way;
}

Rect MovingViews::Entry::frameNow() const {
    if (!isRunning(frame)) return goal.frame;
    QRectF now = frame->currentValue().toRectF();
    return {now.x(), now.y(), now.width(), now.height()};
}

double MovingViews::Entry::alphaNow() const {
    return isRunning(alpha) ? alpha->currentValue().toDouble() : goal.alpha;
}

void MovingViews::replace(std::vector<PanelView> views) {
    entries.clear();
    for (PanelView& view : views) entries.push_back({std::move(view), nullptr, nullptr});
    onChange();
}

void MovingViews::set(const PanelView& view, const std::optional<Animation>& animation) {
    auto entry = std::find_if(entries.begin(), entries.end(),
                              [&](const Entry& each) { return each.goal.key == view.key; });
    if (entry == entries.end()) return;
    auto wayTo = [&](const QVariant& from, const QVariant& to) {
        return animation ? motion(from, to, *animation, onChange) : nullptr;
    };
    if (!(entry->goal.frame == view.frame)) {
        entry->frame = wayTo(toQt(entry->frameNow()), toQt(view.frame));
    }
    if (entry->goal.alpha != view.alpha) entry->alpha = wayTo(entry->alphaNow(), view.alpha);
    entry->goal = view;
    onChange();
}

void MovingViews::bringToFront(const std::string& key) {
    std::stable_partition(entries.begin(), entries.end(),
                          [&](const Entry& each) { return each.goal.key != key; });
    onChange();
}

std::vector<PanelView> MovingViews::now() const {
    std::vector<PanelView> views;
    views.reserve(entries.size());
    for (const Entry& entry : entries) {
        PanelView& view = views.emplace_back(entry.goal);
        view.frame = entry.frameNow();
        view.alpha = entry.alphaNow();
    }
    return views;
}

const PanelView* MovingViews::at(Point place,
                                 const std::function<bool(const PanelView&)>& isMeant) const {
    auto found = std::find_if(entries.rbegin(), entries.rend(), [&](const Entry& entry) {
        return entry.goal.frame.contains(place) && isMeant(entry.goal);
    });
    return found == entries.rend() ? nullptr : &found->goal;
}

}  // namespace nevo
