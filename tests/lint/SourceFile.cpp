#include "lint/SourceFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace nevo::lint {

namespace fs = std::filesystem;

bool SourceFile::isCode() const { return path.ends_with(".cpp") || path.ends_with(".h"); }

bool SourceFile::isIn(std::string_view folder) const {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

namespace {

/// Where the comment or literal that begins at `start` ends; `start` itself if none begins there.
std::size_t endOfQuiet(const std::string& text, std::size_t start) {
    auto orEnd = [&](std::size_t found, std::size_t length) {
        return found == std::string::npos ? text.size() : found + length;
    };
    if (text.compare(start, 2, "//") == 0) return orEnd(text.find('\n', start), 0);
    if (text.compare(start, 2, "/*") == 0) return orEnd(text.find("*/", start + 2), 2);
    char quote = text[start];
    bool digitSeparator = quote == '\'' && start > 0 && isxdigit(text[start - 1]) != 0;
    if ((quote != '"' && quote != '\'') || digitSeparator) return start;
    if (quote == '"' && start > 0 && text[start - 1] == 'R') {
        std::string delimiter = text.substr(start + 1, text.find('(', start) - start - 1);
        return orEnd(text.find(")" + delimiter + "\"", start), delimiter.size() + 2);
    }
    std::size_t end = start + 1;
    while (end < text.size() && text[end] != quote) end += text[end] == '\\' ? 2 : 1;
    return std::min(end + 1, text.size());
}

bool belongsToTree(const fs::path& entry) {
    std::string name = entry.filename().string();
    if (name == ".ci" || name == ".clang-format" || name == ".clang-tidy") return true;
    return !name.starts_with(".") && !name.starts_with("build") && name != "nevo-walk" &&
           name != "__pycache__";
}

}  // namespace

std::string SourceFile::code() const {
    std::string result = text;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = endOfQuiet(text, at);
        if (end == at) {
            ++at;
            continue;
        }
        bool literal = text[at] == '"' || text[at] == '\'';
        // The name in an #include stays.
        std::size_t lineStart = text.rfind('\n', at) + 1;
        bool include = literal && text.compare(lineStart, 8, "#include") == 0;
        std::size_t last = literal ? end - 1 : end;
        for (std::size_t i = literal ? at + 1 : at; i < last && !include; ++i) {
            if (text[i] != '\n') result[i] = ' ';
        }
        at = end;
    }
    return result;
}

std::string SourceFile::prose() const {
    if (!isCode()) return text;
    std::string result = text;
    std::string bare = code();
    for (std::size_t i = 0; i < result.size(); ++i) {
        if (bare[i] == text[i] && text[i] != '\n') result[i] = ' ';
    }
    return result;
}

std::size_t lineOf(const std::string& text, std::size_t offset) {
    auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
    return static_cast<std::size_t>(std::count(text.begin(), end, '\n')) + 1;
}

std::vector<SourceFile> wholeTree() {
    std::vector<SourceFile> files;
    fs::path root = NEVO_SOURCE_DIR;
    for (auto entry = fs::recursive_directory_iterator(root); entry != fs::end(entry); ++entry) {
        if (!belongsToTree(entry->path())) {
            if (entry->is_directory()) entry.disable_recursion_pending();
            continue;
        }
        if (!entry->is_regular_file()) continue;
        std::ifstream stream(entry->path(), std::ios::binary);
        std::string text((std::istreambuf_iterator<char>(stream)), {});
        if (text.find('\0') != std::string::npos) continue;
        files.push_back({fs::relative(entry->path(), root).generic_string(), std::move(text)});
    }
    std::sort(files.begin(), files.end(),
              [](const SourceFile& a, const SourceFile& b) { return a.path < b.path; });
    return files;
}

}  // namespace nevo::lint
