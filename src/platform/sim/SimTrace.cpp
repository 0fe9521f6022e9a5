#include "platform/sim/SimTrace.h"

#include <fmt/format.h>

namespace nevo {

void SimTrace::note(std::string_view kind, std::string_view text) {
    all.push_back(fmt::format("{:10.3f}  {:<8} {}", loop.now(), kind, text));
    if (listener) listener(all.back());
}

void SimLog::writeStandardError(std::string_view text) {
    unfinished += text;
    for (std::size_t end; (end = unfinished.find('\n')) != std::string::npos;) {
        all.push_back(unfinished.substr(0, end));
        unfinished.erase(0, end + 1);
        trace.note("log", all.back());
    }
}

}  // namespace nevo
