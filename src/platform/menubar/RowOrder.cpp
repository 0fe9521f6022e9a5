#include "platform/menubar/RowOrder.h"

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

}  // namespace nevo
