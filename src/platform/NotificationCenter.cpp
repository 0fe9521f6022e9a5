#include "platform/NotificationCenter.h"

#include <vector>

namespace nevo {

struct NotificationCenter::Observers {
    struct Entry {
        std::string name;
        std::function<void(const Notification&)> call;
    };
    std::map<std::size_t, std::shared_ptr<Entry>> entries;
    std::size_t nextId = 1;
};

NotificationCenter::NotificationCenter() : observers(std::make_shared<Observers>()) {}
NotificationCenter::~NotificationCenter() = default;

Registration NotificationCenter::addObserver(const std::string& name,
                                             std::function<void(const Notification&)> observer) {
    std::size_t id = observers->nextId++;
    observers->entries.emplace(
        id, std::make_shared<Observers::Entry>(Observers::Entry{name, std::move(observer)}));
    return Registration([weak = std::weak_ptr(observers), id] {
        if (auto held = weak.lock()) held->entries.erase(id);
    });
}

void NotificationCenter::post(const std::string& name, UserInfo userInfo) {
    auto held = observers;
    std::vector<std::size_t> ids;
    for (const auto& [id, entry] : held->entries) {
        if (entry->name == name) ids.push_back(id);
    }
    Notification notification{name, std::move(userInfo)};
    for (std::size_t id : ids) {
        auto found = held->entries.find(id);
        if (found == held->entries.end()) continue;
        auto entry = found->second;
        entry->call(notification);
    }
}

std::size_t NotificationCenter::observerCount() const { return observers->entries.size(); }

}  // namespace nevo
