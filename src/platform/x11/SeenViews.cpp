#include <QApplication>
#include <QGridLayout>
#include <QStyle>
#include <cmath>

#include "platform/x11/ControlParts.h"
#include "platform/x11/ControlViews.h"

namespace nevo {

namespace {

using TextStyle = Control::TextStyle;

/// A text; a warning has the desktop's own sign of one beside it.
class TextView : public ControlView {
public:
    explicit TextView(const Images& pictures)
        : ControlView(pictures, new QWidget),
          sign(new QLabel),
          title(new TextLabel),
          detail(new TextLabel) {
        auto* grid = new QGridLayout(&widget());
        grid->setContentsMargins(0, 0, 0, 0);
        grid->setVerticalSpacing(2);
        grid->addWidget(sign, 0, 0, Qt::AlignTop);
        grid->addWidget(title, 0, 1);
        grid->addWidget(detail, 1, 1);
        grid->setColumnStretch(1, 1);
    }

    bool fillsWidth() const override { return control().style != TextStyle::badge; }

    void setCentered(bool centered) override {
        for (TextLabel* label : {title, detail}) {
            label->setAlignment((centered ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter);
        }
    }

protected:
    void present() override {
        title->setObjectName(plainText(control().key));
        title->showText(control().title, control().style);
        detail->showText(control().detail, TextStyle::note);
        bool warns = control().style == TextStyle::warning;
        if (warns) {
            int side = QFontMetrics(title->font()).height();
            QIcon icon = widget().style()->standardIcon(QStyle::SP_MessageBoxWarning);
            sign->setPixmap(icon.pixmap(QSize(side, side), widget().devicePixelRatioF()));
        }
        sign->setVisible(warns);
    }

private:
    QLabel* sign;
    TextLabel* title;
    TextLabel* detail;
};

/// A picture that its control brings along, or the name of one of the system's symbols.
class PictureView : public ControlView {
public:
    explicit PictureView(const Images& pictures) : ControlView(pictures, new PictureBox) {}
    bool fillsWidth() const override { return false; }

protected:
    void present() override {
        auto& box = static_cast<PictureBox&>(widget());
        describe(box, control());
        if (control().kind == Control::Kind::image) {
            box.showPicture(control().image, control().image ? control().image->size.height : 0);
            return;
        }
        if (control().symbol != loadedSymbol) {
            loadedSymbol = control().symbol;
            symbol = images.systemSymbol(loadedSymbol, control().title);
        }
        box.showPicture(symbol, control().number);
    }

private:
    std::string loadedSymbol;
    std::optional<Image> symbol;
};

}  // namespace

std::unique_ptr<ControlView> makeSeenView(const Control& control, const Images& images) {
    if (control.kind == Control::Kind::text) return std::make_unique<TextView>(images);
    return std::make_unique<PictureView>(images);
}

}  // namespace nevo
