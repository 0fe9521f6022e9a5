#pragma once

#include <QAbstractButton>
#include <QIcon>
#include <QLabel>
#include <QWidget>
#include <optional>

#include "platform/Controls.h"

namespace nevo {

// What the widgets of several kinds of controls are made of.

/// True on the widget of the control that Return is for.
inline constexpr const char* defaultProperty = "isDefaultControl";

/// As it is: nothing in it is markup or a mnemonic.
QString plainText(const std::string& text);
/// For a widget that would take an ampersand for the sign of its mnemonic.
QString buttonText(const std::string& text);
/// Broken at spaces, so that no line is wider than `width` if its words allow it.
QString inLines(const QString& text, const QFontMetrics& metrics, int width);

/// Gives the widget that is operated the control's key as its name, and what assistive technology
/// says of it.
void describe(QWidget& widget, const Control& control);

/// `image` in the colours that `widget` has for its text; at most `height` units high.
QIcon iconOf(const Image& image, const QWidget& widget, int height);

/// Text in one of the styles. Follows font and palette of the application each time it is shown.
class TextLabel : public QLabel {
public:
    TextLabel();
    /// Hides itself when there is nothing to say.
    void showText(const std::string& text, Control::TextStyle newStyle);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Control::TextStyle style = Control::TextStyle::body;
};

/// A picture of a fixed size; a template in the colour of the text around it, as sharp as the
/// screen can show it.
class PictureBox : public QWidget {
public:
    PictureBox();
    /// Sizes are Qt's units; those beyond what a window can sensibly hold are cut down. Nothing,
    /// or a picture without pixels, takes no room.
    void showPicture(const std::optional<Image>& image, double height);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<Image> picture;
};

/// A control with its title before it and its detail below. Both are hidden when empty.
class Field : public QWidget {
public:
    /// Owns `operated`; `after` may stand behind it, or is nullptr.
    Field(QWidget* operated, bool takesWidth, QWidget* after = nullptr);
    void showTexts(const Control& control);

private:
    TextLabel* title;
    TextLabel* detail;
    bool leavesLittle;
};

/// Of a choice Tab stops at the button that is on, or at the first one if none is; arrow keys lead
/// to the others.
void stopAtChosen(const QList<QAbstractButton*>& choice);

/// Keeps the wheel from changing `widget` while a page is scrolled with the pointer over it.
void leaveWheelToPage(QWidget& widget);

}  // namespace nevo
