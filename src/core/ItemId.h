#pragma once

#include <string>
#include <string_view>

namespace nevo {

/// Between an item's stable name and its owner's bundle identifier in a `persistedID`.
inline constexpr std::string_view persistedIDSeparator = " >>> ";

/// Whether an id ends with that application's identifier after the separator.
inline bool isOfApplication(std::string_view persistedID, std::string_view bundleID) {
    return persistedID.size() >= persistedIDSeparator.size() + bundleID.size() &&
           persistedID.ends_with(bundleID) &&
           persistedID.substr(0, persistedID.size() - bundleID.size())
               .ends_with(persistedIDSeparator);
}

/// OneDrive comes in two editions, and keeps items that have nothing but a label to tell them
/// apart.
inline bool isOneDrive(std::string_view bundleID) {
    return bundleID == "com.microsoft.OneDrive" || bundleID == "com.microsoft.OneDrive-mac";
}

}  // namespace nevo
