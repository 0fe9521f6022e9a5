#include "platform/x11/ControlView.h"

#include <QScopedValueRollback>
#include <QTimer>
#include <utility>

#include "platform/x11/ControlViews.h"

namespace nevo {

namespace {

/// Milliseconds after which a control that hasn't followed its widget takes it back: its owner may
/// answer at a later turn of the loop.
constexpr int answerPatience = 50;

/// A group without a key goes by the first key inside of it.
const std::string* firstKey(const Control& control) {
    if (!control.key.empty()) return &control.key;
    for (const Control& child : control.children) {
        if (const std::string* key = firstKey(child)) return key;
    }
    return nullptr;
}

std::string identityOf(const Control& control) {
    const std::string* key = firstKey(control);
    std::string result = (control.key.empty() ? "in:" : "is:") + (key ? *key : std::string());
    // What can be pressed and what can't are different widgets.
    if (control.kind == Control::Kind::card && control.press) result += ":press";
    return result;
}

}  // namespace

ControlView::ControlView(const Images& pictures, QWidget* shownBy)
    : images(pictures), made(shownBy) {}

ControlView::~ControlView() {
    made->hide();
    made->deleteLater();
}

bool ControlView::canBecome(const Control& next) const {
    return next.kind == shown.kind && identityOf(next) == identity;
}

bool ControlView::resembles(const Control& next) const {
    return next.kind == shown.kind && next.key.empty() && shown.key.empty() &&
           next.press == nullptr && shown.press == nullptr;
}

void ControlView::update(Control next) {
    QScopedValueRollback guard(isUpdating, true);
    identity = identityOf(next);
    auto children = std::move(next.children);
    next.children.clear();
    shown = std::move(next);
    made->setEnabled(shown.isEnabled);
    present();
    takeChildren(std::move(children));
}

void ControlView::refresh() {
    QScopedValueRollback guard(isUpdating, true);
    present();
}

void ControlView::refreshSoon() {
    QTimer::singleShot(answerPatience, &context, [this] { refresh(); });
}

std::unique_ptr<ControlView> makeControlView(const Control& control, const Images& images) {
    using Kind = Control::Kind;
    switch (control.kind) {
        case Kind::column:
        case Kind::row:
        case Kind::section:
        case Kind::tabs:
        case Kind::card:
            return makeGroupView(control, images);
        case Kind::text:
        case Kind::symbol:
        case Kind::image:
            return makeSeenView(control, images);
        case Kind::button:
        case Kind::link:
        case Kind::colorWell:
        case Kind::dropZone:
            return makeButtonView(control, images);
        case Kind::toggle:
        case Kind::picker:
        case Kind::radioGroup:
        case Kind::slider:
        case Kind::orderList:
            break;
    }
    return makeChoiceView(control, images);
}

}  // namespace nevo
