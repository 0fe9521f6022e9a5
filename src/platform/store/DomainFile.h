#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/UserDefaults.h"

namespace nevo {

/// One application's stored values in a JSON file, shared by several programs: each writer takes a
/// lock beside the file, merges into what stands there, and replaces the file as a whole, so a
/// crash or a full disk at any moment leaves the old or the new content.
///
/// Values are the JSON of their kind; bytes are `{"base64": "..."}`. An entry of any other form
/// stays in the file untouched and reads as absent.
class DomainFile {
public:
    using Values = std::map<std::string, DefaultsValue>;
    /// Nothing stands for a key to be removed.
    using Changes = std::map<std::string, std::optional<DefaultsValue>>;

    /// Neither read nor written beyond this.
    static constexpr std::size_t largestFile = 16U << 20U;

    /// The file of a domain below the user's configuration folder; nothing for a name that is no
    /// plain file name (empty, hidden, with a slash).
    static std::optional<std::filesystem::path> pathFor(const std::string& domain);

    /// Reads the file. One that isn't there is an empty domain.
    explicit DomainFile(std::filesystem::path file);

    std::optional<DefaultsValue> value(const std::string& key) const;
    /// Ascending.
    std::vector<std::string> keys() const;
    /// As last read or written.
    const Values& values() const { return known; }

    /// Reads the file again if it has changed, with what others wrote. One that can't be parsed is
    /// set aside as
    /// `<file>.broken-N` and reads as empty. False when it exists and can't be read: the values
    /// stay as they were.
    bool reload();

    /// Whether somebody else has written the file since it was last read or written here.
    bool hasForeignChange() const;

    /// Merges `changes` into the file as it is now. False when that failed: the file is as before.
    bool update(const Changes& changes);

    /// What went wrong since this was last asked, in plain sentences for a log. An entry that can't
    /// be understood is told once.
    std::vector<std::string> takeProblems();

    const std::filesystem::path& path() const { return file; }

private:
    struct Content;
    /// The content that was adopted last where the file hasn't changed since; nullptr when it can't
    /// be read.
    std::shared_ptr<Content> read();
    bool setAside();
    void adopt(const std::shared_ptr<Content>& content);
    bool replaceFile(Content& content);
    bool fail(const std::string& what);

    std::filesystem::path file;
    std::shared_ptr<Content> last;
    Values known;
    std::set<std::string> reportedKeys;
    std::vector<std::string> problems;
};

}  // namespace nevo
