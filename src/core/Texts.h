#pragma once

#include <string>

namespace nevo {

/// The text that a person sees for a key such as "menu_bar.context_menu.quit"; the key itself when
/// there is none.
std::string text(const std::string& key);

}  // namespace nevo
