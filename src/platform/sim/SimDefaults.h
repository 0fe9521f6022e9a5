#pragma once

#include <map>
#include <set>

#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"
#include "platform/sim/SimFaults.h"
#include "platform/sim/SimTrace.h"

namespace nevo {

/// All domains of stored values, in memory. They outlive the programs that wrote them.
class SimDefaults : public UserDefaults {
public:
    SimDefaults(SimRunLoop& runLoop, NotificationCenter& defaultCentre, SimFaults& scripted,
                SimTrace& to);
    ~SimDefaults() override;

    DefaultsDomain& standard() override;
    std::unique_ptr<DefaultsDomain> suite(const std::string& name) override;

    /// The name of the program's own domain: its bundle identifier.
    const std::string& ownDomain() const { return ownName; }
    void setOwnDomain(const std::string& name) { ownName = name; }

    // What other hands than the program's do. A change of the program's own domain is told to it
    // at a later turn of its loop.
    void write(const std::string& domain, const std::string& key, DefaultsValue value);
    void remove(const std::string& domain, const std::string& key);
    std::optional<DefaultsValue> read(const std::string& domain, const std::string& key) const;
    /// The value as a number, if it is one.
    std::optional<double> readNumber(const std::string& domain, const std::string& key) const;
    std::vector<std::string> keys(const std::string& domain) const;
    /// An application's domain that can't be opened.
    void setOpenable(const std::string& domain, bool openable);

private:
    class Domain;
    void store(const std::string& domain, const std::string& key, DefaultsValue value);
    void erase(const std::string& domain, const std::string& key);
    void postChange() { notifications.post(userDefaultsDidChangeNotification); }
    void postChangeLater(const std::string& domain);

    SimRunLoop& loop;
    NotificationCenter& notifications;
    SimFaults& faults;
    SimTrace& trace;
    std::string ownName;
    std::map<std::string, std::map<std::string, DefaultsValue>> domains;
    std::set<std::string> unopenable;
    std::unique_ptr<Domain> own;
};

/// The value as scenarios write it: `number 12.5`, `string hello`, `bytes 0a1b`.
std::string describe(const DefaultsValue& value);

}  // namespace nevo
