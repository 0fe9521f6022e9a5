#include "controller/RuleChanges.h"

namespace nevo {

namespace {
constexpr double duplicateWindow = 2.0;
}

bool RuleChanges::isDuplicate(const std::string& persistedID, IconRule rule, double now) const {
    auto last = changes.find(persistedID);
    return last != changes.end() && last->second.number > 0 && last->second.rule == rule &&
           now - last->second.time < duplicateWindow;
}

void RuleChanges::accept(const std::string& persistedID, IconRule rule, double now) {
    Last& last = changes[persistedID];
    last.rule = rule;
    last.time = now;
    ++last.number;
}

RuleChange RuleChanges::newest(const std::string& persistedID) const {
    const Last& last = changes.at(persistedID);
    return {persistedID, last.rule, last.number};
}

bool RuleChanges::isNewest(const RuleChange& change) const {
    auto last = changes.find(change.persistedID);
    return last != changes.end() && last->second.number == change.number;
}

bool RuleChanges::begin(const std::string& persistedID) {
    Last& last = changes[persistedID];
    if (last.isUnderWay) return false;
    last.isUnderWay = true;
    return true;
}

void RuleChanges::end(const std::string& persistedID) { changes[persistedID].isUnderWay = false; }

bool RuleChanges::isUnderWay(const std::string& persistedID) const {
    auto last = changes.find(persistedID);
    return last != changes.end() && last->second.isUnderWay;
}

}  // namespace nevo
