#pragma once

#include <fmt/format.h>

#include <string_view>

namespace nevo::menubar {

/// Writes one line to standard error. For notable events only: nothing a client can repeat at will.
void logLine(std::string_view text);

template <class... Arguments>
void log(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    logLine(fmt::format(format, std::forward<Arguments>(arguments)...));
}

}  // namespace nevo::menubar
