#include "platform/x11/PageTransition.h"

#include <QEasingCurve>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace nevo {

namespace {

constexpr double springResponse = 0.5;
constexpr double springDamping = 0.85;
/// The spring is at rest to a thousandth by then.
constexpr int springMilliseconds = 650;
constexpr int fadeMilliseconds = 250;
constexpr double smallest = 0.95;

/// Where the spring has come after the share `time` of its time, from 0 to 1.
qreal springAt(qreal time) {
    double seconds = time * springMilliseconds / 1000;
    double frequency = 2 * std::numbers::pi / springResponse;
    double decay = springDamping * frequency;
    double swing = frequency * std::sqrt(1 - springDamping * springDamping);
    return 1 - std::exp(-decay * seconds) *
                   (std::cos(swing * seconds) + decay / swing * std::sin(swing * seconds));
}

QEasingCurve springCurve() {
    QEasingCurve curve;
    curve.setCustomType(springAt);
    return curve;
}

}  // namespace

void PageTransition::run(QWidget& page, const QPixmap& before, Transition transition) {
    for (QObject* child : QObjectList(page.children())) {
        if (auto* running = dynamic_cast<PageTransition*>(child)) delete running;
    }
    new PageTransition(page, before, transition == Transition::move);
}

PageTransition::PageTransition(QWidget& page, QPixmap from, bool isMove)
    : QWidget(&page), before(std::move(from)), after(page.grab()), moves(isMove) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(page.rect());
    progress.setStartValue(0.0);
    progress.setEndValue(1.0);
    progress.setDuration(moves ? springMilliseconds : fadeMilliseconds);
    if (moves) progress.setEasingCurve(springCurve());
    QObject::connect(&progress, &QVariantAnimation::valueChanged, this, [this] { update(); });
    QObject::connect(&progress, &QVariantAnimation::finished, this, &QObject::deleteLater);
    progress.start();
    raise();
    show();
}

void PageTransition::paintEvent(QPaintEvent*) {
    double done = progress.currentValue().toDouble();
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(std::max(0.0, 1 - 2 * done));
    painter.drawPixmap(0, 0, before);
    painter.setOpacity(std::min(1.0, done));
    if (moves) {
        double size = smallest + (1 - smallest) * done;
        painter.translate(rect().center());
        painter.scale(size, size);
        painter.translate(-rect().center() + QPointF(width() * (1 - done), 0));
    }
    painter.drawPixmap(0, 0, after);
}

}  // namespace nevo
