#include "platform/x11/CardButton.h"

#include <QButtonGroup>
#include <QPainter>
#include <algorithm>

#include "platform/x11/ControlParts.h"

namespace nevo {

namespace {

constexpr double radius = 8;

QColor mixed(const QColor& one, const QColor& other, double share) {
    auto mix = [&](double a, double b) { return static_cast<float>(a + (b - a) * share); };
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()));
}

}  // namespace

CardButton::CardButton() {
    // Return presses it, as Space does.
    setAutoDefault(true);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

void CardButton::showChosen(bool chosen) {
    if (chosen != isChosen) {
        isChosen = chosen;
        update();
    }
    followSiblings();
}

void CardButton::followSiblings() {
    auto* parent = parentWidget();
    if (parent == nullptr) return;
    QList<CardButton*> row;
    for (auto* button : parent->findChildren<QPushButton*>(Qt::FindDirectChildrenOnly)) {
        if (auto* card = dynamic_cast<CardButton*>(button)) row.append(card);
    }
    bool isChoice =
        std::any_of(row.begin(), row.end(), [](const CardButton* card) { return card->isChosen; });
    // Without it, all cards below the parent would be of one choice, those of its sections too.
    auto* choice = parent->findChild<QButtonGroup*>(QString(), Qt::FindDirectChildrenOnly);
    if (choice == nullptr) choice = new QButtonGroup(parent);
    // An exclusive button refuses to be switched off.
    choice->setExclusive(false);
    for (CardButton* card : row) {
        if (card->group() != choice) choice->addButton(card);
        card->setCheckable(isChoice);
        card->setChecked(card->isChosen);
        // What assistive technology knows a choice by.
        card->setAutoExclusive(isChoice);
        // As `stopAtChosen` has left it.
        bool isSkipped = !isChoice && card->focusPolicy() == Qt::ClickFocus;
        if (isSkipped) card->setFocusPolicy(Qt::StrongFocus);
    }
    choice->setExclusive(isChoice);
    if (isChoice) stopAtChosen(choice->buttons());
}

void CardButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor accent = palette().color(QPalette::Highlight);
    QColor line =
        mixed(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.3);
    bool isMarked = isChosen || isDown();
    QColor ground = palette().color(QPalette::Base);
    if (isDown() || (underMouse() && isEnabled())) ground = mixed(ground, accent, 0.1);
    QPen pen(isMarked || hasFocus() ? accent : line, isMarked || hasFocus() ? 2 : 1);
    if (isDashed) pen.setStyle(Qt::DashLine);
    painter.setPen(pen);
    painter.setBrush(ground);
    double inset = pen.widthF() / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
    if (!hasFocus() || !isMarked) return;
    // The keyboard's place shows on a chosen card too.
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(line, 1, Qt::DotLine));
    painter.drawRoundedRect(QRectF(rect()).adjusted(4.5, 4.5, -4.5, -4.5), radius - 4, radius - 4);
}

}  // namespace nevo
