#pragma once

#include <optional>
#include <string>
#include <vector>

namespace nevo {

/// One word of a scenario's line; a quoted one is never a keyword.
struct Word {
    std::string text;
    bool quoted = false;
};

/// Splits a line into words: blanks part them, double quotes hold them together (a backslash before
/// a quote or a backslash takes it as it is), and `#` at the start of a word begins a comment.
/// Nothing when a quote isn't closed.
std::optional<std::vector<Word>> splitLine(const std::string& line);

/// Reads a command's arguments one by one. The first thing that can't be read is kept as `error`;
/// after it every reading gives an empty value, so that a command asks once, at its end.
class LineReader {
public:
    explicit LineReader(std::vector<Word> of) : words(std::move(of)) {}

    /// `what` names the argument in the message.
    std::string word(const std::string& what);
    double number(const std::string& what);
    /// A number that isn't negative.
    double amount(const std::string& what);
    int whole(const std::string& what);
    /// One of `allowed`.
    std::string choice(const std::string& what, const std::vector<std::string>& allowed);
    /// Takes the next word if it is `keyword`.
    bool take(const std::string& keyword);
    /// Takes the next word if it is one of `keywords`.
    std::optional<std::string> takeOneOf(const std::vector<std::string>& keywords);
    /// All words that are left, at least `atLeast`.
    std::vector<std::string> rest(const std::string& what, std::size_t atLeast);
    /// The words that are left, as they are.
    std::vector<Word> remaining();

    bool atEnd() const { return next >= words.size(); }
    /// Whether the next word can be read as a number.
    bool atNumber() const;
    void fail(const std::string& message);
    /// Empty while everything could be read.
    const std::string& error() const { return problem; }

private:
    std::vector<Word> words;
    std::size_t next = 0;
    std::string problem;
};

/// "a, b or c".
std::string listed(const std::vector<std::string>& names);

/// The whole of `text` as a number; nothing otherwise.
std::optional<double> parseNumber(const std::string& text);

}  // namespace nevo
