#include "menubar/RowStore.h"

#include <cmath>
#include <utility>

#include "menubar/Log.h"
#include "platform/menubar/BarProtocol.h"
#include "platform/menubar/RowOrder.h"
#include "platform/store/StateFolder.h"

namespace nevo::menubar {

namespace {
constexpr const char* orderKey = "order";
/// More than anyone has ever seen of items; a program that docks under ever new names must not let
/// the file grow without end.
constexpr std::size_t mostRemembered = 1000;
constexpr std::size_t mostProblems = 100;
constexpr int domainsPerSave = 4;
constexpr double samePlace = 0.001;

std::string positionKey(const std::string& name) {
    return barprotocol::preferredPositionPrefix + name;
}

/// What the bar itself has last written or obeyed: in the same file as the position, which is
/// replaced as a whole, so that no crash between two writes makes it look like another's wish.
std::string lastPositionKey(const std::string& name) {
    return "nevo-menubar Last Position " + name;
}

std::optional<double> numberIn(const std::optional<DefaultsValue>& value) {
    if (!value) return std::nullopt;
    if (auto number = std::get_if<double>(&*value)) return *number;
    if (auto number = std::get_if<std::int64_t>(&*value)) return static_cast<double>(*number);
    return std::nullopt;
}
}  // namespace

std::filesystem::path RowStore::defaultPath() { return stateFolder() / "menubar-row.json"; }

RowStore::RowStore(std::filesystem::path rowFile) : row(std::move(rowFile)) {
    if (auto stored = row.value(orderKey)) {
        if (auto list = std::get_if<std::vector<std::string>>(&*stored)) known = *list;
    }
    logProblems(row);
}

void RowStore::setPresent(const std::vector<std::string>& identities, const std::string& placed) {
    auto merged = mergedRowOrder(known, identities, placed);
    forgetAbsent(merged, identities, mostRemembered);
    if (merged == known) return;
    known = std::move(merged);
    isUnsaved = true;
}

std::optional<double> RowStore::position(const std::string& domain, const std::string& name) {
    if (auto unsaved = unsavedPositions.find(domain); unsaved != unsavedPositions.end()) {
        auto entry = unsaved->second.find(name);
        if (entry != unsaved->second.end() && entry->second.isOurs) return entry->second.position;
    }
    auto path = DomainFile::pathFor(domain);
    if (!path) return std::nullopt;
    DomainFile file(*path);
    logProblems(file);
    return numberIn(file.value(positionKey(name)));
}

bool RowStore::isForeign(const std::string& domain, const std::string& name,
                         double position) const {
    std::optional<double> last;
    if (auto unsaved = unsavedPositions.find(domain); unsaved != unsavedPositions.end()) {
        auto entry = unsaved->second.find(name);
        if (entry != unsaved->second.end()) last = entry->second.position;
    }
    if (auto path = DomainFile::pathFor(domain); path && !last) {
        last = numberIn(DomainFile(*path).value(lastPositionKey(name)));
    }
    // Writing a number as text may lose a little.
    return !last || std::abs(*last - position) > samePlace;
}

void RowStore::acknowledge(const std::string& domain, const std::string& name, double position) {
    if (isForeign(domain, name, position)) unsavedPositions[domain][name] = {position, false};
}

void RowStore::writePosition(const std::string& domain, const std::string& name, double position) {
    if (DomainFile::pathFor(domain)) unsavedPositions[domain][name] = {position, true};
}

void RowStore::saveDomain(const std::string& domain,
                          const std::map<std::string, Unsaved>& positions) {
    DomainFile file(*DomainFile::pathFor(domain));
    DomainFile::Changes changes;
    for (const auto& [name, unsaved] : positions) {
        if (unsaved.isOurs) changes[positionKey(name)] = unsaved.position;
        changes[lastPositionKey(name)] = unsaved.position;
    }
    file.update(changes);
    logProblems(file);
}

bool RowStore::save() {
    for (int i = 0; i < domainsPerSave && !unsavedPositions.empty(); ++i) {
        auto first = unsavedPositions.extract(unsavedPositions.begin());
        saveDomain(first.key(), first.mapped());
    }
    if (std::exchange(isUnsaved, false)) {
        row.update({{orderKey, known}});
        logProblems(row);
    }
    return !unsavedPositions.empty();
}

void RowStore::logProblems(DomainFile& file) {
    for (const std::string& problem : file.takeProblems()) {
        if (loggedProblems.size() < mostProblems && loggedProblems.insert(problem).second) {
            logLine(problem);
        }
    }
}

}  // namespace nevo::menubar
