#pragma once

namespace nevo {

/// The stable application id: names the domain of the settings and of the items' places.
inline constexpr const char* applicationId = "com.nevoapp.Nevo";
/// For people.
inline constexpr const char* programName = "Nevo";
inline constexpr const char* programVersion = "0.1.0";

}  // namespace nevo
