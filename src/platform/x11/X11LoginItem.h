#pragma once

#include <filesystem>

#include "platform/LoginItem.h"

namespace nevo {

/// An entry of this program among those that the desktop starts with the user's session (XDG
/// autostart).
class X11LoginItem : public LoginItem {
public:
    /// `startedProgram` is the absolute path of what is started.
    explicit X11LoginItem(std::string startedProgram);
    /// The entry is there, and neither hidden nor switched off in the desktop's settings.
    bool isRegistered() const override;
    std::optional<std::string> setRegistered(bool registered) override;

    /// Where the entry stands or would stand.
    static std::filesystem::path entryFile();

private:
    std::string program;
};

}  // namespace nevo
