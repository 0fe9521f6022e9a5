#include "platform/menubar/RowOrder.h"

#include <algorithm>
#include <map>
#include <set>

namespace nevo {

namespace {

/// Whether the item stands on the other side of any other than it did.
bool standsElsewhere(const std::string& item, const std::vector<std::string>& remembered,
                     const std::vector<std::string>& present) {
    auto before = std::find(remembered.begin(), remembered.end(), item);
    auto now = std::find(present.begin(), present.end(), item);
    if (before == remembered.end()) return false;
    std::set<std::string> wasLeft(remembered.begin(), before);
    std::set<std::string> wasRight(before, remembered.end());
    return std::any_of(present.begin(), now, [&](auto& each) { return wasRight.contains(each); }) ||
           std::any_of(now, present.end(), [&](auto& each) { return wasLeft.contains(each); });
}

}  // namespace

std::vector<std::string> mergedRowOrder(std::vector<std::string> remembered,
                                        const std::vector<std::string>& present,
                                        const std::string& placed) {
    std::set<std::string> isPresent(present.begin(), present.end());
    if (standsElsewhere(placed, remembered, present)) std::erase(remembered, placed);
    std::map<std::string, std::vector<std::string>> absentAfter;
    std::vector<std::string> leftmost;
    const std::string* first = nullptr;
    const std::string* anchor = nullptr;
    for (const std::string& identity : remembered) {
        if (isPresent.contains(identity)) {
            anchor = &identity;
            if (first == nullptr) first = anchor;
        } else {
            (anchor ? absentAfter[*anchor] : leftmost).push_back(identity);
        }
    }
    std::vector<std::string> result;
    auto append = [&](const std::vector<std::string>& absent) {
        result.insert(result.end(), absent.begin(), absent.end());
    };
    if (first == nullptr) append(leftmost);
    for (const std::string& identity : present) {
        if (first != nullptr && identity == *first) append(leftmost);
        result.push_back(identity);
        if (auto followers = absentAfter.find(identity); followers != absentAfter.end())
            append(followers->second);
    }
    return result;
}

void forgetAbsent(std::vector<std::string>& order, const std::vector<std::string>& present,
                  std::size_t most) {
    std::set<std::string> isPresent(present.begin(), present.end());
    auto application = [](const std::string& identity) {
        return identity.substr(0, identity.find('|'));
    };
    std::map<std::string, std::size_t> absent;
    for (const std::string& identity : order) {
        if (!isPresent.contains(identity)) ++absent[application(identity)];
    }
    while (order.size() > most && !absent.empty()) {
        auto worst = std::max_element(absent.begin(), absent.end(),
                                      [](auto& a, auto& b) { return a.second < b.second; });
        std::erase_if(order, [&](const std::string& identity) {
            return !isPresent.contains(identity) && application(identity) == worst->first;
        });
        absent.erase(worst);
    }
}

}  // namespace nevo
