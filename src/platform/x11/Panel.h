#pragma once

#include <QString>
#include <QWidget>

namespace nevo {

/// The common look of what hangs from the bar: a plain surface in the desktop's colours with a thin
/// border, rounded where a compositor makes that possible (without one the corners of a translucent
/// window are black). `selector` is the style sheet's name for the widget. Call before it is shown.
void stylePanel(QWidget& panel, const QString& selector, bool isRounded);

}  // namespace nevo
