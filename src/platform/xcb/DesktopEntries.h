#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nevo::xcb {

/// What an installed program says about itself in its `.desktop` file.
struct DesktopEntry {
    /// The desktop file id without ".desktop" ("org.gnome.Terminal", "parcellite").
    std::string id;
    /// For people, in the user's language.
    std::string name;
    /// An icon theme's name or an absolute path; may be empty.
    std::string icon;
    std::string startupWmClass;
    /// The base name of the program that it starts ("parcellite"); a script's where it names an
    /// interpreter. Empty for launchers that tell nothing, such as flatpak.
    std::string program;
    std::filesystem::path file;
};

/// The installed programs' desktop files below `$XDG_DATA_HOME` and `$XDG_DATA_DIRS`. Read at the
/// first question, and again when one of the folders has changed. Unreadable, oversized and
/// malformed files are left out.
class DesktopEntries {
public:
    /// The folders and the language of this process's environment.
    DesktopEntries();
    /// Folders in order of precedence; `language` as in `$LANG` ("de_DE.UTF-8").
    DesktopEntries(std::vector<std::filesystem::path> applicationFolders,
                   std::string_view language);

    /// The entry that fits best a process running `program` (base name; may be empty) with windows
    /// of that WM_CLASS (may be empty): by program, then by StartupWMClass, then by id. Pointers
    /// are good until the next question. Nullptr when none fits.
    const DesktopEntry* find(std::string_view program, std::string_view classInstance,
                             std::string_view className);
    const DesktopEntry* byId(std::string_view id);

private:
    void refresh();
    void indexFolder(const std::filesystem::path& applications);
    void addFile(const std::filesystem::path& applications, const std::filesystem::path& file);
    bool isCurrent() const;

    using FolderTime = std::optional<std::filesystem::file_time_type>;

    std::vector<std::filesystem::path> folders;
    std::vector<std::string> nameKeys;
    /// Each folder that was read, with its time of change; nothing for one that didn't exist.
    std::map<std::filesystem::path, FolderTime> times;
    std::map<std::string, DesktopEntry, std::less<>> entries;
};

}  // namespace nevo::xcb
