#include "platform/sim/SimTrace.h"

#include <fmt/format.h>

namespace nevo {

void SimTrace::note(std::string_view kind, std::string_view text) {
    std::string line = fmt::format("{:10.3f}  {:<8} {}", loop.now(), kind, text);
    if (listener) listener(line);
    if (keepsLines) all.push_back(std::move(line));
}

namespace {

/// Adds `text` to what is unfinished and gives each line that is whole now to `take`.
void splitLines(std::string& unfinished, std::string_view text,
                const std::function<void(const std::string&)>& take) {
    unfinished += text;
    for (std::size_t end; (end = unfinished.find('\n')) != std::string::npos;) {
        std::string line = unfinished.substr(0, end);
        unfinished.erase(0, end + 1);
        take(line);
    }
}

}  // namespace

void SimLog::writeStandardError(std::string_view text) {
    splitLines(unfinished, text, [this](const std::string& line) {
        if (trace.keepsLines) all.push_back(line);
        trace.note("log", line);
    });
}

void SimLog::writeStandardOutput(std::string_view text) {
    splitLines(unfinishedOutput, text, [this](const std::string& line) {
        if (trace.keepsLines) output.push_back(line);
        trace.note("print", line);
    });
}

}  // namespace nevo
