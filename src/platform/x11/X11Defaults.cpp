#include "platform/x11/X11Defaults.h"

#include <algorithm>
#include <set>

#include "platform/x11/ProgramName.h"

namespace nevo {

namespace {
/// An editor may write a file in several steps.
constexpr int settleMilliseconds = 100;
}  // namespace

FileDomain::FileDomain(std::filesystem::path path, LogOutput& output)
    : log(output), file(std::move(path)) {
    report(true);
}

std::optional<DefaultsValue> FileDomain::object(const std::string& key) const {
    auto own = unwritten.find(key);
    return own == unwritten.end() ? file.value(key) : own->second;
}

void FileDomain::set(const std::string& key, DefaultsValue value) {
    unwritten[key] = std::move(value);
    changed();
}

void FileDomain::remove(const std::string& key) {
    unwritten[key] = std::nullopt;
    changed();
}

std::vector<std::string> FileDomain::keys() const {
    auto stored = file.keys();
    std::set<std::string> result(stored.begin(), stored.end());
    for (const auto& [key, value] : unwritten) {
        if (value) {
            result.insert(key);
        } else {
            result.erase(key);
        }
    }
    return {result.begin(), result.end()};
}

bool FileDomain::synchronize() { return unwritten.empty() ? reload() : write(); }

bool FileDomain::write() {
    if (unwritten.empty()) return true;
    bool written = file.update(unwritten);
    if (written) unwritten.clear();
    report(written);
    return written;
}

bool FileDomain::reload() {
    bool isRead = file.reload();
    report(isRead);
    return isRead;
}

void FileDomain::report(bool isWell) {
    if (isWell) toldProblems.clear();
    for (const std::string& problem : file.takeProblems()) {
        // Each change tries again, and a failure that goes on is told once.
        if (!isWell && !toldProblems.insert(problem).second) continue;
        std::string line = "[Nevo] stored values: " + problem + "\n";
        log.writeStandardError(line);
        log.appendToLogFile(line);
    }
}

OwnDomain::OwnDomain(std::filesystem::path path, LogOutput& output, RunLoop& runLoop,
                     NotificationCenter& center)
    : FileDomain(std::move(path), output), loop(runLoop), notifications(center) {
    settled.setSingleShot(true);
    settled.setInterval(settleMilliseconds);
    QObject::connect(&settled, &QTimer::timeout, &settled, [this] { reloadAndTell(); });
    // The folder, not the file: each writer replaces the file by a new one.
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &settled,
                     [this] { settled.start(); });
    QObject::connect(&watcher, &QFileSystemWatcher::fileChanged, &settled,
                     [this] { settled.start(); });
    watch();
}

OwnDomain::~OwnDomain() { write(); }

void OwnDomain::watch() {
    std::error_code error;
    std::filesystem::create_directories(this->path().parent_path(), error);
    for (const auto& place : {this->path().parent_path(), this->path()}) {
        auto name = QString::fromStdString(place.string());
        if (std::filesystem::exists(place, error)) watcher.addPath(name);
    }
}

bool OwnDomain::synchronize() {
    bool wasWritten = !hasUnwritten() || write();
    reloadAndTell();
    return wasWritten;
}

void OwnDomain::flush() { write(); }

void OwnDomain::changed() {
    if (!std::exchange(writeScheduled, true)) {
        loop.post([this, alive = std::weak_ptr(life)] {
            if (alive.expired()) return;
            writeScheduled = false;
            // Writing takes it over, and nobody would be told.
            if (hasForeignChange()) reloadAndTell();
            write();
        });
    }
    notifications.post(userDefaultsDidChangeNotification);
}

void OwnDomain::reloadAndTell() {
    auto snapshot = [this] {
        std::map<std::string, std::optional<DefaultsValue>> values;
        for (const std::string& key : this->keys()) values[key] = object(key);
        return values;
    };
    auto before = snapshot();
    reload();
    watch();
    if (snapshot() != before) notifications.post(userDefaultsDidChangeNotification);
}

X11Defaults::X11Defaults(LogOutput& output, RunLoop& runLoop, NotificationCenter& center)
    : log(output), own(*DomainFile::pathFor(applicationId), output, runLoop, center) {}

std::unique_ptr<DefaultsDomain> X11Defaults::suite(const std::string& name) {
    auto path = DomainFile::pathFor(name);
    if (!path) return nullptr;
    return std::make_unique<FileDomain>(*path, log);
}

}  // namespace nevo
