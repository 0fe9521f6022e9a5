#include "trayhelper/IconLookup.h"

#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QPixmap>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <limits>

#include "trayhelper/Picture.h"

namespace nevo::trayhelper {

namespace {

constexpr const char* symbolicEnding = "-symbolic";
constexpr const char* folderOfLooseIcons = "/usr/share/pixmaps";
/// The theme that every other one falls back on, and the one with the most icons.
constexpr const char* commonTheme = "hicolor";
constexpr const char* richTheme = "Adwaita";

QString chosenTheme() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QSettings settings(folder + "/gtk-3.0/settings.ini", QSettings::IniFormat);
    QString name = settings.value("Settings/gtk-icon-theme-name").toString();
    return name.isEmpty() ? commonTheme : name;
}

/// The file `base`, which may lack its ending; empty when there is none.
QString existing(const QString& base) {
    for (const char* ending : {"", ".svg", ".png", ".xpm"}) {
        if (QFileInfo(base + ending).isFile()) return base + ending;
    }
    return {};
}

/// How well an icon of the folder `name` ("22x22", "scalable") can be shown at `side` pixels, less
/// is better; nothing for a folder without icons.
std::optional<int> unfitness(const QString& name, int side) {
    static const QRegularExpression pattern("^(?:(\\d{1,4})x\\d{1,4}|scalable|symbolic)$");
    auto match = pattern.match(name);
    if (!match.hasMatch()) return std::nullopt;
    if (match.captured(1).isEmpty()) return 0;
    int size = match.captured(1).toInt();
    constexpr int enlarging = 10000;
    return size >= side ? size - side : enlarging - size;
}

/// The best file of that name in `theme`, a folder with a folder for each size.
QString bestIn(const QString& theme, const QString& name, int side) {
    QString best;
    int bestUnfitness = std::numeric_limits<int>::max();
    for (const QString& size : QDir(theme).entryList(QDir::Dirs)) {
        auto unfit = unfitness(size, side);
        if (!unfit || *unfit >= bestUnfitness) continue;
        QDir folder(theme + '/' + size);
        // The dot: some have no folders for the contexts of icons.
        for (const QString& context : folder.entryList(QDir::Dirs | QDir::NoDotDot)) {
            QString file = existing(folder.filePath(context + '/' + name));
            if (file.isEmpty()) continue;
            best = file;
            bestUnfitness = *unfit;
            break;
        }
    }
    return best;
}

FoundIcon fromFile(const QString& file, int side) {
    if (file.isEmpty()) return {};
    // Also where a link of another name leads to it.
    QString stem = QFileInfo(QFileInfo(file).canonicalFilePath()).completeBaseName();
    bool isSymbolic = stem.endsWith(symbolicEnding) ||
                      QFileInfo(file).completeBaseName().endsWith(symbolicEnding);
    return {readPictureFile(file, side), isSymbolic};
}

}  // namespace

void useDesktopIconTheme() {
    QStringList folders{QDir::homePath() + "/.icons"};
    for (const QString& data :
         QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        folders << data + "/icons";
    }
    QIcon::setThemeSearchPaths(folders);
    QIcon::setThemeName(chosenTheme());
    QIcon::setFallbackThemeName(richTheme);
}

FoundIcon themeIcon(const QString& name, int side) {
    if (name.isEmpty() || name.contains('/')) return {};
    // Qt would take "network" for "network-offline". Before that comes the other form of an icon:
    // some are to be had in that alone.
    QString other = name + symbolicEnding;
    bool takesOther = !QIcon::hasThemeIcon(name) && QIcon::hasThemeIcon(other);
    QIcon icon = QIcon::fromTheme(takesOther ? other : name);
    QImage picture = icon.pixmap(QSize(side, side), 1.0).toImage();
    picture.convertTo(QImage::Format_ARGB32_Premultiplied);
    return {scaledToFit(picture, side), icon.name().endsWith(symbolicEnding)};
}

FoundIcon lookUpIcon(const QString& name, const QString& folder, int side) {
    if (name.startsWith('/')) return fromFile(existing(name), side);
    if (name.isEmpty() || name.contains('/')) return {};
    FoundIcon found;
    if (folder.startsWith('/')) {
        for (const QString& file :
             {existing(folder + '/' + name), bestIn(folder + '/' + commonTheme, name, side),
              bestIn(folder, name, side)}) {
            found = fromFile(file, side);
            if (!found.picture.isNull()) return found;
        }
    }
    found = themeIcon(name, side);
    if (!found.picture.isNull()) return found;
    return fromFile(existing(QString(folderOfLooseIcons) + '/' + name), side);
}

}  // namespace nevo::trayhelper
