#include "platform/sim/SimDefaults.h"

#include <fmt/format.h>

namespace nevo {

class SimDefaults::Domain : public DefaultsDomain {
public:
    /// An empty name stands for the program's own domain, whatever it is called.
    Domain(SimDefaults& of, std::string domain) : owner(of), name(std::move(domain)) {}

    std::optional<DefaultsValue> object(const std::string& key) const override {
        return owner.read(id(), key);
    }
    void set(const std::string& key, DefaultsValue value) override {
        owner.store(id(), key, std::move(value));
        if (isOwn()) owner.postChange();
    }
    void remove(const std::string& key) override {
        owner.erase(id(), key);
        if (isOwn()) owner.postChange();
    }
    std::vector<std::string> keys() const override { return owner.keys(id()); }
    bool synchronize() override { return !owner.faults.strikes(SimOperation::synchronize); }

private:
    bool isOwn() const { return name.empty(); }
    const std::string& id() const { return isOwn() ? owner.ownName : name; }

    SimDefaults& owner;
    std::string name;
};

SimDefaults::SimDefaults(SimRunLoop& runLoop, NotificationCenter& defaultCentre,
                         SimFaults& scripted, SimTrace& to)
    : loop(runLoop),
      notifications(defaultCentre),
      faults(scripted),
      trace(to),
      own(std::make_unique<Domain>(*this, "")) {}
SimDefaults::~SimDefaults() = default;

DefaultsDomain& SimDefaults::standard() { return *own; }

std::unique_ptr<DefaultsDomain> SimDefaults::suite(const std::string& name) {
    if (name.empty() || unopenable.count(name) > 0 || faults.strikes(SimOperation::suite)) {
        return nullptr;
    }
    return std::make_unique<Domain>(*this, name);
}

void SimDefaults::write(const std::string& domain, const std::string& key, DefaultsValue value) {
    store(domain, key, std::move(value));
    postChangeLater(domain);
}

void SimDefaults::remove(const std::string& domain, const std::string& key) {
    erase(domain, key);
    postChangeLater(domain);
}

void SimDefaults::postChangeLater(const std::string& domain) {
    if (domain == ownName) loop.post([this] { postChange(); });
}

std::optional<DefaultsValue> SimDefaults::read(const std::string& domain,
                                               const std::string& key) const {
    auto found = domains.find(domain);
    if (found == domains.end()) return std::nullopt;
    auto value = found->second.find(key);
    if (value == found->second.end()) return std::nullopt;
    return value->second;
}

std::optional<double> SimDefaults::readNumber(const std::string& domain,
                                              const std::string& key) const {
    auto value = read(domain, key);
    if (!value) return std::nullopt;
    if (auto* number = std::get_if<double>(&*value)) return *number;
    if (auto* whole = std::get_if<std::int64_t>(&*value)) return static_cast<double>(*whole);
    return std::nullopt;
}

std::vector<std::string> SimDefaults::keys(const std::string& domain) const {
    std::vector<std::string> result;
    auto found = domains.find(domain);
    if (found == domains.end()) return result;
    for (const auto& [key, value] : found->second) result.push_back(key);
    return result;
}

void SimDefaults::setOpenable(const std::string& domain, bool openable) {
    if (openable) {
        unopenable.erase(domain);
    } else {
        unopenable.insert(domain);
    }
}

void SimDefaults::store(const std::string& domain, const std::string& key, DefaultsValue value) {
    trace.note("defaults", fmt::format("{} \"{}\" = {}", domain, key, describe(value)));
    domains[domain][key] = std::move(value);
}

void SimDefaults::erase(const std::string& domain, const std::string& key) {
    if (domains[domain].erase(key) > 0) {
        trace.note("defaults", fmt::format("{} \"{}\" removed", domain, key));
    }
}

std::string describe(const DefaultsValue& value) {
    struct Describer {
        std::string operator()(bool v) const { return v ? "bool true" : "bool false"; }
        std::string operator()(std::int64_t v) const { return fmt::format("int {}", v); }
        std::string operator()(double v) const { return fmt::format("number {}", v); }
        std::string operator()(const std::string& v) const {
            return fmt::format("string \"{}\"", v);
        }
        std::string operator()(const Bytes& v) const {
            std::string text = "bytes ";
            for (std::uint8_t byte : v) text += fmt::format("{:02x}", byte);
            return text;
        }
        std::string operator()(const std::vector<std::string>& v) const {
            std::string text = "list";
            for (const std::string& element : v) text += fmt::format(" \"{}\"", element);
            return text;
        }
    };
    return std::visit(Describer{}, value);
}

}  // namespace nevo
