#pragma once

#include <string>
#include <vector>

namespace nevo {

/// The text that a person sees for a key such as "menu_bar.context_menu.quit", in the language in
/// force. A text that the language lacks is in English; the key itself when there is none at all,
/// which is how a text that is its own key in English works.
std::string text(const std::string& key);

/// Puts the first of `preferred` that there are texts in into force, for the whole process and the
/// texts asked for from now on; English when there is none, and before the first call. The
/// languages are tags, best first, such as "en-GB" or "zh-Hans-CN".
void setTextLanguages(const std::vector<std::string>& preferred);

}  // namespace nevo
