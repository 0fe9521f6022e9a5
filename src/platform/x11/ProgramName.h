#pragma once

namespace nevo {

/// The stable application id: names the domain of the settings and of the items' places, the
/// desktop entry, and the icon.
inline constexpr const char* applicationId = "com.nevoapp.Nevo";
/// For people.
inline constexpr const char* programName = "Nevo";
inline constexpr const char* programVersion = NEVO_VERSION;

}  // namespace nevo
