#pragma once

#include <QImage>
#include <QString>

namespace nevo::trayhelper {

struct FoundIcon {
    /// Premultiplied, null when there is none; no side is longer than was asked for.
    QImage picture;
    /// Only its shape counts, and is to be shown in the colour of the text around it.
    bool isSymbolic = false;
};

/// Lets `QIcon` search where this desktop's icons are, in the theme that its user has chosen. For a
/// process whose Qt doesn't know the desktop.
void useDesktopIconTheme();

/// The icon of the theme, or of one that stands in for it, by its name alone.
FoundIcon themeIcon(const QString& name, int side);

/// The icon `name`, or the file with that absolute path. `folder` (absolute, or not counted) is
/// searched first: its files, and those in folders such as "hicolor/22x22/status" in it.
FoundIcon lookUpIcon(const QString& name, const QString& folder, int side);

}  // namespace nevo::trayhelper
