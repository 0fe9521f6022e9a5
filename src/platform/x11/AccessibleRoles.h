#pragma once

namespace nevo {

/// Has assistive technology see the program's windows as dialogs, and their named rows, columns and
/// pages as groups: to Qt all of them are plain widgets. May be called more than once.
void installAccessibleRoles();

}  // namespace nevo
