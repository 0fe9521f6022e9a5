#pragma once

#include <QBoxLayout>
#include <QScrollArea>
#include <QSpacerItem>

#include "platform/x11/ControlView.h"

namespace nevo {

/// A control with children. Those that stay keep their widgets, wherever among the others they go.
class ControlGroup : public ControlView {
public:
    using ControlView::ControlView;
    void refresh() override;
    void appendOperable(std::vector<QWidget*>& list) const override;

protected:
    void takeChildren(std::vector<Control> wanted) override;

    /// Puts a child's widget at `index`; it is here already, elsewhere, or new.
    virtual void place(QWidget& child, int index) = 0;
    /// A child's widget is about to go.
    virtual void dismiss(QWidget& child) = 0;
    /// All children are in place and updated.
    virtual void arrange() {}

    std::vector<std::unique_ptr<ControlView>> children;
};

/// Children one below the other, or side by side.
class BoxView : public ControlGroup {
public:
    BoxView(const Images& pictures, QWidget* outer, QBoxLayout* inside);
    ~BoxView() override;

    /// A page does, and what it stands in.
    bool fillsHeight() const override;
    void setCentered(bool centered) override;

protected:
    void present() override;
    void place(QWidget& child, int index) override { box->insertWidget(index, &child); }
    void dismiss(QWidget& child) override { box->removeWidget(&child); }
    void takeChildren(std::vector<Control> wanted) override;
    void arrange() override;

    QBoxLayout* box;

private:
    bool isRow() const { return box->direction() == QBoxLayout::LeftToRight; }
    /// Whether it is headed by a large title: such a page has all in its middle, and the row of its
    /// buttons at the lower edge.
    bool isPage() const;
    void arrangeRow();
    void arrangeColumn();
    void addSpace(int index);
    void removeSpaces();

    std::vector<QSpacerItem*> spaces;
    bool isCentered = false;
};

/// A page that scrolls up and down when there is too little height for it, never sideways: it is
/// at least as wide as its content needs.
class PageArea : public QScrollArea {
public:
    explicit PageArea(int margin);
    /// Owns `content`; `fills` when it wants all the height.
    void setContent(QWidget& content, bool fills);
    QSize minimumSizeHint() const override;
    /// What the content needs without scrolling: its least width, and its height at `width`.
    int neededWidth() const;
    int neededHeight(int width) const;

private:
    QWidget* holder;
    QVBoxLayout* column;
};

}  // namespace nevo
