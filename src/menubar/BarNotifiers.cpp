#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "menubar/Bar.h"
#include "menubar/Log.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/xcb/Properties.h"

namespace nevo::menubar {

using statusnotifier::Picture;
using statusnotifier::Status;

namespace {
/// Of a bar that is 24 high: the size that most programs draw their icons for.
constexpr double pictureOfHeight = 22.0 / 24;

constexpr std::chrono::seconds patienceOfClick{2};
/// The helper's exit status when there was no menu.
constexpr int helperShowedNothing = 1;

enum Button : std::uint8_t { left = 1, middle, right, up, down, wheelLeft, wheelRight };

/// Whether `item` shows the picture of that name, or would when its state changes.
bool uses(const BarItem& item, const IconSource::Name& name) {
    if (item.notifier == nullptr) return false;
    if (name.themePath.empty() && name.name == item.iconName) return true;
    const auto& own = item.notifier->properties();
    return name.themePath == own.iconThemePath &&
           (name.name == own.icon.name || name.name == own.attentionIcon.name ||
            name.name == own.overlayIcon.name);
}

/// A quiet dot, for an item that has nothing to show or hasn't told it yet: it can be clicked.
Picture placeholder(int side) {
    constexpr std::uint32_t color = 0x80808080;
    Picture picture{side, side, {}};
    int middle = side - 1;
    int reach = side / 3;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            int dx = 2 * x - middle;
            int dy = 2 * y - middle;
            picture.pixels.push_back(dx * dx + dy * dy <= reach * reach ? color : 0);
        }
    }
    return picture;
}
}  // namespace

int Bar::pictureSide() const {
    return static_cast<int>(std::lround(options.height * pictureOfHeight));
}

void Bar::openNotifiers() {
    icons = std::make_unique<IconSource>();
    icons->changed = [this](const IconSource::Name& name) {
        for (BarItem* item : items.all()) {
            if (uses(*item, name)) showFace(*item);
        }
    };
    icons->isInUse = [this](const IconSource::Name& name) {
        auto all = items.all();
        return std::any_of(all.begin(), all.end(),
                           [&](const BarItem* item) { return uses(*item, name); });
    };
    notifiers = std::make_unique<Notifiers>(pictureSide());
    notifiers->changed = [this](statusnotifier::Item& item) { onNotifierChanged(item); };
    notifiers->gone = [this](statusnotifier::Item& item) {
        BarItem* held = withNotifier(item);
        if (held == nullptr) return;
        removeItem(*held, false);
    };
}

BarItem* Bar::withNotifier(const statusnotifier::Item& notifier) const {
    for (BarItem* item : items.all()) {
        if (item->notifier == &notifier) return item;
    }
    return nullptr;
}

void Bar::onNotifierChanged(statusnotifier::Item& notifier) {
    BarItem* item = withNotifier(notifier);
    if (item == nullptr) item = dockNotifier(notifier);
    if (item == nullptr) return;
    if (std::exchange(item->timesRepeated, notifier.timesRepeated()) != notifier.timesRepeated())
        lookForIconsAnew(notifier.properties());
    showFace(*item);
    showTitle(*item);
    // A passive item is one that its program has nothing to show with.
    bool isShown = notifier.properties().status != Status::passive;
    // Never both in the row, where they have one place.
    BarItem* twin = isShown ? twinOf(*item) : nullptr;
    if (twin != nullptr) {
        twin->isTwin = true;
        setInRow(*twin, false);
    }
    setInRow(*item, isShown);
    settleTwins(item->pid, nullptr);
}

/// However many connections a program has.
bool Bar::hasRoomFor(const statusnotifier::Item& notifier) {
    auto all = items.all();
    auto ofThisProgram = std::count_if(all.begin(), all.end(), [&](const BarItem* item) {
        return item->notifier != nullptr && notifier.pid() && item->pid == notifier.pid();
    });
    bool hasRoom = all.size() < mostItems && static_cast<std::size_t>(ofThisProgram) <
                                                 statusnotifier::Registry::mostItemsOfAProgram;
    if (!hasRoom && !std::exchange(limitLogged, true)) {
        log("there are {} items already, {} of the program that offers one more; it isn't shown.",
            all.size(), ofThisProgram);
    }
    return hasRoom;
}

BarItem* Bar::dockNotifier(statusnotifier::Item& notifier) {
    if (!hasRoomFor(notifier)) return nullptr;
    auto frame = ItemFrame::create(display, windows.front()->window(), 32, display.alphaVisual(),
                                   options.height, BarWindow::groundPixel);
    if (!frame) return nullptr;
    auto made = std::make_unique<BarItem>();
    made->kind = ItemKind::statusNotifier;
    made->notifier = &notifier;
    made->face = std::make_unique<ItemFace>(display, frame->window(), options.height);
    made->client = made->face->window();
    made->frame = std::move(frame);
    made->requestedWidth = options.height;
    made->pid = notifier.pid();
    std::string id = xcb::stableId(notifier.properties().id, notifier.pid());
    made->windowClass = {id, id};
    BarItem& item = items.add(std::move(made));
    auto owner = owners.identifyClaimed(item.pid, id);
    item.applicationId = owner.applicationId;
    item.ownerName = owner.name;
    item.iconName = owner.icon;
    item.signs = owner.signs;
    nameItem(item, "");
    xcb::writeNumber(display.get(), item.frame->window(), display.atom(barprotocol::itemOpacity),
                     item.opacity);
    return &item;
}

/// Some programs draw into one file all the time.
void Bar::lookForIconsAnew(const statusnotifier::ItemProperties& properties) {
    for (const auto* icon :
         {&properties.icon, &properties.attentionIcon, &properties.overlayIcon}) {
        bool isOverlay = icon == &properties.overlayIcon;
        int side = isOverlay ? statusnotifier::overlaySide(pictureSide()) : pictureSide();
        icons->lookAnew({icon->name, properties.iconThemePath, side});
    }
}

/// The picture by name where there is one, as the protocol has it, else the pixels.
Picture Bar::pictureOf(const IconSource::Name& name, const Picture& pixels, const Picture& before) {
    if (!name.name.empty()) {
        const Picture* named = icons->find(name);
        // What was there before is better than what is there for a moment.
        if (named == nullptr && pixels.isEmpty()) return before;
        if (named != nullptr && !named->isEmpty()) return *named;
    }
    return pixels;
}

void Bar::showFace(BarItem& item) {
    const auto& properties = item.notifier->properties();
    bool wantsAttention = properties.status == Status::needsAttention;
    int side = pictureSide();
    Picture picture;
    auto take = [&](const statusnotifier::ItemIcon& icon, const std::string& themePath) {
        if (!picture.isEmpty()) return;
        picture = pictureOf({icon.name, themePath, side}, icon.picture, item.shownPicture);
    };
    if (wantsAttention) take(properties.attentionIcon, properties.iconThemePath);
    take(properties.icon, properties.iconThemePath);
    // What its program is installed with.
    take({item.iconName, {}}, {});
    if (picture.isEmpty()) picture = placeholder(side);
    const auto& over = properties.overlayIcon;
    Picture overlay =
        pictureOf({over.name, properties.iconThemePath, statusnotifier::overlaySide(side)},
                  over.picture, item.shownOverlay);
    if (picture == item.shownPicture && overlay == item.shownOverlay) return;
    item.face->show(picture, overlay);
    item.shownPicture = std::move(picture);
    item.shownOverlay = std::move(overlay);
}

/// For people alone: it changes with the language and with what the program does.
void Bar::showTitle(BarItem& item) {
    const auto& properties = item.notifier->properties();
    std::string title = properties.title.empty() ? properties.toolTip : properties.title;
    if (title == item.title) return;
    xcb::writeText(display.get(), item.frame->window(), display.atom(barprotocol::itemTitle),
                   display.atom("UTF8_STRING"), title);
    item.title = std::move(title);
}

/// The one item of the other protocol that the same program has, if it has one of each: a program
/// that speaks both at the same time shows one icon, the one that says more of itself. A program
/// with several icons has no twins.
BarItem* Bar::twinOf(const BarItem& item) const {
    if (!item.pid || item.isStatusItem()) return nullptr;
    BarItem* twin = nullptr;
    for (BarItem* other : items.all()) {
        if (other == &item || other->pid != item.pid) continue;
        if (other->kind == item.kind || twin != nullptr) return nullptr;
        twin = other;
    }
    return twin;
}

/// A window waits out of sight while its program's one other item is shown. To be called when a
/// program's items have come, gone, or changed; `leaving` doesn't count any more.
void Bar::settleTwins(std::optional<ProcessId> pid, const BarItem* leaving) {
    if (!pid) return;
    std::vector<BarItem*> bars;
    std::vector<BarItem*> notified;
    for (BarItem* item : items.all()) {
        if (item->pid != pid || item == leaving || item->isStatusItem()) continue;
        (item->face ? notified : bars).push_back(item);
    }
    bool isPair = bars.size() == 1 && notified.size() == 1;
    for (BarItem* window : bars) {
        window->isTwin = isPair && notified.front()->isInRow;
        setInRow(*window, window->wantsPlace());
    }
}

/// The press alone opens a menu, as everywhere; the rest happens when the button is let go inside.
void Bar::onFacePress(BarItem& item, const xcb_button_press_event_t& event) {
    endToolTip();
    auto& notifier = *item.notifier;
    const auto& properties = notifier.properties();
    if (event.detail >= up && event.detail <= wheelRight) {
        bool isForward = event.detail == down || event.detail == wheelRight;
        notifier.scroll(isForward ? 1 : -1, event.detail >= wheelLeft);
        return;
    }
    facePress = {item.key, event.detail};
    bool opensMenu = event.detail == right || (event.detail == left && properties.itemIsMenu);
    if (!opensMenu) return;
    // The menu takes the pointer for itself.
    facePress = {};
    xcb_ungrab_pointer(display.get(), event.time);
    if (properties.menu.empty()) {
        notifier.contextMenu(event.root_x, event.root_y);
    } else {
        openMenu(item, {event.root_x, event.root_y, Clock::now()});
    }
}

void Bar::onFaceRelease(BarItem& item, const xcb_button_release_event_t& event) {
    const PixelRect& frame = item.frame->rect();
    bool isInside =
        PixelRect{0, 0, frame.width, frame.height}.contains(event.event_x, event.event_y);
    auto& notifier = *item.notifier;
    // The item may have come under the pointer, or the pointer to the item, since the press.
    FacePress press = std::exchange(facePress, {});
    if (!isInside || press.item != item.key || press.button != event.detail) return;
    if (event.detail == middle) notifier.secondaryActivate(event.root_x, event.root_y);
    if (event.detail != left || notifier.properties().itemIsMenu) return;
    Click click{event.root_x, event.root_y, Clock::now()};
    notifier.activate(event.root_x, event.root_y, [this, &notifier, click] {
        // A program that hung says so late; its menu would take the pointer from somebody who
        // has gone on to other things.
        if (Clock::now() - click.time > patienceOfClick) return;
        BarItem* held = withNotifier(notifier);
        if (held != nullptr && held->isInRow && !notifier.properties().menu.empty())
            openMenu(*held, click);
    });
}

void Bar::openMenu(BarItem& item, const Click& click) {
    const PixelRect& bar = windows.front()->rect();
    const PixelRect& frame = item.frame->rect();
    const auto& notifier = *item.notifier;
    std::string failure;
    menuHelper =
        HelperProcess::start({"--menu", notifier.address().owner, notifier.properties().menu,
                              std::to_string(bar.x + frame.x), std::to_string(bar.y),
                              std::to_string(frame.width), std::to_string(bar.height)},
                             false, failure);
    if (!menuHelper && !std::exchange(menuFailureLogged, true)) logLine(failure);
    menuItem = item.key;
    menuClick = click;
}

/// Where a program says that it has a menu there may be none, and yet the program shows one of its
/// own when it is asked to.
void Bar::onMenuEnded() {
    auto status = menuHelper->takeStatus();
    menuHelper.reset();
    bool hasShownNothing = status == helperShowedNothing;
    if (!hasShownNothing || Clock::now() - menuClick.time > patienceOfClick) return;
    BarItem* item = items.withKey(menuItem);
    if (item == nullptr || !item->isInRow) return;
    item->notifier->contextMenu(menuClick.x, menuClick.y);
}

}  // namespace nevo::menubar
