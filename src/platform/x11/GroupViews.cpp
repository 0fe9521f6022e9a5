#include <QGroupBox>
#include <QPainter>
#include <QPushButton>
#include <QStyleOption>
#include <QTabBar>
#include <QTabWidget>
#include <map>

#include "platform/x11/CardButton.h"
#include "platform/x11/ControlGroup.h"
#include "platform/x11/ControlParts.h"
#include "platform/x11/ControlViews.h"

namespace nevo {

namespace {

using Kind = Control::Kind;
using TextStyle = Control::TextStyle;
constexpr int pageMargin = 14;

QBoxLayout* layoutWithoutMargins(QBoxLayout::Direction direction, QWidget* parent) {
    auto* made = new QBoxLayout(direction, parent);
    made->setContentsMargins(0, 0, 0, 0);
    return made;
}

std::unique_ptr<ControlView> makeBox(QBoxLayout::Direction direction, const Images& images) {
    auto* outer = new QWidget;
    return std::make_unique<BoxView>(images, outer, layoutWithoutMargins(direction, outer));
}

/// A heading and what it says more, above a frame with the children.
class SectionView : public BoxView {
public:
    explicit SectionView(const Images& pictures)
        : SectionView(pictures, new QWidget, new QGroupBox) {}
    void setCentered(bool) override {}

protected:
    void present() override {
        title->showText(control().hidesTitle ? std::string() : control().title, TextStyle::title);
        detail->showText(control().detail, TextStyle::note);
        frame->setAccessibleName(plainText(control().title));
    }

private:
    SectionView(const Images& pictures, QWidget* outer, QGroupBox* inner)
        : BoxView(pictures, outer, new QBoxLayout(QBoxLayout::TopToBottom, inner)),
          title(new TextLabel),
          detail(new TextLabel),
          frame(inner) {
        auto* column = layoutWithoutMargins(QBoxLayout::TopToBottom, outer);
        column->setSpacing(4);
        for (QWidget* part : {static_cast<QWidget*>(title), static_cast<QWidget*>(detail),
                              static_cast<QWidget*>(frame)}) {
            column->addWidget(part);
        }
    }

    TextLabel* title;
    TextLabel* detail;
    QGroupBox* frame;
};

/// A framed column; a button as a whole where it can be pressed. What a person reads of it are its
/// children.
class CardView : public BoxView {
public:
    CardView(const Images& pictures, bool operated)
        : CardView(pictures, operated ? new CardButton : nullptr) {}

    void setCentered(bool) override {}
    void appendOperable(std::vector<QWidget*>& list) const override {
        if (button != nullptr) list.push_back(button);
        BoxView::appendOperable(list);
    }

protected:
    void present() override {
        describe(widget(), control());
        if (button != nullptr) button->showChosen(control().isOn);
    }

private:
    CardView(const Images& pictures, CardButton* operated)
        : CardView(pictures, operated, operated ? static_cast<QWidget*>(operated) : new QGroupBox) {
    }
    CardView(const Images& pictures, CardButton* operated, QWidget* outer)
        : BoxView(pictures, outer, new QBoxLayout(QBoxLayout::TopToBottom, outer)),
          button(operated) {
        if (button == nullptr) return;
        QObject::connect(button, &QPushButton::clicked, &context,
                         [this] { tell(control().press); });
    }

    CardButton* button;
};

class TabsView : public ControlGroup {
public:
    explicit TabsView(const Images& pictures)
        : ControlGroup(pictures, new QTabWidget), tabs(static_cast<QTabWidget*>(&widget())) {
        tabs->tabBar()->setUsesScrollButtons(false);
        tabs->tabBar()->setElideMode(Qt::ElideNone);
        // The row of tabs takes the keys. It is read before the pages, as it is seen.
        tabs->setFocusProxy(nullptr);
        tabs->setFocusPolicy(Qt::NoFocus);
        tabs->tabBar()->lower();
        QObject::connect(tabs, &QTabWidget::currentChanged, &context, [this](int index) {
            auto place = static_cast<std::size_t>(index);
            if (index < 0 || place >= children.size()) return;
            tell(control().select, children[place]->control().key);
        });
    }

    bool fillsHeight() const override { return true; }
    void appendOperable(std::vector<QWidget*>& list) const override {
        list.push_back(tabs->tabBar());
        ControlGroup::appendOperable(list);
    }

protected:
    void present() override {
        describe(*tabs, control());
        tabs->tabBar()->setAccessibleName(plainText(control().title));
        select();
    }

    void takeChildren(std::vector<Control> wanted) override {
        // The tab has said it.
        for (Control& control : wanted) control.hidesTitle = true;
        ControlGroup::takeChildren(std::move(wanted));
    }

    void place(QWidget& child, int index) override {
        auto found = pages.find(&child);
        if (found == pages.end()) {
            found = pages.emplace(&child, new PageArea(pageMargin)).first;
            tabs->insertTab(index, found->second, QString());
        }
        int from = tabs->indexOf(found->second);
        if (from != index) tabs->tabBar()->moveTab(from, index);
    }

    void dismiss(QWidget& child) override {
        auto found = pages.find(&child);
        if (found == pages.end()) return;
        tabs->removeTab(tabs->indexOf(found->second));
        found->second->hide();
        found->second->deleteLater();
        pages.erase(found);
    }

    void arrange() override {
        for (std::size_t i = 0; i < children.size(); ++i) {
            ControlView& child = *children[i];
            int index = static_cast<int>(i);
            pages.at(&child.widget())->setContent(child.widget(), child.fillsHeight());
            tabs->setTabText(index, buttonText(child.control().title));
            auto symbol = child.control().symbol.empty()
                              ? std::nullopt
                              : images.systemSymbol(child.control().symbol, {});
            int side = tabs->iconSize().height();
            tabs->setTabIcon(index, symbol ? iconOf(*symbol, *tabs, side) : QIcon());
        }
        select();
    }

private:
    void select() {
        for (std::size_t i = 0; i < children.size(); ++i) {
            if (children[i]->control().key == control().selected) {
                tabs->setCurrentIndex(static_cast<int>(i));
            }
        }
    }

    QTabWidget* tabs;
    std::map<QWidget*, PageArea*> pages;
};

}  // namespace

std::unique_ptr<ControlView> makeGroupView(const Control& control, const Images& images) {
    switch (control.kind) {
        case Kind::section:
            return std::make_unique<SectionView>(images);
        case Kind::card:
            return std::make_unique<CardView>(images, control.press != nullptr);
        case Kind::tabs:
            return std::make_unique<TabsView>(images);
        case Kind::row:
            return makeBox(QBoxLayout::LeftToRight, images);
        default:
            return makeBox(QBoxLayout::TopToBottom, images);
    }
}

}  // namespace nevo
