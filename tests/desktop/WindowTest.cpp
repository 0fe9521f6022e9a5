// The windows of the program on the real desktop: what a person can do in them, and what stays when
// their content is another one.

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDrag>
#include <QListWidget>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QUrl>

#include "desktop/WindowSession.h"

namespace nevo::desktoptest {
namespace {

using Kind = Control::Kind;

class WindowTest : public WindowSession {
protected:
    Control everything() {
        Control first = group(
            Kind::column, "first",
            {toggle("toggle", heard), choice("picker", heard, Kind::picker, {"a", "b", "c"}, "a"),
             choice("radio", heard, Kind::radioGroup, {"x", "y"}, "x"),
             slider("slider", heard, 5, 1)});
        Control second = group(
            Kind::column, "second",
            {group(Kind::row, {}, {card("one", heard, true), card("two", heard, false)}),
             group(Kind::row, {}, {button("link", heard, Kind::link), button("button", heard)}),
             orderList("list", heard, {"p", "q", "r"})});
        Control all = group(Kind::tabs, "tabs", {first, second});
        all.selected = "first";
        all.select = [this](const std::string& tab) {
            heard.push_back("tabs=" + tab);
            Control next = everything();
            next.selected = tab;
            window->setContent(next);
        };
        return all;
    }
    /// In sight at a size that needs no scrolling.
    void openEverything() {
        auto configuration = configured();
        configuration.size.height = 480;
        open(everything(), configuration);
    }

    void press(xcb_keysym_t key) {
        hand->press(key);
        settle();
    }
    Point tabPlace(int index) {
        auto& bar = *widgetAs<QTabWidget>("tabs").tabBar();
        QPoint place = bar.mapToGlobal(bar.tabRect(index).center());
        return {static_cast<double>(place.x()), static_cast<double>(place.y())};
    }
};

TEST_F(WindowTest, whatThePointerDoesIsTold) {
    openEverything();
    hand->click(placeIn(widget("toggle"), 0.05));
    EXPECT_TRUE(hearsSoon({"toggle=on"}));
    // It goes back where its owner doesn't follow.
    EXPECT_TRUE(soon([&] { return !widgetAs<QCheckBox>("toggle").isChecked(); }));
    clickOn("picker");
    auto& list = *widgetAs<QComboBox>("picker").view();
    ASSERT_TRUE(soon([&] { return list.isVisible(); }));
    settle();
    QRect row = list.visualRect(list.model()->index(2, 0));
    QPoint third = list.viewport()->mapToGlobal(row.topLeft() + QPoint(20, 6));
    hand->click({static_cast<double>(third.x()), static_cast<double>(third.y())});
    EXPECT_TRUE(hearsSoon({"picker=c"}));
    hand->click(placeIn(widget("radio/y"), 0.05));
    EXPECT_TRUE(hearsSoon({"radio=y"}));
    auto& bar = widgetAs<QSlider>("slider");
    hand->drag(placeIn(bar), placeIn(bar, 0.99));
    ASSERT_TRUE(soon([&] { return !heard.empty() && heard.back() == "slider=10"; }));
    heard.clear();

    hand->click(tabPlace(1));
    EXPECT_TRUE(hearsSoon({"tabs=second"}));
    for (const char* key : {"two", "link", "button"}) {
        clickOn(key);
        EXPECT_TRUE(hearsSoon({key}));
    }
}

TEST_F(WindowTest, theKeyboardReachesAllInTheOrderOfTheTree) {
    openEverything();
    widgetAs<QTabWidget>("tabs").tabBar()->setFocus();
    Names order;
    for (int i = 0; i < 4; ++i) {
        press(tabKey);
        order.push_back(focused());
    }
    EXPECT_EQ(order, (Names{"toggle", "picker", "radio/x", "slider"}));
    press(rightKey);
    EXPECT_TRUE(hearsSoon({"slider=6"}));
    press(tabKey);
    press(rightKey);
    EXPECT_TRUE(hearsSoon({"tabs=second"}));

    Heard expected;
    for (const char* key : {"one", "link", "button"}) {
        press(tabKey);
        EXPECT_EQ(focused(), key);
        press(spaceKey);
        press(returnKey);
        expected.insert(expected.end(), {key, key});
        if (key != std::string("one")) continue;
        // A choice of cards goes on by the arrow keys, as one of radio buttons does.
        press(rightKey);
        expected.push_back("two");
    }
    EXPECT_TRUE(hearsSoon(expected));
    press(tabKey);
    EXPECT_EQ(focused(), "list");
    hand->press(downKey, {leftAltKey});
    EXPECT_TRUE(hearsSoon({"list=q,p,r"}));
}

TEST_F(WindowTest, rowsAreDraggedIntoAnotherOrder) {
    open(group(Kind::column, {}, {orderList("list", heard, {"p", "q", "r"})}));
    auto& list = widgetAs<QListWidget>("list");
    auto placeOf = [&](int row, double share) {
        QRect rect = list.visualItemRect(list.item(row));
        QPoint at = list.viewport()->mapToGlobal(
            QPoint(40, rect.top() + static_cast<int>(rect.height() * share)));
        return Point{static_cast<double>(at.x()), static_cast<double>(at.y())};
    };
    hand->drag(placeOf(0, 0.5), placeOf(2, 0.95), [this] { settle(); });
    EXPECT_TRUE(hearsSoon({"list=q,r,p"}));
    // Its owner hasn't followed.
    EXPECT_TRUE(soon([&] { return list.item(0)->text() == "Title p"; }));
    EXPECT_EQ(list.count(), 3);
}

/// What a file manager shows of a file.
class DraggedFile : public QWidget {
public:
    explicit DraggedFile(QList<QUrl> files) : urls(std::move(files)) {}

protected:
    void mouseMoveEvent(QMouseEvent*) override {
        if (urls.isEmpty()) return;
        auto* content = new QMimeData;
        content->setUrls(std::exchange(urls, {}));
        QDrag drag(this);
        drag.setMimeData(content);
        drag.exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
    }

private:
    QList<QUrl> urls;
};

TEST_F(WindowTest, aDropZoneTakesAFileOfThisMachineAndIsAButton) {
    open(group(Kind::column, {}, {dropZone("zone", heard)}));
    clickOn("zone");
    widget("zone").setFocus();
    press(spaceKey);
    EXPECT_TRUE(hearsSoon({"zone", "zone"}));

    for (const auto& [url, told] :
         {std::pair{QUrl("https://example.org/a.png"), Heard()},
          {QUrl::fromLocalFile("/tmp/a b%.png"), Heard{"zone=/tmp/a b%.png"}}}) {
        DraggedFile file({url});
        file.setGeometry(10, 100, 60, 60);
        file.show();
        settle();
        hand->drag(placeIn(file), placeIn(widget("zone")));
        settle();
        EXPECT_TRUE(hearsSoon(told));
    }
}

TEST_F(WindowTest, aColourIsChosenInAWindowThatBlocksNothing) {
    Control well = group(Kind::colorWell, "well", {});
    well.color = {1, 0, 0, 1};
    well.pickColor = [this](const Color& color) {
        // The answer takes the window away in the middle of the chooser's own event.
        heard.push_back(color == Color{0, 0, 1, 1} ? "blue" : "another");
        window.reset();
    };
    open(group(Kind::column, {}, {well, toggle("toggle", heard)}));
    clickOn("well");
    ASSERT_TRUE(soon([&] { return widgetOf("well/dialog") != nullptr; }));
    widgetOf("well/dialog")->move(10, 60);
    settle();
    hand->click(placeIn(widget("toggle"), 0.05));
    EXPECT_TRUE(hearsSoon({"toggle=on"}));
    auto* dialog = qobject_cast<QColorDialog*>(widgetOf("well/dialog"));
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->currentColor(), QColor(Qt::red));
    // Each change is told while the chooser is open.
    dialog->setCurrentColor(Qt::blue);
    EXPECT_TRUE(hearsSoon({"blue"}));
    EXPECT_TRUE(soon([&] { return widgetOf("well/dialog") == nullptr; }));
}

TEST_F(WindowTest, aNewContentKeepsWhatStaysAndTellsNothing) {
    auto content = [this](bool hasMore, const std::string& selected) {
        std::vector<Control> rows;
        if (hasMore) rows.push_back(text("more", "More has come"));
        rows.push_back(toggle("toggle", heard, hasMore));
        rows.push_back(slider("slider", heard, hasMore ? 2 : 5, 1));
        rows.push_back(choice("picker", heard, Kind::picker, {"a", "b", "c"}, selected));
        rows.push_back(choice("radio", heard, Kind::radioGroup, {"x", "y"}, hasMore ? "x" : "y"));
        for (int i = 0; i < 40; ++i) rows.push_back(text("t" + std::to_string(i), "Text"));
        Control page = group(Kind::column, "page", {group(Kind::section, {}, rows)});
        return group(Kind::tabs, "tabs", {page});
    };
    open(content(false, "a"));
    auto& picker = widgetAs<QComboBox>("picker");
    picker.setFocus();
    auto& bar =
        *widgetOf()->findChild<QTabWidget*>()->findChild<QScrollArea*>()->verticalScrollBar();
    bar.setValue(12);
    clickOn("picker");
    ASSERT_TRUE(soon([&] { return picker.view()->isVisible(); }));

    window->setContent(content(true, "b"));
    settle();
    EXPECT_EQ(&widget("picker"), &picker);
    EXPECT_TRUE(picker.view()->isVisible());
    EXPECT_EQ(bar.value(), 12);
    EXPECT_EQ(picker.currentText(), "Title b");
    EXPECT_TRUE(widgetAs<QCheckBox>("toggle").isChecked());
    EXPECT_EQ(widgetAs<QSlider>("slider").value(), 2);
    EXPECT_LT(widget("more").y(), widget("toggle").y() + widget("toggle").parentWidget()->y());
    press(escapeKey);
    EXPECT_EQ(focused(), "picker");
    EXPECT_EQ(heard, Heard());

    // Also when it goes elsewhere in the tree, where its widget can't be the same.
    window->setContent(group(Kind::row, "other", {content(true, "c").children[0]}));
    settle();
    EXPECT_EQ(focused(), "picker");
    EXPECT_EQ(heard, Heard());
}

TEST_F(WindowTest, aSliderInTheHandIsLeftToTheHand) {
    auto content = [this](double number) {
        Control control = slider("slider", heard, number, 1);
        control.slide = [this](double) { heard.push_back("moved"); };
        return group(Kind::column, {}, {control});
    };
    open(content(5));
    auto& bar = widgetAs<QSlider>("slider");
    bar.setSliderDown(true);
    bar.setSliderPosition(8);
    EXPECT_EQ(heard, Heard{"moved"});
    window->setContent(content(6));
    EXPECT_EQ(bar.sliderPosition(), 8);
    bar.setSliderDown(false);
    EXPECT_EQ(bar.value(), 6);
    EXPECT_EQ(heard, Heard{"moved"});
}

}  // namespace
}  // namespace nevo::desktoptest
