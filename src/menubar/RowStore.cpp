#include "menubar/RowStore.h"

#include <cmath>
#include <cstdlib>
#include <utility>

#include "menubar/Log.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/menubar/RowOrder.h"

namespace nevo::menubar {

namespace {
constexpr const char* orderKey = "order";
/// More than anyone has ever seen of items; a program that docks under ever new names must not let
/// the file grow without end.
constexpr std::size_t mostRemembered = 1000;
constexpr std::size_t mostProblems = 100;
constexpr int domainsPerSave = 4;
constexpr double samePlace = 0.001;

std::string lastPositionKey(const std::string& domain, const std::string& name) {
    return "position " + domain + "|" + name;
}

std::string domainKey(const std::string& name) {
    return barprotocol::preferredPositionPrefix + name;
}

std::optional<double> numberIn(const std::optional<DefaultsValue>& value) {
    if (!value) return std::nullopt;
    if (auto number = std::get_if<double>(&*value)) return *number;
    if (auto number = std::get_if<std::int64_t>(&*value)) return static_cast<double>(*number);
    return std::nullopt;
}
}  // namespace

std::filesystem::path RowStore::defaultPath() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    std::filesystem::path folder = state != nullptr && *state == '/'
                                       ? std::filesystem::path(state)
                                       : std::filesystem::path(home ? home : "/") / ".local/state";
    return folder / "nevo" / "menubar-row.json";
}

RowStore::RowStore(std::filesystem::path rowFile, double pixelsToPoint)
    : scale(pixelsToPoint), row(std::move(rowFile)) {
    if (auto stored = row.value(orderKey)) {
        if (auto list = std::get_if<std::vector<std::string>>(&*stored)) known = *list;
    }
    logProblems(row);
}

void RowStore::setPresent(const std::vector<std::string>& identities) {
    auto merged = mergedRowOrder(known, identities);
    if (merged == known) return;
    if (merged.size() > mostRemembered) merged = identities;
    known = std::move(merged);
    note(orderKey, known);
}

std::optional<double> RowStore::position(const std::string& domain, const std::string& name) {
    if (auto unsaved = unsavedPositions.find(domain); unsaved != unsavedPositions.end()) {
        auto entry = unsaved->second.find(name);
        if (entry != unsaved->second.end()) return entry->second;
    }
    auto path = DomainFile::pathFor(domain);
    if (!path) return std::nullopt;
    DomainFile file(*path);
    logProblems(file);
    auto points = numberIn(file.value(domainKey(name)));
    return points ? std::optional(*points * scale) : std::nullopt;
}

bool RowStore::isForeign(const std::string& domain, const std::string& name,
                         double position) const {
    auto waiting = unsavedPositions.find(domain);
    if (waiting != unsavedPositions.end() && waiting->second.contains(name)) return false;
    auto key = lastPositionKey(domain, name);
    auto unsaved = pending.find(key);
    auto last = numberIn(unsaved == pending.end() ? row.value(key) : unsaved->second);
    // Scaling back and forth loses a little.
    return !last || std::abs(*last * scale - position) > samePlace;
}

void RowStore::acknowledge(const std::string& domain, const std::string& name, double position) {
    if (isForeign(domain, name, position)) note(lastPositionKey(domain, name), position / scale);
}

void RowStore::writePosition(const std::string& domain, const std::string& name, double position) {
    if (DomainFile::pathFor(domain)) unsavedPositions[domain][name] = position;
}

void RowStore::saveDomain(const std::string& domain,
                          const std::map<std::string, double>& positions) {
    DomainFile file(*DomainFile::pathFor(domain));
    DomainFile::Changes changes;
    for (const auto& [name, position] : positions) changes[domainKey(name)] = position / scale;
    bool written = file.update(changes);
    logProblems(file);
    if (!written) return;
    for (const auto& [name, position] : positions) acknowledge(domain, name, position);
}

void RowStore::note(const std::string& key, DefaultsValue value) {
    pending[key] = std::move(value);
    changed = true;
}

bool RowStore::save() {
    for (int i = 0; i < domainsPerSave && !unsavedPositions.empty(); ++i) {
        auto first = unsavedPositions.extract(unsavedPositions.begin());
        saveDomain(first.key(), first.mapped());
    }
    if (std::exchange(changed, false)) {
        forgetOldPositions();
        if (row.update(pending)) pending.clear();
        logProblems(row);
    }
    return !unsavedPositions.empty();
}

void RowStore::forgetOldPositions() {
    auto keys = row.keys();
    if (keys.size() + pending.size() <= 2 * mostRemembered) return;
    std::erase_if(pending, [](const auto& change) { return change.first != orderKey; });
    for (const std::string& key : keys) {
        if (key != orderKey) pending[key] = std::nullopt;
    }
}

void RowStore::logProblems(DomainFile& file) {
    for (const std::string& problem : file.takeProblems()) {
        if (loggedProblems.size() < mostProblems && loggedProblems.insert(problem).second) {
            logLine(problem);
        }
    }
}

}  // namespace nevo::menubar
