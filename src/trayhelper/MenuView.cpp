#include "trayhelper/MenuView.h"

#include <QActionGroup>
#include <QInputEvent>
#include <QPixmap>
#include <QStyle>
#include <algorithm>

#include "trayhelper/IconLookup.h"
#include "trayhelper/Limits.h"
#include "trayhelper/Picture.h"

namespace nevo::trayhelper {

namespace {

constexpr int mostLevels = 8;
constexpr int largestIconSide = 512;
/// The menu holds pointer and keyboard: if a picture took forever, so would the desktop.
constexpr int mostSecondsOfALevel = 3;

/// Whether the one can become the other without changing its place or kind.
bool isSameKind(const MenuRow& one, const MenuRow& other) {
    return one.id == other.id && one.isSeparator == other.isSeparator &&
           one.hasSubmenu == other.hasSubmenu && one.mark == other.mark;
}

}  // namespace

MenuView::MenuView(MenuSource& from, int id, MenuView* above)
    : QMenu(above), source(from), levelId(id), parentLevel(above) {
    connect(&source, &MenuSource::changed, this, [this] {
        if (isVisible()) reload(false);
    });
}

void MenuView::open(QPoint corner) {
    place = corner;
    popup(place);
}

void MenuView::load(const std::function<void()>& done) {
    loaded = done;
    reload(true);
}

void MenuView::reload(bool isNew) {
    // Not more than one question at a time, however often its program says that all is new.
    isStale = isLoading;
    if (isLoading) return;
    isLoading = true;
    source.load(levelId, isNew, this, [this](const std::optional<MenuRows>& news) {
        isLoading = false;
        if (news) take(*news);
        if (auto done = std::exchange(loaded, {})) done();
        if (isStale && isVisible()) reload(false);
    });
}

void MenuView::take(const MenuRows& news) {
    ComputingLimit limit(mostSecondsOfALevel);
    // What stays in its place is changed there, so that the pointer and open submenus stay on it.
    auto same = std::mismatch(rows.begin(), rows.end(), news.begin(), news.end(), isSameKind);
    auto kept = static_cast<std::size_t>(same.second - news.begin());
    isTaking = true;
    QList<QAction*> shown = actions();
    for (std::size_t i = 0; i < kept; ++i) {
        if (rows[i] != news[i]) update(*shown[static_cast<qsizetype>(i)], news[i]);
    }
    replaceFrom(kept, news);
    isTaking = false;
    bool hasOtherRows = kept != std::max(rows.size(), news.size());
    rows = news;
    if (isVisible()) fitIn(hasOtherRows);
}

void MenuView::replaceFrom(std::size_t first, const MenuRows& news) {
    for (QAction* action : actions().mid(static_cast<qsizetype>(first))) {
        removeAction(action);
        QMenu* submenu = action->menu();
        if (submenu != nullptr) submenu->hide();
        // A submenu has its row with it.
        QObject* owner = submenu != nullptr ? static_cast<QObject*>(submenu) : action;
        owner->deleteLater();
    }
    for (std::size_t i = first; i < news.size(); ++i) append(news[i]);
}

void MenuView::fitIn(bool hasOtherRows) {
    if (rows.empty()) {
        hide();
    } else if (hasOtherRows) {
        // Only there Qt looks whether a menu is to scroll, and whether it is all on the screen.
        popup(place);
    } else {
        resize(sizeHint());
    }
}

/// Qt asks after each row that changes, and it takes long to answer: three hundred rows would take
/// a second. It also takes a window that comes to nothing on the way off the screen.
QSize MenuView::sizeHint() const { return isTaking ? size() : QMenu::sizeHint(); }

void MenuView::append(const MenuRow& row) {
    if (row.isSeparator) {
        addSeparator();
        return;
    }
    if (row.hasSubmenu && mayHold(row.id)) {
        QAction* action = addMenu(new MenuView(source, row.id, this));
        connect(action, &QAction::hovered, this, [this, action] { reach(*action); });
        update(*action, row);
        return;
    }
    QAction* action = addAction(QString());
    action->setCheckable(row.mark != MenuRow::Mark::none);
    // Alone in a group it looks like one of a choice; what it excludes is its program's business.
    if (row.mark == MenuRow::Mark::radio) (new QActionGroup(action))->addAction(action);
    connect(action, &QAction::triggered, this, [this, id = row.id] { source.tell(id, "clicked"); });
    update(*action, row);
}

void MenuView::update(QAction& action, const MenuRow& row) {
    if (row.isSeparator) return;
    bool isDeadEnd = row.hasSubmenu && action.menu() == nullptr;
    action.setText(row.text);
    action.setEnabled(row.isEnabled && !isDeadEnd);
    action.setChecked(row.isMarked);
    action.setIcon(iconOf(row));
    action.setIconVisibleInMenu(true);
}

QIcon MenuView::iconOf(const MenuRow& row) const {
    double scale = devicePixelRatioF();
    int side = qRound(style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this) * scale);
    FoundIcon found{readPicture(row.iconData, side, largestIconSide)};
    if (found.picture.isNull()) found = themeIcon(row.iconName, side);
    if (found.picture.isNull()) return {};
    auto pixmap = [&](QPalette::ColorGroup group, QPalette::ColorRole role) {
        QImage image = found.isSymbolic ? recoloured(found.picture, palette().color(group, role))
                                        : found.picture;
        image.setDevicePixelRatio(scale);
        return QPixmap::fromImage(image);
    };
    QIcon icon(pixmap(QPalette::Active, QPalette::Text));
    icon.addPixmap(pixmap(QPalette::Active, QPalette::HighlightedText), QIcon::Active);
    return icon;
}

bool MenuView::mayHold(int id) const {
    int depth = 1;
    for (const MenuView* level = this; level != nullptr; level = level->parentLevel) {
        if (level->levelId == id || ++depth > mostLevels) return false;
    }
    return true;
}

bool MenuView::event(QEvent* event) {
    if (event->isInputEvent()) {
        source.inputTime = static_cast<quint32>(static_cast<QInputEvent*>(event)->timestamp());
        wasKeyLast = dynamic_cast<QKeyEvent*>(event) != nullptr;
    }
    return QMenu::event(event);
}

void MenuView::showEvent(QShowEvent* event) {
    if (parentLevel != nullptr) place = pos();
    source.tell(levelId, "opened");
    QMenu::showEvent(event);
}

void MenuView::hideEvent(QHideEvent* event) {
    source.tell(levelId, "closed");
    QMenu::hideEvent(event);
}

void MenuView::setVisible(bool visible) {
    isWanted = visible && rows.empty();
    if (!isWanted) QMenu::setVisible(visible);
}

/// Its row has been reached; it opens a moment later, if its rows come by then.
void MenuView::reach(QAction& action) {
    auto* submenu = static_cast<MenuView*>(action.menu());
    bool isOpening = submenu->isWanted && !submenu->rows.empty();
    if (submenu->isVisible() || isOpening) return;
    submenu->load([this, &action, submenu] {
        if (!submenu->isWanted || submenu->rows.empty()) return;
        if (isVisible() && activeAction() == &action) setActiveAction(&action);
        submenu->isWanted = false;
        if (submenu->isVisible() && wasKeyLast) submenu->activateFirst();
    });
}

void MenuView::activateFirst() {
    for (QAction* row : actions()) {
        if (row->isSeparator() || !row->isEnabled()) continue;
        setActiveAction(row);
        return;
    }
}

}  // namespace nevo::trayhelper
