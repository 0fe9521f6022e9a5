#include <QColorDialog>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QStyleOptionButton>

#include "platform/x11/ControlParts.h"
#include "platform/x11/ControlViews.h"

namespace nevo {

namespace {

using Kind = Control::Kind;

/// Looks like a piece of text that leads somewhere.
class LinkButton : public QPushButton {
public:
    LinkButton() {
        setFlat(true);
        setCursor(Qt::PointingHandCursor);
    }

protected:
    void initStyleOption(QStyleOptionButton* option) const override {
        QPushButton::initStyleOption(option);
        if (isEnabled()) {
            option->palette.setBrush(QPalette::ButtonText, option->palette.link());
        }
    }
};

/// A button or a link, with its symbol or picture before the title.
class ButtonView : public ControlView {
public:
    ButtonView(const Images& pictures, bool isLink)
        : ControlView(pictures, isLink ? new LinkButton : new QPushButton),
          button(static_cast<QPushButton*>(&widget())) {
        QObject::connect(button, &QPushButton::clicked, &context,
                         [this] { tell(control().press); });
    }

    bool fillsWidth() const override { return false; }
    void appendOperable(std::vector<QWidget*>& list) const override { list.push_back(button); }

protected:
    void present() override {
        describe(*button, control());
        bool hasTitle = !control().hidesTitle;
        button->setToolTip(plainText(hasTitle ? control().detail : control().title));
        button->setText(hasTitle ? buttonText(control().title) : QString());
        button->setFlat(!hasTitle || control().kind == Kind::link);
        // Return presses the one that has the focus. The window's own doesn't need that, and
        // outside of Qt's dialogs would be the default no longer once it has lost the focus.
        button->setAutoDefault(!control().isDefault);
        button->setDefault(control().isDefault);
        // Any button counts as the default one while it has the focus.
        button->setProperty(defaultProperty, control().isDefault);
        auto image = control().image;
        if (!image && !control().symbol.empty()) image = images.systemSymbol(control().symbol, {});
        int side = QFontMetrics(button->font()).height();
        button->setIconSize({side * 2, side});
        button->setIcon(image ? iconOf(*image, *button, side) : QIcon());
    }

private:
    QPushButton* button;
};

/// A button of the colour, which opens the desktop's colour chooser.
class ColorWellView : public ControlView {
public:
    explicit ColorWellView(const Images& pictures) : ColorWellView(pictures, new QPushButton) {}
    /// Later: the dialog may be telling of its colour.
    ~ColorWellView() override {
        if (!dialog) return;
        dialog->hide();
        dialog->deleteLater();
    }

    bool fillsWidth() const override { return !control().hidesTitle; }
    void appendOperable(std::vector<QWidget*>& list) const override { list.push_back(button); }

protected:
    void present() override {
        describe(*button, control());
        static_cast<Field&>(widget()).showTexts(control());
        QColor color = chosen();
        button->setAccessibleDescription(color.name());
        int height = QFontMetrics(button->font()).height();
        QPixmap swatch(QSize(height * 2, height) * button->devicePixelRatioF());
        swatch.setDevicePixelRatio(button->devicePixelRatioF());
        swatch.fill(color);
        QPainter painter(&swatch);
        painter.setPen(button->palette().color(QPalette::Mid));
        painter.drawRect(0, 0, height * 2 - 1, height - 1);
        painter.end();
        button->setIconSize({height * 2, height});
        button->setIcon(swatch);
    }

private:
    ColorWellView(const Images& pictures, QPushButton* operated)
        : ControlView(pictures, new Field(operated, false)), button(operated) {
        button->setAutoDefault(true);
        QObject::connect(button, &QPushButton::clicked, &context, [this] { open(); });
    }

    QColor chosen() const {
        const Color& color = control().color;
        if (color.isLabel) return button->palette().color(QPalette::WindowText);
        auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
        return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue));
    }

    void open() {
        if (dialog) {
            dialog->raise();
            dialog->activateWindow();
            return;
        }
        dialog = new QColorDialog(chosen(), button);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setObjectName(button->objectName() + "/dialog");
        dialog->setWindowTitle(plainText(control().title));
        dialog->setModal(false);
        auto pick = [this](const QColor& color) {
            tell(control().pickColor, Color{color.redF(), color.greenF(), color.blueF(), 1});
        };
        // Seen at once, wherever the colour is used; and as it was when it isn't wanted after all.
        QObject::connect(dialog, &QColorDialog::currentColorChanged, &context, pick);
        QObject::connect(dialog, &QColorDialog::rejected, &context,
                         [pick, before = chosen()] { pick(before); });
        dialog->show();
    }

    QPushButton* button;
    QPointer<QColorDialog> dialog;
};

}  // namespace

std::unique_ptr<ControlView> makeButtonView(const Control& control, const Images& images) {
    if (control.kind == Kind::colorWell) return std::make_unique<ColorWellView>(images);
    if (control.kind == Kind::dropZone) return makeDropZoneView(images);
    return std::make_unique<ButtonView>(images, control.kind == Kind::link);
}

}  // namespace nevo
