#include "platform/xcb/DesktopEntries.h"

#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <system_error>
#include <utility>

#include "platform/xcb/CommandLine.h"

namespace nevo::xcb {

namespace fs = std::filesystem;

namespace {
constexpr std::uintmax_t maximumFileBytes = 512 * 1024;
constexpr std::size_t maximumEntries = 5000;

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::vector<fs::path> environmentFolders() {
    std::vector<fs::path> result;
    std::string home = environment("XDG_DATA_HOME");
    if (home.empty() && !environment("HOME").empty()) home = environment("HOME") + "/.local/share";
    std::string all = home + ":";
    std::string system = environment("XDG_DATA_DIRS");
    all += system.empty() ? "/usr/local/share:/usr/share" : system;
    for (std::size_t begin = 0; begin <= all.size();) {
        std::size_t end = std::min(all.find(':', begin), all.size());
        fs::path folder = all.substr(begin, end - begin);
        if (folder.is_absolute()) result.push_back(folder / "applications");
        begin = end + 1;
    }
    return result;
}

std::string environmentLanguage() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        std::string value = environment(name);
        if (!value.empty()) return value;
    }
    return {};
}

/// The keys under which a localized name stands, best first; the plain "Name" last.
std::vector<std::string> nameKeysFor(std::string_view language) {
    std::string_view modifier;
    if (auto at = language.find('@'); at != std::string_view::npos) {
        modifier = language.substr(at);
        language = language.substr(0, at);
    }
    language = language.substr(0, language.find('.'));
    std::string full(language);
    std::string plain(language.substr(0, language.find('_')));
    std::vector<std::string> keys;
    if (!plain.empty() && plain != "C" && plain != "POSIX") {
        for (const std::string& locale :
             {full + std::string(modifier), full, plain + std::string(modifier), plain}) {
            keys.push_back("Name[" + locale + "]");
        }
    }
    keys.push_back("Name");
    return keys;
}

/// The words of an Exec line, quotes taken off.
std::vector<std::string> execWords(const std::string& line) {
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        bool ends = i == line.size() || (!quoted && line[i] == ' ');
        if (ends) {
            if (!word.empty()) words.push_back(std::exchange(word, {}));
        } else if (line[i] == '"') {
            quoted = !quoted;
        } else if (line[i] == '\\' && i + 1 < line.size()) {
            word += line[++i];
        } else {
            word += line[i];
        }
    }
    return words;
}

std::string_view trimmed(std::string_view text) {
    auto begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

/// Keys and values of the group [Desktop Entry].
std::map<std::string, std::string> readMainGroup(const fs::path& file) {
    std::map<std::string, std::string> values;
    std::ifstream stream(file);
    bool inGroup = false;
    for (std::string line; std::getline(stream, line);) {
        std::string_view text = trimmed(line);
        if (text.starts_with('[')) {
            if (inGroup) break;
            inGroup = text == "[Desktop Entry]";
        } else if (auto equals = text.find('='); inGroup && equals != std::string_view::npos) {
            values.emplace(trimmed(text.substr(0, equals)), trimmed(text.substr(equals + 1)));
        }
    }
    return values;
}

std::string valueOf(const std::map<std::string, std::string>& values, const std::string& key) {
    auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
}

bool sameWord(std::string_view a, std::string_view b) {
    return !a.empty() && a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

/// "org.gnome.Terminal" ends with "Terminal".
std::string_view lastPart(std::string_view id) { return id.substr(id.rfind('.') + 1); }

/// How well an entry fits; 0 is not at all. Several entries may start one program (an office
/// suite's parts), so the window's class and the id tell them apart.
int fitness(const DesktopEntry& entry, std::string_view program, std::string_view instance,
            std::string_view className) {
    bool starts = !program.empty() && entry.program == program;
    bool classed =
        sameWord(entry.startupWmClass, className) || sameWord(entry.startupWmClass, instance);
    bool namedAsProgram = sameWord(entry.id, program) || sameWord(lastPart(entry.id), program);
    bool namedAsClass = sameWord(entry.id, className) || sameWord(entry.id, instance);
    if (starts) return 16 + (classed ? 8 : 0) + (namedAsProgram ? 4 : 0) + (namedAsClass ? 2 : 0);
    if (classed) return 8;
    return namedAsClass ? 2 : 0;
}
}  // namespace

DesktopEntries::DesktopEntries() : DesktopEntries(environmentFolders(), environmentLanguage()) {}

DesktopEntries::DesktopEntries(std::vector<fs::path> applicationFolders, std::string_view language)
    : folders(std::move(applicationFolders)), nameKeys(nameKeysFor(language)) {}

const DesktopEntry* DesktopEntries::find(std::string_view program, std::string_view classInstance,
                                         std::string_view className) {
    refresh();
    const DesktopEntry* best = nullptr;
    int bestFitness = 0;
    for (const auto& [id, entry] : entries) {
        int fits = fitness(entry, program, classInstance, className);
        if (fits > bestFitness) {
            best = &entry;
            bestFitness = fits;
        }
    }
    return best;
}

const DesktopEntry* DesktopEntries::byId(std::string_view id) {
    refresh();
    auto found = entries.find(id);
    return found == entries.end() ? nullptr : &found->second;
}

bool DesktopEntries::isCurrent() const {
    return !times.empty() && std::all_of(times.begin(), times.end(), [](const auto& noted) {
        std::error_code error;
        auto now = fs::last_write_time(noted.first, error);
        return error ? !noted.second : noted.second == now;
    });
}

void DesktopEntries::refresh() {
    if (isCurrent()) return;
    times.clear();
    entries.clear();
    for (const fs::path& folder : folders) indexFolder(folder);
}

void DesktopEntries::indexFolder(const fs::path& applications) {
    std::error_code error;
    auto note = [&](const fs::path& folder) {
        auto time = fs::last_write_time(folder, error);
        times[folder] = error ? FolderTime() : FolderTime(time);
        return !error;
    };
    if (!note(applications)) return;
    fs::recursive_directory_iterator file(applications,
                                          fs::directory_options::skip_permission_denied, error);
    for (; !error && file != fs::recursive_directory_iterator(); file.increment(error)) {
        std::error_code ignored;
        if (file->is_directory(ignored)) {
            note(file->path());
        } else if (file->path().extension() == ".desktop" && entries.size() < maximumEntries) {
            addFile(applications, file->path());
        }
    }
}

void DesktopEntries::addFile(const fs::path& applications, const fs::path& file) {
    std::error_code error;
    // A pipe or a device in that folder must not stop us.
    if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > maximumFileBytes) return;
    std::string id = fs::path(file).replace_extension().lexically_relative(applications).string();
    std::replace(id.begin(), id.end(), '/', '-');
    if (entries.contains(id)) return;  // A folder of higher precedence has it.

    auto values = readMainGroup(file);
    bool isProgram =
        valueOf(values, "Type") == "Application" && valueOf(values, "Hidden") != "true";
    DesktopEntry entry{.id = id,
                       .name = {},
                       .icon = valueOf(values, "Icon"),
                       .startupWmClass = valueOf(values, "StartupWMClass"),
                       .program = programOfCommandLine(execWords(valueOf(values, "Exec"))),
                       .file = file};
    if (entry.program.empty()) {
        entry.program = programOfCommandLine(execWords(valueOf(values, "TryExec")));
    }
    for (const std::string& key : nameKeys) {
        entry.name = valueOf(values, key);
        if (!entry.name.empty()) break;
    }
    if (isProgram && !entry.name.empty()) entries.emplace(id, std::move(entry));
}

}  // namespace nevo::xcb
