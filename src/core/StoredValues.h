#pragma once

#include <optional>
#include <string>

#include "platform/UserDefaults.h"

namespace nevo {

/// Typed reads of a domain. A value of another kind reads as absent: whoever else writes the store
/// can't make the program fail. Integers and truth values read as numbers, and numbers other than 0
/// as true.
std::optional<double> storedNumber(const DefaultsDomain& domain, const std::string& key);
std::optional<std::string> storedString(const DefaultsDomain& domain, const std::string& key);
std::optional<Bytes> storedBytes(const DefaultsDomain& domain, const std::string& key);
/// False when absent (`boolForKey:`).
bool storedBool(const DefaultsDomain& domain, const std::string& key, bool fallback = false);

}  // namespace nevo
