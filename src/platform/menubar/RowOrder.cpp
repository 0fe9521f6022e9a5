#include "platform/menubar/RowOrder.h"

#include <algorithm>
#include <map>
#include <set>

namespace nevo {

std::vector<std::string> mergedRowOrder(const std::vector<std::string>& remembered,
                                        const std::vector<std::string>& present) {
    std::set<std::string> isPresent(present.begin(), present.end());
    std::vector<std::string> result;
    std::map<std::string, std::vector<std::string>> absentAfter;
    const std::string* anchor = nullptr;
    for (const std::string& identity : remembered) {
        if (isPresent.contains(identity)) {
            anchor = &identity;
        } else {
            (anchor ? absentAfter[*anchor] : result).push_back(identity);
        }
    }
    for (const std::string& identity : present) {
        result.push_back(identity);
        if (auto followers = absentAfter.find(identity); followers != absentAfter.end()) {
            result.insert(result.end(), followers->second.begin(), followers->second.end());
        }
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
