#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/Registration.h"

namespace nevo {

/// What a notification carries beside its name.
using UserInfo = std::map<std::string, std::string>;

struct Notification {
    std::string name;
    UserInfo userInfo;
};

/// Posts notifications to observers by name, at once and in the order in which they were added
/// (`NSNotificationCenter`, and the workspace's own centre). An observer added during a post
/// doesn't see that post; one removed during it isn't called any more.
class NotificationCenter {
public:
    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    Registration addObserver(const std::string& name,
                             std::function<void(const Notification&)> observer);
    void post(const std::string& name, UserInfo userInfo = {});

    /// The number of observers of all names, for tests of what is left behind.
    std::size_t observerCount() const;

private:
    struct Observers;
    std::shared_ptr<Observers> observers;
};

}  // namespace nevo
