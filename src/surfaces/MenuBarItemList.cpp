#include "surfaces/MenuBarItemList.h"

#include <algorithm>
#include <utility>

#include "core/ItemId.h"
#include "discovery/ItemLabel.h"

namespace nevo {

namespace {

constexpr double watchInterval = 1.0;

/// Labels that occur more than once get the name from the item's id.
void tellApart(std::vector<MenuBarIconItem>& items) {
    std::map<std::string, int> count;
    for (const MenuBarIconItem& item : items) ++count[item.label];
    for (MenuBarIconItem& item : items) {
        std::string name = item.id.substr(0, item.id.find(persistedIDSeparator));
        if (count[item.label] > 1 && name != item.label) item.label += " (" + name + ")";
    }
}

}  // namespace

MenuBarItemList::MenuBarItemList(const SettingsServices& given, std::function<void()> told)
    : services(given), changed(std::move(told)) {}

void MenuBarItemList::appear() {
    scan();
    // Polled, since no event covers all that moves items; frames alone are cheap to read.
    watch = services.platform.runLoop.timer(watchInterval, true, [weak = weak_from_this()] {
        auto self = weak.lock();
        if (self && self->places() != self->scannedPlaces) self->scan();
    });
}

MenuBarItemList::Places MenuBarItemList::places() const {
    Places result;
    for (WindowNumber window : services.scanner.menuBarWindowIDs()) {
        if (auto frame = services.platform.windows.windowFrame(window)) result[window] = frame->x;
    }
    return result;
}

void MenuBarItemList::scan() { spawn(services.platform.runLoop, runScan(weak_from_this())); }

Task<> MenuBarItemList::runScan(std::weak_ptr<MenuBarItemList> owner) {
    auto self = owner.lock();
    if (!self) co_return;
    MenuBarScanner& scanner = self->services.scanner;
    self->scannedPlaces = self->places();
    self.reset();
    std::set<WindowNumber> none;
    ScannedBarItems scanned = co_await scanner.scan(none, true);
    self = owner.lock();
    if (self) self->take(scanned);
}

void MenuBarItemList::take(const ScannedBarItems& scanned) {
    SectionSnapshot sections;
    if (const SectionManager* manager = services.sections ? services.sections() : nullptr)
        sections = manager->classify(scanned);
    auto isIn = [&](SectionName section, const std::string& id) {
        const ScannedBarItems& part = sections[section];
        return std::any_of(part.begin(), part.end(),
                           [&](const ScannedBarItem& item) { return item.persistedID == id; });
    };
    found.clear();
    std::set<std::string> seen;
    for (const ScannedBarItem& item : scanned) {
        const std::string& id = item.persistedID;
        if (id.empty() || !seen.insert(id).second) continue;
        std::optional<bool> isHidden;
        if (isIn(SectionName::visible, id)) isHidden = false;
        if (isIn(SectionName::hidden, id)) isHidden = true;
        found.push_back({id, item.bundleID, labelForPeople(item, services.platform.workspace),
                         item.icon, isHidden});
    }
    tellApart(found);
    hasScanned = true;
    changed();
}

}  // namespace nevo
