#pragma once

#include <poll.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
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
        /// No side of the picture is longer, pixels.
        int side = 0;
        auto operator<=>(const Name&) const = default;
    };

    /// The picture, when it is known; an empty one when there is none of that name, which is looked
    /// for again when it is asked for later. Nullptr while it is being looked for for the first
    /// time: `changed` tells of its coming, at a later `process`.
    const statusnotifier::Picture* find(const Name& name);
    std::function<void(const Name&)> changed;
    /// Looks for a known picture once more, unless it is one of the theme's: its file may have
    /// other contents now. Where there is none any more, or half of one, the last picture stays.
    /// However often this is asked for, it takes a small part of the helper's time.
    void lookAnew(const Name& name);
    /// Whether a name is in use; others may be forgotten, and aren't looked for.
    std::function<bool(const Name&)> isInUse;

    void appendTo(std::vector<pollfd>& descriptors) const;
    std::optional<Clock::time_point> deadline() const;
    /// Sends and takes what can be without waiting.
    void process();

private:
    static constexpr std::chrono::seconds shortestPause{3};

    struct Entry {
        std::optional<statusnotifier::Picture> picture;
        Clock::time_point goodUntil = Clock::time_point::max();
        /// How long the next answer that there is none counts: longer each time.
        std::chrono::seconds pause = shortestPause;
        /// It is `current` or in one of the queues.
        bool isAwaited = false;
        /// How often in a row the helper has ended or hung over it.
        int failures = 0;
        /// Not to be looked for anew before.
        Clock::time_point rest;
    };

    void await(const Name& name, Entry& entry);
    void lookForOutdated();
    void forgetUnused();
    std::deque<Name>* nextQueue();
    void askNext();
    bool startHelper();
    void send();
    bool receive();
    bool takeAnswer();
    void settle(const Name& name, statusnotifier::Picture picture, bool mayComeLater);
    void giveUp();

    std::map<Name, Entry> known;
    std::deque<Name> waiting;
    /// To be tried again when no other waits.
    std::deque<Name> failed;
    /// To be looked for once more, when what is under way for them is over.
    std::set<Name> outdated;
    std::unique_ptr<HelperProcess> helper;
    /// Of a helper that couldn't be started.
    Clock::time_point nextStart;
    /// Being looked for now, by the helper.
    std::optional<Name> current;
    std::string toSend;
    std::string received;
    Clock::time_point due;
    Clock::time_point asked;
};

}  // namespace nevo::menubar
