#include "platform/x11/X11LoginItem.h"

#include <fmt/format.h>

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <map>

#include "platform/x11/ProgramName.h"

namespace nevo {

namespace {

constexpr qint64 mostBytes = 1 << 16;

/// An argument of an entry's Exec: quoted, and then escaped as every string in such a file. A
/// percent sign would begin a field code.
std::string execArgument(const std::string& text) {
    std::string result = "\"";
    for (char c : text) {
        switch (c) {
            case '\\':
                result += "\\\\\\\\";
                break;
            case '"':
            case '`':
            case '$':
                result += std::string("\\\\") + c;
                break;
            case '%':
                result += "%%";
                break;
            case '\n':
                result += "\\n";
                break;
            default:
                result += c;
        }
    }
    return result + "\"";
}

/// A plain value of an entry.
std::string stringValue(const std::string& text) {
    std::string result;
    for (char c : text) {
        if (c == '\\') result += '\\';
        result += c == '\n' ? std::string("\\n") : std::string(1, c);
    }
    return result;
}

/// The keys of the entry's own group; those of a file that can't be read are none.
std::map<QString, QString> keysOf(const QString& path) {
    QFile file(path);
    std::map<QString, QString> keys;
    if (!file.open(QIODevice::ReadOnly)) return keys;
    bool isInside = false;
    for (const QString& line : QString::fromUtf8(file.read(mostBytes)).split('\n')) {
        QString text = line.trimmed();
        if (text.startsWith('[')) isInside = text == "[Desktop Entry]";
        auto equals = text.indexOf('=');
        if (!isInside || text.startsWith('#') || equals < 0) continue;
        keys.emplace(text.left(equals).trimmed(), text.mid(equals + 1).trimmed());
    }
    return keys;
}

std::string failure(const char* what, const QString& path, const QString& why) {
    return fmt::format("{} {} ({}: {}).", programName, what, path.toStdString(), why.toStdString());
}

}  // namespace

X11LoginItem::X11LoginItem(std::string startedProgram) : program(std::move(startedProgram)) {}

std::filesystem::path X11LoginItem::entryFile() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(folder.toStdString()) / "autostart" /
           (std::string(applicationId) + ".desktop");
}

bool X11LoginItem::isRegistered() const {
    auto keys = keysOf(QString::fromStdString(entryFile().string()));
    return !keys.empty() && keys["Hidden"] != "true" &&
           keys["X-GNOME-Autostart-enabled"] != "false";
}

std::optional<std::string> X11LoginItem::setRegistered(bool registered) {
    QString path = QString::fromStdString(entryFile().string());
    if (!registered) {
        QFile file(path);
        if (!file.exists() || file.remove()) return std::nullopt;
        return failure("can't be taken from the programs that start with your session", path,
                       file.errorString());
    }
    constexpr const char* what = "can't be added to the programs that start with your session";
    QString folder = QString::fromStdString(entryFile().parent_path().string());
    if (!QDir().mkpath(folder)) {
        return failure(what, folder, QObject::tr("the folder can't be made"));
    }
    QSaveFile file(path);
    // The entry outlives the program when that is uninstalled; TryExec lets desktops pass it over.
    std::string entry = fmt::format(
        "[Desktop Entry]\nType=Application\nName={}\nIcon={}\nExec={}\nTryExec={}\nTerminal=false\n"
        "X-GNOME-Autostart-enabled=true\n",
        programName, applicationId, execArgument(program), stringValue(program));
    bool isWritten = file.open(QIODevice::WriteOnly) &&
                     file.write(entry.data(), static_cast<qint64>(entry.size())) >= 0 &&
                     file.commit();
    if (isWritten) return std::nullopt;
    return failure(what, path, file.errorString());
}

}  // namespace nevo
