#include "platform/store/LogFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

#include "platform/store/FileAccess.h"

namespace nevo {

namespace {

namespace fs = std::filesystem;

fs::path beside(const fs::path& file, const char* ending) {
    fs::path result = file;
    result += ending;
    return result;
}

/// Nothing is left behind by a failure: the old content stays.
bool replaceFile(const fs::path& file, std::string_view text) {
    fs::path temporary = beside(file, ".new");
    Descriptor out(
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    bool isReplaced = out && writeAll(out.get(), text) && out.close() &&
                      ::rename(temporary.c_str(), file.c_str()) == 0;
    if (!isReplaced) ::unlink(temporary.c_str());
    return isReplaced;
}

/// Where the first line begins that doesn't begin before `place`.
std::size_t startOfLine(std::string_view text, std::size_t place) {
    if (place == 0) return 0;
    std::size_t end = text.find('\n', place - 1);
    return end == std::string_view::npos ? text.size() : end + 1;
}

}  // namespace

LogFile::LogFile(fs::path file, std::size_t mostBytes) : path(std::move(file)), limit(mostBytes) {}

void LogFile::append(std::string_view text) const {
    if (text.size() > limit / 2) return;
    // It may be a pipe that nobody reads.
    const int flags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    for (bool isTrimmed : {false, true}) {
        Descriptor file(::open(path.c_str(), flags, 0600));
        struct stat status {};
        if (!file || ::fstat(file.get(), &status) != 0) return;
        bool fits = !S_ISREG(status.st_mode) ||
                    static_cast<std::size_t>(status.st_size) + text.size() <= limit;
        if (fits) {
            writeAll(file.get(), text);
            return;
        }
        if (isTrimmed || !makeRoom()) return;
    }
}

bool LogFile::makeRoom() const {
    // Behind a link the file itself is replaced, not the link.
    std::error_code error;
    fs::path target = fs::canonical(path, error);
    Descriptor file(::open(target.c_str(), O_RDONLY | O_CLOEXEC));
    if (error || !file) return false;
    // One that has grown without bounds loses what comes before its last part.
    off_t size = ::lseek(file.get(), 0, SEEK_END);
    off_t skipped = std::max<off_t>(0, size - static_cast<off_t>(limit));
    std::string text;
    if (size < 0 || ::lseek(file.get(), skipped, SEEK_SET) < 0 ||
        !readAll(file.get(), text, limit)) {
        return false;
    }
    std::string_view all = text;
    if (skipped > 0) all.remove_prefix(startOfLine(all, 1));
    std::size_t newer = startOfLine(all, all.size() - std::min(all.size(), limit / 2));
    // In this order: after a crash in between the older lines stand in both.
    return replaceFile(beside(path, ".1"), all.substr(0, newer)) &&
           replaceFile(target, all.substr(newer));
}

}  // namespace nevo
