#include "platform/store/RepeatedLines.h"

#include <fmt/format.h>

#include <iterator>
#include <utility>

namespace nevo {

namespace {
constexpr double countedTime = 60.0;
constexpr std::size_t mostLines = 256;
/// A longer line isn't remembered: it is written each time.
constexpr std::size_t longestLine = 4096;
}  // namespace

RepeatedLines::RepeatedLines(std::function<void(std::string_view)> writer,
                             std::function<double()> clock)
    : write(std::move(writer)), now(std::move(clock)) {}

void RepeatedLines::add(std::string_view line) {
    double time = now();
    while (!lines.empty() && time - lines.front().writtenAt >= countedTime) forgetOldest();
    if (auto known = byText.find(line); known != byText.end()) {
        ++known->second->repeats;
        return;
    }
    if (line.size() <= longestLine) {
        if (lines.size() == mostLines) forgetOldest();
        lines.push_back({std::string(line), time, 0});
        byText.emplace(lines.back().text, std::prev(lines.end()));
    }
    write(line);
}

void RepeatedLines::flush() {
    while (!lines.empty()) forgetOldest();
}

void RepeatedLines::forgetOldest() {
    const Line& oldest = lines.front();
    if (oldest.repeats > 0) {
        write(fmt::format("[Log] repeated within a minute, {}x: {}", oldest.repeats, oldest.text));
    }
    byText.erase(oldest.text);
    lines.pop_front();
}

}  // namespace nevo
