#include <cctype>
#include <regex>

#include "lint/Checks.h"

namespace nevo::lint {

namespace {

/// The expression that begins at `start`: up to the end of its statement, or to the parenthesis
/// that closes around it.
std::string operandAt(const std::string& code, std::size_t start) {
    int depth = 0;
    std::size_t end = start;
    for (; end < code.size(); ++end) {
        char c = code[end];
        if (c == '(' || c == '{' || c == '[') ++depth;
        if ((c == ')' || c == '}' || c == ']') && --depth < 0) break;
        if (c == ';' && depth == 0) break;
    }
    return code.substr(start, end - start);
}

/// What stands before `start` in its statement, without anything in parentheses. An open
/// parenthesis stays.
std::string leadUpTo(const std::string& code, std::size_t start) {
    std::string reversed;
    int depth = 0;
    for (std::size_t at = start; at > 0; --at) {
        char c = code[at - 1];
        if (depth == 0 && (c == ';' || c == '{' || c == '}')) break;
        if (c == ')') ++depth;
        if (depth == 0) reversed += c;
        if (c == '(' && depth > 0) --depth;
    }
    return {reversed.rbegin(), reversed.rend()};
}

std::string complaint(const std::string& before, const std::string& operand) {
    static const std::regex plainStart("\\s+(::)?[A-Za-z_].*", std::regex::multiline);
    static const std::regex lambda("[(,=]\\s*\\[");
    // A reference to a temporary (`auto&&`) has no space before it.
    static const std::regex choice("\\?|\\|\\||\\s&&|![^=]");
    if (before.find('(') != std::string::npos) {
        return "gives its result to a local first, then to a condition or a call";
    }
    if (std::regex_search(before + ' ', choice) || std::regex_search(operand, choice)) {
        return "stands alone, without ?: && || or !";
    }
    if (!std::regex_search(operand.substr(0, 200), plainStart,
                           std::regex_constants::match_continuous)) {
        return "awaits a plain call or a name";
    }
    if (std::regex_search(operand, lambda)) return "takes no lambda as an argument";
    if (operand.find('{') != std::string::npos) return "takes nothing built with braces";
    return {};
}

}  // namespace

Findings fragileAwaits(const SourceFile& file) {
    if (!file.isCode()) return {};
    static const std::string word = "co_await";
    Findings findings;
    std::string code = file.code();
    for (std::size_t at = code.find(word); at != std::string::npos; at = code.find(word, at + 1)) {
        std::string before = leadUpTo(code, at);
        if (before.ends_with("operator ")) continue;
        std::string wrong = complaint(before, operandAt(code, at + word.size()));
        if (wrong.empty()) continue;
        findings.push_back(file.path + ":" + std::to_string(lineOf(code, at)) + ": a " + word +
                           " " + wrong);
    }
    return findings;
}

}  // namespace nevo::lint
