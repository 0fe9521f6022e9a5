#include "platform/x11/ControlRenderer.h"

#include <QCoreApplication>
#include <QPushButton>
#include <algorithm>

#include "platform/x11/ControlParts.h"

namespace nevo {

namespace {

/// Where the keyboard begins among the controls of a page: at the top, but at what Return is for
/// when a button at the top would take Return for itself. nullptr when none takes the keys.
QWidget* beginningOf(std::vector<QWidget*> widgets) {
    std::erase_if(widgets, [](const QWidget* widget) {
        return !widget->isEnabled() || (widget->focusPolicy() & Qt::TabFocus) == 0;
    });
    if (widgets.empty()) return nullptr;
    auto byDefault = std::find_if(widgets.begin(), widgets.end(), [](const QWidget* widget) {
        return widget->property(defaultProperty).toBool();
    });
    bool takesReturn = qobject_cast<QPushButton*>(widgets.front()) != nullptr;
    return takesReturn && byDefault != widgets.end() ? *byDefault : widgets.front();
}

}  // namespace

ControlRenderer::ControlRenderer(PageArea& page, const Images& pictures)
    : area(page), images(pictures) {}

void ControlRenderer::show(Control content) {
    QWidget* focused = area.window()->focusWidget();
    QString name = focused ? focused->objectName() : QString();
    if (!root || !root->canBecome(content)) {
        if (!root || !root->resembles(content)) root = makeControlView(content, images);
    }
    // Before its children are in place, so that they get their window's font and colours.
    area.setContent(root->widget(), true);
    root->update(std::move(content));
    area.setContent(root->widget(), root->fillsHeight());
    keepFocus(focused, name);
    // Layouts tell the ones around them by events.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

void ControlRenderer::focusFirst() {
    std::vector<QWidget*> all;
    if (root) root->appendOperable(all);
    if (QWidget* first = beginningOf(all)) first->setFocus(Qt::ActiveWindowFocusReason);
}

void ControlRenderer::refresh() {
    if (root) root->refresh();
}

void ControlRenderer::keepFocus(QWidget* focused, const QString& name) {
    std::vector<QWidget*> all;
    root->appendOperable(all);
    for (std::size_t i = 1; i < all.size(); ++i) QWidget::setTabOrder(all[i - 1], all[i]);
    if (std::find(all.begin(), all.end(), focused) != all.end()) return;
    auto again = std::find_if(all.begin(), all.end(), [&](const QWidget* widget) {
        return !name.isEmpty() && widget->objectName() == name;
    });
    // A page that has just come, with the keys still where they can do nothing.
    QWidget* next = again == all.end() ? beginningOf(all) : *again;
    if (next != nullptr) next->setFocus(Qt::OtherFocusReason);
}

}  // namespace nevo
