#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace nevo {

using Bytes = std::vector<std::uint8_t>;

/// A stored value. Numbers keep the kind in which they were written.
using DefaultsValue =
    std::variant<bool, std::int64_t, double, std::string, Bytes, std::vector<std::string>>;

/// One domain of stored values: an application's settings (`NSUserDefaults`).
class DefaultsDomain {
public:
    virtual ~DefaultsDomain() = default;

    /// The value under `key`, or nothing (`objectForKey:`).
    virtual std::optional<DefaultsValue> object(const std::string& key) const = 0;
    /// Writes `value` under `key` (`setObject:forKey:`). A store that can't be written keeps the
    /// value for this run.
    virtual void set(const std::string& key, DefaultsValue value) = 0;
    virtual void remove(const std::string& key) = 0;
    /// All keys, ascending (`dictionaryRepresentation`).
    virtual std::vector<std::string> keys() const = 0;
    /// Brings what was set to the store, and what others wrote there to us (`synchronize`). False
    /// when it failed.
    virtual bool synchronize() = 0;
};

/// The stored values of this program and of others.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// This program's own domain (`standardUserDefaults`). Each change of it posts
    /// `userDefaultsDidChangeNotification` on the default centre.
    virtual DefaultsDomain& standard() = 0;

    /// Another application's domain by its identifier (`initWithSuiteName:`), or nullptr when it
    /// can't be opened.
    virtual std::unique_ptr<DefaultsDomain> suite(const std::string& name) = 0;
};

inline constexpr const char* userDefaultsDidChangeNotification =
    "NSUserDefaultsDidChangeNotification";

}  // namespace nevo
