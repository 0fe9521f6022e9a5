#pragma once

namespace nevo {

/// A part of the menu bar, as the dividers cut it.
enum class SectionName { visible, hidden, alwaysHidden };

}  // namespace nevo
