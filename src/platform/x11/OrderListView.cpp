#include <QDropEvent>
#include <QKeyEvent>
#include <QListWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/x11/ControlParts.h"
#include "platform/x11/ControlViews.h"

namespace nevo {

namespace {

using Values = std::vector<std::string>;
constexpr int mostRowsInSight = 12;

/// Rows that are dragged, or moved by Alt and an arrow key, into another order.
class OrderList : public QListWidget {
public:
    OrderList() {
        setDragDropMode(QAbstractItemView::InternalMove);
        setDefaultDropAction(Qt::MoveAction);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setTextElideMode(Qt::ElideNone);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    std::function<void()> moved;

    Values values() const {
        Values result;
        for (int i = 0; i < count(); ++i) {
            result.push_back(item(i)->data(Qt::UserRole).toString().toStdString());
        }
        return result;
    }

    QSize sizeHint() const override {
        int rows = std::clamp(count(), 1, mostRowsInSight);
        int rowHeight = count() > 0 ? sizeHintForRow(0) : fontMetrics().height();
        return {minimumSizeHint().width(), rows * rowHeight + 2 * frameWidth()};
    }
    QSize minimumSizeHint() const override {
        int width = count() > 0 ? sizeHintForColumn(0) : 0;
        return {width + 2 * frameWidth(), 2 * fontMetrics().height()};
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        bool isUp = event->key() == Qt::Key_Up, isDown = event->key() == Qt::Key_Down;
        if (!event->modifiers().testFlag(Qt::AltModifier) || (!isUp && !isDown)) {
            QListWidget::keyPressEvent(event);
            return;
        }
        int from = currentRow(), to = from + (isUp ? -1 : 1);
        if (from < 0 || to < 0 || to >= count()) return;
        QListWidgetItem* taken = takeItem(from);
        insertItem(to, taken);
        setCurrentItem(taken);
        announce();
    }

    void dropEvent(QDropEvent* event) override {
        Values before = values();
        QListWidget::dropEvent(event);
        if (values() != before) announce();
    }

private:
    void announce() {
        if (auto call = moved) call();
    }
};

class OrderListView : public ControlView {
public:
    explicit OrderListView(const Images& pictures) : OrderListView(pictures, new OrderList) {}
    ~OrderListView() override { list->moved = nullptr; }

    void appendOperable(std::vector<QWidget*>& all) const override { all.push_back(list); }

protected:
    void present() override {
        describe(*list, control());
        title->showText(control().hidesTitle ? std::string() : control().title,
                        Control::TextStyle::body);
        detail->showText(control().detail, Control::TextStyle::note);
        if (!hasRowsOf(control().options)) makeRows();
        int side = QFontMetrics(list->font()).height();
        for (int i = 0; i < list->count(); ++i) {
            const ControlOption& option = control().options[static_cast<std::size_t>(i)];
            list->item(i)->setText(plainText(option.title));
            list->item(i)->setIcon(option.image ? iconOf(*option.image, *list, side) : QIcon());
        }
        list->updateGeometry();
    }

private:
    OrderListView(const Images& pictures, OrderList* operated)
        : ControlView(pictures, new QWidget),
          list(operated),
          title(new TextLabel),
          detail(new TextLabel) {
        auto* column = new QVBoxLayout(&widget());
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(3);
        column->addWidget(title);
        column->addWidget(list);
        column->addWidget(detail);
        list->moved = [this] { tell(control().reorder, list->values()); };
    }

    bool hasRowsOf(const std::vector<ControlOption>& options) const {
        Values values = list->values();
        return std::equal(values.begin(), values.end(), options.begin(), options.end(),
                          [](const std::string& value, const ControlOption& option) {
                              return value == option.value;
                          });
    }

    /// The row in use stays in use, wherever it is now.
    void makeRows() {
        auto* current = list->currentItem();
        QString inUse = current ? current->data(Qt::UserRole).toString() : QString();
        list->clear();
        for (const ControlOption& option : control().options) {
            auto* row = new QListWidgetItem(plainText(option.title), list);
            row->setData(Qt::UserRole, plainText(option.value));
            row->setFlags(row->flags() & ~Qt::ItemIsDropEnabled);
            if (current != nullptr && inUse == plainText(option.value)) list->setCurrentItem(row);
        }
    }

    OrderList* list;
    TextLabel* title;
    TextLabel* detail;
};

}  // namespace

std::unique_ptr<ControlView> makeOrderListView(const Images& images) {
    return std::make_unique<OrderListView>(images);
}

}  // namespace nevo
