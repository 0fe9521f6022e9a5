#include "placement/ItemOpacity.h"

#include <iterator>

namespace nevo {

namespace {

std::size_t indexOf(ItemOpacity::Reason reason) { return static_cast<std::size_t>(reason); }

bool makesTransparent(std::size_t reason) {
    switch (static_cast<ItemOpacity::Reason>(reason)) {
        case ItemOpacity::Reason::blanked:
        case ItemOpacity::Reason::hiddenInFront:
        case ItemOpacity::Reason::hiddenByRule:
        case ItemOpacity::Reason::stray:
            return true;
        case ItemOpacity::Reason::broughtOut:
        case ItemOpacity::Reason::shownInFront:
        case ItemOpacity::Reason::shownByRule:
            break;
    }
    return false;
}

}  // namespace

bool ItemOpacity::add(Reason reason, WindowNumber window) {
    if (hasEnded) return false;
    auto entry = entries.try_emplace(window).first;
    entry->second.reasons.set(indexOf(reason));
    return write(entry);
}

bool ItemOpacity::remove(Reason reason, WindowNumber window) {
    auto entry = entries.find(window);
    if (entry == entries.end() || !entry->second.reasons.test(indexOf(reason))) return true;
    entry->second.reasons.reset(indexOf(reason));
    return write(entry);
}

void ItemOpacity::removeAll(Reason reason) {
    for (WindowNumber window : windowsWith(reason)) remove(reason, window);
}

bool ItemOpacity::setRule(WindowNumber window, bool hides, bool shows) {
    if (hasEnded) return false;
    auto entry = entries.find(window);
    if (entry == entries.end()) {
        if (!hides && !shows) return true;
        entry = entries.try_emplace(window).first;
    }
    entry->second.reasons.set(indexOf(Reason::hiddenByRule), hides);
    entry->second.reasons.set(indexOf(Reason::shownByRule), shows);
    return write(entry);
}

bool ItemOpacity::has(Reason reason, WindowNumber window) const {
    auto entry = entries.find(window);
    return entry != entries.end() && entry->second.reasons.test(indexOf(reason));
}

std::set<WindowNumber> ItemOpacity::windowsWith(Reason reason) const {
    std::set<WindowNumber> result;
    for (const auto& [window, entry] : entries) {
        if (entry.reasons.test(indexOf(reason))) result.insert(window);
    }
    return result;
}

bool ItemOpacity::wantsTransparent(const Entry& entry) {
    for (std::size_t reason = 0; reason < reasonCount; ++reason) {
        if (entry.reasons.test(reason)) return makesTransparent(reason);
    }
    return false;
}

bool ItemOpacity::isTransparent(WindowNumber window) const {
    auto entry = entries.find(window);
    return entry != entries.end() && wantsTransparent(entry->second);
}

std::set<WindowNumber> ItemOpacity::alphaHiddenWindows() const {
    std::set<WindowNumber> result;
    for (const auto& [window, entry] : entries) {
        Entry lasting = entry;
        lasting.reasons.reset(indexOf(Reason::blanked));
        lasting.reasons.reset(indexOf(Reason::hiddenInFront));
        if (wantsTransparent(lasting)) result.insert(window);
    }
    return result;
}

std::set<WindowNumber> ItemOpacity::alwaysShowProtectedWIDs() const {
    std::set<WindowNumber> result = windowsWith(Reason::shownByRule);
    result.merge(windowsWith(Reason::shownInFront));
    return result;
}

bool ItemOpacity::reassert(WindowNumber window) {
    auto entry = entries.find(window);
    return entry == entries.end() || write(entry);
}

void ItemOpacity::writeAgain() {
    for (auto next = entries.begin(); next != entries.end();) {
        auto entry = next++;
        if (entry->second.isUnwritten) write(entry);
    }
}

void ItemOpacity::forgetOthersThan(const std::set<WindowNumber>& present) {
    for (auto next = entries.begin(); next != entries.end();) {
        auto entry = next++;
        if (present.contains(entry->first)) continue;
        windows.setWindowAlpha(entry->first, 1.0F);
        entries.erase(entry);
    }
}

void ItemOpacity::end() {
    hasEnded = true;
    for (const auto& [window, entry] : entries) windows.setWindowAlpha(window, 1.0F);
    entries.clear();
}

/// An entry goes once nothing speaks for it and the window is known to be opaque.
bool ItemOpacity::write(std::map<WindowNumber, Entry>::iterator entry) {
    bool hides = wantsTransparent(entry->second);
    bool ok = windows.setWindowAlpha(entry->first, hides ? 0.0F : 1.0F);
    entry->second.isUnwritten = !ok;
    if (ok && entry->second.reasons.none()) entries.erase(entry);
    return ok;
}

}  // namespace nevo
