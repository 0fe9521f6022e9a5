#include "platform/x11/ControlGroup.h"

#include <QScrollBar>
#include <algorithm>

namespace nevo {

namespace {

using Kind = Control::Kind;
constexpr int spacing = 10;
constexpr int leastPageHeight = 80;

bool isButton(const ControlView& view) {
    Kind kind = view.control().kind;
    return kind == Kind::button || kind == Kind::link;
}

bool isDefaultButton(const std::unique_ptr<ControlView>& view) { return view->control().isDefault; }

}  // namespace

void ControlGroup::takeChildren(std::vector<Control> wanted) {
    auto old = std::exchange(children, {});
    children.resize(wanted.size());
    auto takeFirst = [&](std::size_t index, auto fits) {
        auto found = std::find_if(old.begin(), old.end(),
                                  [&](const auto& view) { return view && fits(*view); });
        if (found != old.end()) children[index] = std::move(*found);
    };
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        takeFirst(i, [&](const ControlView& view) { return view.canBecome(wanted[i]); });
    }
    // A group without a key stays the same one when its first control has come or gone.
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (children[i]) continue;
        takeFirst(i, [&](const ControlView& view) { return view.resembles(wanted[i]); });
    }
    for (auto& view : old) {
        if (view) dismiss(view->widget());
    }
    old.clear();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        bool isNew = !children[i];
        if (isNew) children[i] = makeControlView(wanted[i], images);
        place(children[i]->widget(), static_cast<int>(i));
        children[i]->update(std::move(wanted[i]));
    }
    arrange();
}

void ControlGroup::refresh() {
    ControlView::refresh();
    for (auto& child : children) child->refresh();
}

void ControlGroup::appendOperable(std::vector<QWidget*>& list) const {
    for (const auto& child : children) child->appendOperable(list);
}

BoxView::BoxView(const Images& pictures, QWidget* outer, QBoxLayout* inside)
    : ControlGroup(pictures, outer), box(inside) {
    box->setSpacing(spacing);
}

BoxView::~BoxView() = default;

void BoxView::present() { widget().setAccessibleName(QString::fromStdString(control().title)); }

void BoxView::setCentered(bool centered) {
    if (centered == isCentered) return;
    isCentered = centered;
    removeSpaces();
    arrange();
}

bool BoxView::isPage() const {
    return control().kind == Kind::column &&
           std::any_of(children.begin(), children.end(), [](const auto& child) {
               return child->control().kind == Kind::text &&
                      child->control().style == Control::TextStyle::largeTitle;
           });
}

bool BoxView::fillsHeight() const {
    return isPage() || (control().kind == Kind::column &&
                        std::any_of(children.begin(), children.end(),
                                    [](const auto& child) { return child->fillsHeight(); }));
}

void BoxView::takeChildren(std::vector<Control> wanted) {
    // Places count without them.
    removeSpaces();
    ControlGroup::takeChildren(std::move(wanted));
}

void BoxView::arrange() {
    if (isRow()) {
        arrangeRow();
    } else {
        arrangeColumn();
    }
    // A widget that joins one in sight would wait for a turn of the loop.
    for (auto& child : children) {
        bool hasContent =
            child->control().kind != Kind::symbol && child->control().kind != Kind::image;
        if (hasContent) child->widget().show();
    }
}

void BoxView::arrangeRow() {
    bool fills = false;
    for (auto& child : children) {
        bool takesWidth = child->fillsWidth();
        bool isCard = child->control().kind == Kind::card;
        fills |= takesWidth;
        box->setStretchFactor(&child->widget(), takesWidth ? 1 : 0);
        box->setAlignment(&child->widget(), isCard ? Qt::Alignment() : Qt::AlignVCenter);
    }
    if (fills) return;
    bool isAtEnd = std::any_of(children.begin(), children.end(), isDefaultButton);
    if (!isAtEnd) addSpace(static_cast<int>(children.size()));
    if (isAtEnd || isCentered) addSpace(0);
}

void BoxView::arrangeColumn() {
    bool page = isPage();
    bool centers = page || isCentered;
    for (auto& child : children) {
        bool isNarrow = !child->fillsWidth() || isButton(*child);
        auto alignment = centers ? Qt::AlignHCenter : Qt::AlignLeft;
        // A sign alone, such as that for closing, belongs into the corner.
        if (isButton(*child) && child->control().hidesTitle) alignment = Qt::AlignRight;
        box->setAlignment(&child->widget(), isNarrow ? alignment : Qt::Alignment());
        child->setCentered(centers);
    }
    if (!page) return;
    bool hasFoot = children.size() > 1 &&
                   (children.back()->control().kind == Kind::row || isButton(*children.back()));
    addSpace(static_cast<int>(children.size()) - (hasFoot ? 1 : 0));
    addSpace(0);
}

void BoxView::addSpace(int index) {
    bool row = isRow();
    auto grows = QSizePolicy::Expanding, stays = QSizePolicy::Minimum;
    spaces.push_back(new QSpacerItem(0, 0, row ? grows : stays, row ? stays : grows));
    box->insertItem(index, spaces.back());
}

void BoxView::removeSpaces() {
    for (QSpacerItem* space : spaces) {
        box->removeItem(space);
        delete space;
    }
    spaces.clear();
}

PageArea::PageArea(int margin) : holder(new QWidget), column(new QVBoxLayout(holder)) {
    column->setContentsMargins(margin, margin, margin, margin);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setWidget(holder);
    // What lies behind a page is the window's or the tab's.
    holder->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
}

void PageArea::setContent(QWidget& content, bool fills) {
    if (column->indexOf(&content) < 0) column->addWidget(&content);
    column->setAlignment(&content, fills ? Qt::Alignment() : Qt::AlignTop);
    content.show();
    updateGeometry();
}

QSize PageArea::minimumSizeHint() const {
    int bar = verticalScrollBar()->sizeHint().width();
    return {neededWidth() + bar, std::min(leastPageHeight, holder->minimumSizeHint().height())};
}

int PageArea::neededWidth() const { return column->totalMinimumSize().width(); }

int PageArea::neededHeight(int width) const {
    return column->hasHeightForWidth() ? column->totalHeightForWidth(width)
                                       : column->totalSizeHint().height();
}

}  // namespace nevo
