#pragma once

#include <optional>
#include <string>

namespace nevo {

/// What a call has come to: a value, or the text of what went wrong.
template <typename T>
struct Result {
    std::optional<T> value;
    std::string error;
};

}  // namespace nevo
