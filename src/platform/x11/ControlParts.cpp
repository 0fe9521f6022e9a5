#include "platform/x11/ControlParts.h"

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/x11/Pictures.h"

namespace nevo {

namespace {

using TextStyle = Control::TextStyle;

constexpr double mostPictureSide = 1024;
constexpr float noteOpacity = 0.72F;
constexpr int badgeMarginX = 8;
constexpr int badgeMarginY = 2;
/// Before what takes the rest of the width; a longer title goes on in a second line.
constexpr int mostLettersBefore = 32;

bool isEmpty(const Size& size) { return !(size.width > 0) || !(size.height > 0); }

double sizeFactor(TextStyle style) {
    switch (style) {
        case TextStyle::largeTitle:
            return 1.7;
        case TextStyle::title:
            return 1.1;
        case TextStyle::note:
        case TextStyle::badge:
            return 0.9;
        default:
            return 1;
    }
}

QFont fontFor(TextStyle style) {
    QFont font = QApplication::font("QLabel");
    double factor = sizeFactor(style);
    // A font has one of both sizes.
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(static_cast<int>(std::lround(font.pixelSize() * factor)));
    }
    bool isHeading = style == TextStyle::largeTitle || style == TextStyle::title;
    // Where a font has no bold letters, as many Chinese ones, none lighter than these are made up.
    if (isHeading) font.setWeight(QFont::Bold);
    return font;
}

class WheelGuard : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* widget = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Wheel || widget == nullptr || widget->hasFocus()) return false;
        event->ignore();
        return true;
    }
};

}  // namespace

QString plainText(const std::string& text) { return QString::fromStdString(text); }

QString buttonText(const std::string& text) { return plainText(text).replace('&', "&&"); }

QString inLines(const QString& text, const QFontMetrics& metrics, int width) {
    QString result;
    QString line;
    for (const QString& word : text.split(' ')) {
        QString longer = line.isEmpty() ? word : line + ' ' + word;
        if (line.isEmpty() || metrics.horizontalAdvance(longer) <= width) {
            line = longer;
            continue;
        }
        result += line + '\n';
        line = word;
    }
    return result + line;
}

void describe(QWidget& widget, const Control& control) {
    widget.setObjectName(plainText(control.key));
    widget.setAccessibleName(plainText(control.title));
    widget.setAccessibleDescription(plainText(control.detail));
}

QIcon iconOf(const Image& image, const QWidget& widget, int height) {
    if (!image.bitmap || isEmpty(image.size)) return {};
    // A picture much wider than high is none that could stand beside a text.
    double wide = std::min(image.size.width / image.size.height, 4.0);
    double ratio = widget.devicePixelRatioF();
    QSize pixels(std::max(1, static_cast<int>(std::lround(height * wide * ratio))),
                 static_cast<int>(std::lround(height * ratio)));
    auto drawn = [&](QPalette::ColorGroup group, QPalette::ColorRole role) {
        QPixmap pixmap =
            QPixmap::fromImage(rendered(image, pixels, widget.palette().color(group, role)));
        pixmap.setDevicePixelRatio(ratio);
        return pixmap;
    };
    QIcon icon(drawn(QPalette::Active, QPalette::ButtonText));
    icon.addPixmap(drawn(QPalette::Active, QPalette::HighlightedText), QIcon::Selected);
    // Only a template can say by its colour that it is disabled; the style greys the others.
    if (image.isTemplate) {
        icon.addPixmap(drawn(QPalette::Disabled, QPalette::ButtonText), QIcon::Disabled);
    }
    return icon;
}

TextLabel::TextLabel() {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void TextLabel::showText(const std::string& newText, TextStyle newStyle) {
    style = newStyle;
    QFont newFont = fontFor(style);
    if (font() != newFont) setFont(newFont);
    QPalette colors = QApplication::palette("QLabel");
    if (style == TextStyle::note) {
        QColor color = colors.color(QPalette::WindowText);
        color.setAlphaF(noteOpacity);
        colors.setColor(QPalette::Active, QPalette::WindowText, color);
        colors.setColor(QPalette::Inactive, QPalette::WindowText, color);
    }
    setPalette(style == TextStyle::note ? colors : QPalette());
    bool isBadge = style == TextStyle::badge;
    setForegroundRole(isBadge ? QPalette::HighlightedText : QPalette::WindowText);
    setWordWrap(!isBadge);
    auto room = isBadge ? QSizePolicy::Maximum : QSizePolicy::Preferred;
    QSizePolicy policy(room, room);
    policy.setHeightForWidth(!isBadge);
    setSizePolicy(policy);
    int x = isBadge ? badgeMarginX : 0, y = isBadge ? badgeMarginY : 0;
    setContentsMargins(x, y, x, y);
    // Beside a widget that it names, a label takes ampersands for mnemonics.
    QString words = buddy() != nullptr ? buttonText(newText) : plainText(newText);
    if (words != text()) setText(words);
    setVisible(!newText.empty());
}

void TextLabel::paintEvent(QPaintEvent* event) {
    if (style == TextStyle::badge) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().highlight());
        painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    }
    QLabel::paintEvent(event);
}

PictureBox::PictureBox() { setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed); }

void PictureBox::showPicture(const std::optional<Image>& image, double height) {
    bool isThere = image && image->bitmap && !isEmpty(image->size) && height > 0;
    picture = isThere ? image : std::nullopt;
    if (isThere) {
        double factor = height / image->size.height;
        double largest = std::max(image->size.width, image->size.height) * factor;
        factor *= std::min(1.0, mostPictureSide / largest);
        setFixedSize(static_cast<int>(std::ceil(image->size.width * factor)),
                     static_cast<int>(std::ceil(image->size.height * factor)));
    } else {
        setFixedSize(0, 0);
    }
    setVisible(isThere);
    update();
}

void PictureBox::paintEvent(QPaintEvent*) {
    if (!picture) return;
    QSize pixels = size() * devicePixelRatioF();
    QImage drawn = rendered(*picture, pixels, palette().color(foregroundRole()));
    drawn.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(this);
    if (!isEnabled()) painter.setOpacity(0.5);
    painter.drawImage(0, 0, drawn);
}

Field::Field(QWidget* operated, bool takesWidth, QWidget* after)
    : title(new TextLabel), detail(new TextLabel), leavesLittle(takesWidth) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(3);
    // Assistive technology reads a list's name from its label, also from one that is hidden.
    title->setBuddy(operated);
    grid->addWidget(title, 0, 0);
    grid->addWidget(operated, 0, 1);
    if (after != nullptr) grid->addWidget(after, 0, 2);
    grid->addWidget(detail, 1, 0, 1, after != nullptr ? 3 : 2);
    grid->setColumnStretch(takesWidth ? 1 : 0, 1);
}

void Field::showTexts(const Control& control) {
    title->showText(control.title, TextStyle::body);
    if (control.hidesTitle) title->hide();
    detail->showText(control.detail, TextStyle::note);
    if (!leavesLittle) return;
    // A label that may be broken asks for less than its line is long, and would get no more. What
    // lays it out counts in fractions of a unit.
    QFontMetrics metrics(title->font());
    int letter = metrics.averageCharWidth();
    title->setMinimumWidth(
        std::min(metrics.horizontalAdvance(plainText(control.title)) + letter / 2 + 1,
                 letter * mostLettersBefore));
}

void stopAtChosen(const QList<QAbstractButton*>& choice) {
    auto chosen = std::find_if(choice.begin(), choice.end(),
                               [](const QAbstractButton* button) { return button->isChecked(); });
    if (chosen == choice.end()) chosen = choice.begin();
    for (QAbstractButton* button : choice) {
        button->setFocusPolicy(button == *chosen ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

void leaveWheelToPage(QWidget& widget) {
    widget.setFocusPolicy(Qt::StrongFocus);
    widget.installEventFilter(new WheelGuard(&widget));
}

}  // namespace nevo
