#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/ItemId.h"

namespace nevo {

inline constexpr const char* controlCenterBundleID = "com.apple.controlcenter";

/// Whether the identifier is of a system process that holds many items of different kinds.
bool isSystemBundleID(std::string_view bundleID);

std::string makePersistedID(std::string_view stableName, std::string_view bundleID);

/// The text before the first separator (all of it if there is none), with every unnamed item's name
/// ("Item-" and a number) folded to "Item-0". For the keys of saved positions.
std::string stableName(std::string_view persistedID);

/// The last part of an id with the separator; otherwise the whole id if it contains a ".";
/// otherwise nothing.
std::optional<std::string> bundleIDFromPersistedID(std::string_view persistedID);

/// The text after the last separator; all of it without one.
std::string lastPartOfID(std::string_view persistedID);

/// True for a window of the control centre process that nothing identified: its name is only that
/// process's own. Never acted on.
bool isPhantomID(std::string_view persistedID);

/// The key under which windows of one owner share a picture; nothing when the owner isn't known
/// well enough.
std::optional<std::string> iconOwnerKey(std::string_view persistedID, const std::string& bundleID);

/// The application whose icon stands for the item: its owner, or the one that its id names.
std::string preferredIconBundleID(std::string_view persistedID, const std::string& bundleID);

/// The system symbol for what a label or a bundle identifier speaks of; nothing when neither is
/// known.
std::optional<std::string> symbolName(std::string_view label, std::string_view bundleID);

}  // namespace nevo
