#include "platform/x11/X11Alerts.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include "platform/x11/ControlParts.h"

namespace nevo {

namespace {

void addButtons(QMessageBox& box, const std::vector<std::string>& titles) {
    for (std::size_t i = 0; i < titles.size(); ++i) {
        bool isLast = i + 1 == titles.size();
        auto role = i == 0   ? QMessageBox::AcceptRole
                    : isLast ? QMessageBox::RejectRole
                             : QMessageBox::DestructiveRole;
        auto* button = box.addButton(buttonText(titles[i]), role);
        button->setObjectName(QString::number(i));
        if (i == 0) box.setDefaultButton(button);
        if (isLast) box.setEscapeButton(button);
    }
}

void show(QMessageBox& box, const Alert& alert) {
    box.setObjectName(plainText(alert.name));
    box.setWindowTitle(QApplication::applicationName());
    box.setIcon(QMessageBox::Information);
    // Also above a window of ours that floats.
    box.setWindowFlag(Qt::WindowStaysOnTopHint);
    // Nothing that a file or another program has named may pass for markup.
    box.setTextFormat(Qt::PlainText);
    box.setText(plainText(alert.title));
    box.setInformativeText(plainText(alert.text));
    for (QLabel* label : box.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
    addButtons(box, alert.buttons);
    if (alert.suppressionTitle) {
        box.setCheckBox(new QCheckBox(buttonText(*alert.suppressionTitle)));
    }
}

}  // namespace

AlertAnswer X11Alerts::run(const Alert& alert) {
    AlertAnswer answer;
    answer.button = alert.buttons.empty() ? 0 : alert.buttons.size() - 1;
    // On the heap: it goes with the window that it stands above.
    QPointer<QMessageBox> box = new QMessageBox(QApplication::activeWindow());
    show(*box, alert);
    box->exec();
    if (!box) return answer;
    if (const auto* clicked = box->clickedButton()) {
        bool isNumber = false;
        auto number = clicked->objectName().toUInt(&isNumber);
        if (isNumber) answer.button = number;
    }
    answer.suppresses = box->checkBox() != nullptr && box->checkBox()->isChecked();
    delete box;
    return answer;
}

}  // namespace nevo
