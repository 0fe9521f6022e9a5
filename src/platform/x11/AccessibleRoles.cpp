#include "platform/x11/AccessibleRoles.h"

#include <QAccessibleWidget>

#include "platform/x11/ContentWindow.h"

namespace nevo {

namespace {

class PlainWidget : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;
    /// Asked for each time: a widget gets its name, or another one, after it was first looked at.
    QAccessible::Role role() const override {
        if (dynamic_cast<ContentWindow*>(widget()) != nullptr) return QAccessible::Dialog;
        return widget()->accessibleName().isEmpty() ? QAccessibleWidget::role()
                                                    : QAccessible::Grouping;
    }
};

QAccessibleInterface* interfaceOf(const QString& className, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    // Qt asks once for each class that the object descends from; it knows all but the plainest.
    bool isPlain = widget != nullptr && className == "QWidget" &&
                   widget->metaObject() == &QWidget::staticMetaObject;
    return isPlain ? new PlainWidget(widget) : nullptr;
}

}  // namespace

void installAccessibleRoles() { QAccessible::installFactory(interfaceOf); }

}  // namespace nevo
