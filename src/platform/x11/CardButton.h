#pragma once

#include <QPushButton>

namespace nevo {

/// A button that looks like a framed part of the page and holds other widgets. One of a row of them
/// may be chosen; then all of the row are, for assistive technology, choices of which one is on.
class CardButton : public QPushButton {
public:
    CardButton();
    /// Who is told of a click decides whether it is chosen: the click itself changes nothing.
    void showChosen(bool chosen);
    void setDashed(bool dashed) { isDashed = dashed; }

    QSize sizeHint() const override { return QWidget::sizeHint(); }
    QSize minimumSizeHint() const override { return QWidget::minimumSizeHint(); }

protected:
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;

private:
    void followSiblings();

    bool isChosen = false;
    bool isDashed = false;
};

}  // namespace nevo
