#include "platform/store/DomainFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <system_error>

#include "platform/store/DefaultsJson.h"
#include "platform/store/FileAccess.h"
#include "platform/store/FileLock.h"

namespace nevo {

namespace {

namespace fs = std::filesystem;

fs::path beside(const fs::path& file, const std::string& ending) {
    fs::path result = file;
    result += ending;
    return result;
}

}  // namespace

struct DomainFile::Content {
    /// Whether `status` is that of the very file that was read, unchanged since.
    bool isOf(const struct stat& status) const {
        return file && status.st_dev == read.st_dev && status.st_ino == read.st_ino &&
               status.st_size == read.st_size && status.st_mtim.tv_sec == read.st_mtim.tv_sec &&
               status.st_mtim.tv_nsec == read.st_mtim.tv_nsec;
    }

    nlohmann::json json = nlohmann::json::object();
    bool isBroken = false;
    /// Held open, so that no later file gets its number.
    Descriptor file{-1};
    struct stat read {};
};

namespace {

bool hasChanges(const nlohmann::json& json, const DomainFile::Changes& changes) {
    return std::any_of(changes.begin(), changes.end(), [&](const auto& change) {
        auto found = json.find(change.first);
        if (!change.second) return found != json.end();
        return found == json.end() || *found != jsonFrom(*change.second);
    });
}

}  // namespace

std::optional<fs::path> DomainFile::pathFor(const std::string& domain) {
    if (domain.empty() || domain.front() == '.' || domain.find('/') != std::string::npos ||
        domain.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    fs::path folder = configured && *configured == '/' ? fs::path(configured)
                                                       : fs::path(home ? home : "/") / ".config";
    return folder / "nevo" / "defaults" / (domain + ".json");
}

DomainFile::DomainFile(fs::path path) : file(std::move(path)) { reload(); }

std::optional<DefaultsValue> DomainFile::value(const std::string& key) const {
    auto found = known.find(key);
    if (found == known.end()) return std::nullopt;
    return found->second;
}

std::vector<std::string> DomainFile::keys() const {
    std::vector<std::string> result;
    result.reserve(known.size());
    for (const auto& [key, value] : known) result.push_back(key);
    return result;
}

bool DomainFile::reload() {
    auto content = read();
    if (!content) return false;
    if (content->isBroken) {
        FileLock lock(beside(file, ".lock"));
        // Another program may have set it aside and written a new one meanwhile.
        if (!lock.isHeld()) return fail("can't lock it");
        content = read();
        if (!content) return false;
        if (content->isBroken) setAside();
    }
    adopt(content);
    return true;
}

bool DomainFile::hasForeignChange() const {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && !(last && last->isOf(status));
}

bool DomainFile::update(const Changes& changes) {
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    if (error) return fail(fmt::format("can't make its folder: {}", error.message()));
    FileLock lock(beside(file, ".lock"));
    if (!lock.isHeld()) return fail("can't lock it");

    auto content = read();
    if (!content) return false;
    if (content->isBroken && !setAside()) return false;
    if (!hasChanges(content->json, changes)) {
        adopt(content);
        return true;
    }
    auto merged = std::make_shared<Content>();
    merged->json = content->json;
    for (const auto& [key, value] : changes) {
        if (value) {
            merged->json[key] = jsonFrom(*value);
        } else {
            merged->json.erase(key);
        }
    }
    if (!replaceFile(*merged)) return false;
    adopt(merged);
    return true;
}

std::vector<std::string> DomainFile::takeProblems() { return std::exchange(problems, {}); }

std::shared_ptr<DomainFile::Content> DomainFile::read() {
    auto content = std::make_shared<Content>();
    Descriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!opened) {
        if (errno == ENOENT) return content;
        // Something else stands where a folder should: what is known stays, and writing will tell.
        if (errno == ENOTDIR) return nullptr;
        fail(fmt::format("can't read it: {}", std::strerror(errno)));
        return nullptr;
    }
    // Reading a large file anew takes a tenth of a second, and most looks find nothing new.
    bool hasStatus = ::fstat(opened.get(), &content->read) == 0;
    if (hasStatus && last && last->isOf(content->read)) return last;
    std::string text;
    if (!readAll(opened.get(), text, largestFile)) {
        fail(fmt::format("can't read it: {}", std::strerror(errno)));
        return nullptr;
    }
    if (hasStatus) content->file = std::move(opened);
    // Empty: an editor is about to write it, or a crash left it so. Nothing to be kept.
    if (text.empty()) return content;
    auto parsed = text.size() > largestFile ? std::nullopt : parseDefaults(text);
    content->isBroken = !parsed;
    if (parsed) content->json = std::move(*parsed);
    return content;
}

bool DomainFile::setAside() {
    for (int number = 1; number < 10000; ++number) {
        auto name = beside(file, fmt::format(".broken-{}", number));
        if (::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) {
            fail(fmt::format("it can't be understood and was set aside as {}",
                             name.filename().string()));
            return true;
        }
        if (errno != EEXIST) break;
    }
    return fail(fmt::format("it can't be understood, nor set aside: {}", std::strerror(errno)));
}

void DomainFile::adopt(const std::shared_ptr<Content>& content) {
    if (content == last) return;
    last = content;
    known.clear();
    for (const auto& [key, entry] : content->json.items()) {
        if (auto value = defaultsValueFrom(entry)) {
            known.emplace(key, std::move(*value));
        } else if (reportedKeys.insert(key).second) {
            fail(fmt::format("the entry \"{}\" has an unknown form and is left alone", key));
        }
    }
}

bool DomainFile::replaceFile(Content& content) {
    // Text that isn't UTF-8 can't stand in JSON; its bad bytes are replaced.
    auto text = content.json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    if (text.size() > largestFile) return fail("it would grow too large");
    // Always the same name: what a crash left behind is written over by the next writer.
    auto temporary = beside(file, ".new");
    Descriptor out(
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    bool written = out && writeAll(out.get(), text) && ::fsync(out.get()) == 0 && out.close();
    Descriptor again(written ? ::open(temporary.c_str(), O_RDONLY | O_CLOEXEC) : -1);
    bool isKnown = again && ::fstat(again.get(), &content.read) == 0;
    written = written && ::rename(temporary.c_str(), file.c_str()) == 0;
    if (!written) {
        fail(fmt::format("can't write it: {}", std::strerror(errno)));
        ::unlink(temporary.c_str());
        return false;
    }
    if (isKnown) content.file = std::move(again);
    Descriptor folder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) ::fsync(folder.get());
    return true;
}

bool DomainFile::fail(const std::string& what) {
    problems.push_back(fmt::format("{}: {}", file.string(), what));
    return false;
}

}  // namespace nevo
