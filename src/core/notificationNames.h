#pragma once

namespace nevo {

// Posted on the default centre by this program.
inline constexpr const char* nevoIconChanged = "nevoIconChanged";
inline constexpr const char* nevoSpacingChanged = "nevoSpacingChanged";
/// "persistedID": string, "rule": raw value of the rule.
inline constexpr const char* nevoIconRulesChanged = "nevoIconRulesChanged";
inline constexpr const char* nevoDisplayModeChanged = "nevoDisplayModeChanged";
/// "appBundleID": string.
inline constexpr const char* nevoAppRulesChanged = "nevoAppRulesChanged";
inline constexpr const char* nevoShelfAppearanceChanged = "nevoShelfAppearanceChanged";

}  // namespace nevo
