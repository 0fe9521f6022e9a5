#pragma once

#include <poll.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "menubar/HelperProcess.h"
#include "statusnotifier/Pixmap.h"

namespace nevo::menubar {

/// Pictures by their names in the icon theme, from the helper: a file that hangs it or makes it
/// crash costs one picture. The helper runs while there is something to ask, and a little longer.
class IconSource {
public:
    using Clock = std::chrono::steady_clock;

    struct Name {
        /// In the theme, or an absolute path.
        std::string name;
        /// Searched first; may be empty.
        std::string themePath;
        auto operator<=>(const Name&) const = default;
    };

    /// `side`: of the pictures, pixels.
    explicit IconSource(int side) : pictureSide(side) {}

    /// The picture, when it is known; an empty one when there is none of that name. Nullptr while
    /// it is being looked for: `changed` tells of its coming, at a later `process`.
    const statusnotifier::Picture* find(const Name& name);
    std::function<void(const Name&)> changed;
    /// Whether a name is in use; others may be forgotten.
    std::function<bool(const Name&)> isInUse;

    void appendTo(std::vector<pollfd>& descriptors) const;
    std::optional<Clock::time_point> deadline() const;
    /// Sends and takes what can be without waiting.
    void process();

private:
    void ask(const Name& name);
    bool startHelper();
    void send();
    bool receive();
    bool takeAnswer();
    void settle(const Name& name, statusnotifier::Picture picture);
    void giveUp();

    int pictureSide;
    std::map<Name, std::optional<statusnotifier::Picture>> known;
    std::deque<Name> waiting;
    std::unique_ptr<HelperProcess> helper;
    /// Of a helper that couldn't be started.
    Clock::time_point nextStart;
    /// How often the helper has ended or hung over a name.
    std::map<Name, int> failures;
    /// Being looked for now, by the helper.
    std::optional<Name> current;
    std::string toSend;
    std::string received;
    Clock::time_point due;
};

}  // namespace nevo::menubar
