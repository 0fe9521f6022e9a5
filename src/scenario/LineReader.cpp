#include "scenario/LineReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace nevo {

namespace {
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

/// Reads a quoted word from behind its opening quote; leaves `at` behind the closing one. False
/// when there is none.
bool readQuoted(const std::string& line, std::size_t& at, std::string& text) {
    while (at < line.size() && line[at] != '"') {
        bool escapes = line[at] == '\\' && at + 1 < line.size() &&
                       (line[at + 1] == '"' || line[at + 1] == '\\');
        if (escapes) ++at;
        text += line[at++];
    }
    if (at >= line.size()) return false;
    ++at;
    return true;
}
}  // namespace

std::optional<std::vector<Word>> splitLine(const std::string& line) {
    std::vector<Word> words;
    for (std::size_t at = 0; at < line.size();) {
        if (isBlank(line[at])) {
            ++at;
            continue;
        }
        if (line[at] == '#') break;
        Word word;
        if (line[at] == '"') {
            word.quoted = true;
            if (!readQuoted(line, ++at, word.text)) return std::nullopt;
        } else {
            while (at < line.size() && !isBlank(line[at])) word.text += line[at++];
        }
        words.push_back(std::move(word));
    }
    return words;
}

std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) text += i + 1 == names.size() ? " or " : ", ";
        text += names[i];
    }
    return text;
}

std::optional<double> parseNumber(const std::string& text) {
    double value = 0;
    auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    bool whole = failure == std::errc() && end == text.data() + text.size();
    if (!whole || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::string LineReader::word(const std::string& what) {
    if (atEnd()) fail(fmt::format("{} is missing", what));
    if (!problem.empty()) return "";
    return words[next++].text;
}

double LineReader::number(const std::string& what) {
    std::string text = word(what);
    if (!problem.empty()) return 0;
    auto value = parseNumber(text);
    if (!value) fail(fmt::format("{} must be a number, not \"{}\"", what, text));
    return value.value_or(0);
}

double LineReader::amount(const std::string& what) {
    double value = number(what);
    if (value < 0) fail(fmt::format("{} can't be negative", what));
    return value;
}

int LineReader::whole(const std::string& what) {
    double value = number(what);
    bool fits = value == std::floor(value) && std::abs(value) <= 1e9;
    if (!fits) fail(fmt::format("{} must be a whole number", what));
    return fits ? static_cast<int>(value) : 0;
}

std::string LineReader::choice(const std::string& what, const std::vector<std::string>& allowed) {
    std::string text = word(what);
    if (!problem.empty()) return "";
    if (std::find(allowed.begin(), allowed.end(), text) == allowed.end()) {
        fail(fmt::format("{} must be {}, not \"{}\"", what, listed(allowed), text));
    }
    return text;
}

bool LineReader::take(const std::string& keyword) {
    if (!problem.empty() || atEnd() || words[next].quoted) return false;
    if (words[next].text != keyword) return false;
    ++next;
    return true;
}

std::optional<std::string> LineReader::takeOneOf(const std::vector<std::string>& keywords) {
    for (const std::string& keyword : keywords) {
        if (take(keyword)) return keyword;
    }
    return std::nullopt;
}

std::vector<std::string> LineReader::rest(const std::string& what, std::size_t atLeast) {
    std::vector<std::string> result;
    while (problem.empty() && !atEnd()) result.push_back(words[next++].text);
    if (result.size() < atLeast) fail(fmt::format("{} is missing", what));
    return result;
}

std::vector<Word> LineReader::remaining() {
    std::vector<Word> result(words.begin() + static_cast<std::ptrdiff_t>(next), words.end());
    next = words.size();
    return result;
}

bool LineReader::atNumber() const {
    return !atEnd() && !words[next].quoted && parseNumber(words[next].text).has_value();
}

void LineReader::fail(const std::string& message) {
    if (problem.empty()) problem = message;
}

}  // namespace nevo
