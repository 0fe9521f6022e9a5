#pragma once

#include <optional>
#include <string>

namespace nevo {

/// The start of this program with the user's session (`SMAppService.mainAppService`).
class LoginItem {
public:
    virtual ~LoginItem() = default;
    /// `status` is enabled.
    virtual bool isRegistered() const = 0;
    /// `registerAndReturnError:`, `unregisterAndReturnError:`. Nothing on success, or what went
    /// wrong, for people.
    virtual std::optional<std::string> setRegistered(bool registered) = 0;
};

}  // namespace nevo
