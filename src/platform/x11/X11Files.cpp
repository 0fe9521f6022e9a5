#include "platform/x11/X11Files.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeDatabase>
#include <algorithm>

#include "platform/x11/ControlParts.h"

namespace nevo {

namespace {
/// Qt reads in sizes with a sign.
constexpr std::size_t mostBytes = 1 << 30;

std::string sentence(const QString& what, const QString& why) {
    return QStringLiteral("%1: %2.").arg(what, why).toStdString();
}

/// Shows the files of all these types at once; empty when none of them is known.
QString filterFor(const std::vector<std::string>& contentTypes) {
    QStringList names, patterns;
    for (const std::string& name : contentTypes) {
        QMimeType type = QMimeDatabase().mimeTypeForName(plainText(name));
        if (!type.isValid() || names.contains(type.comment())) continue;
        names << type.comment();
        patterns << type.globPatterns();
    }
    if (patterns.isEmpty()) return {};
    return QStringLiteral("%1 (%2)").arg(names.join(", "), patterns.join(' '));
}
}  // namespace

bool X11Files::exists(const std::string& path) const {
    QFileInfo info(plainText(path));
    // A link counts whatever it leads to.
    return info.exists() || info.isSymLink();
}

std::optional<Bytes> X11Files::read(const std::string& path, std::size_t most) const {
    QFile file(plainText(path));
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) return std::nullopt;
    most = std::min(most, mostBytes);
    // One more than allowed, whatever the file says of its size: it may grow meanwhile.
    QByteArray content = file.read(static_cast<qint64>(most) + 1);
    bool isWhole = file.error() == QFileDevice::NoError;
    if (!isWhole || content.size() > static_cast<qsizetype>(most)) return std::nullopt;
    return Bytes(content.begin(), content.end());
}

std::string X11Files::contentType(const std::string& path) const {
    QFileInfo info(plainText(path));
    if (!info.isFile() || !info.isReadable()) return {};
    QMimeType type = QMimeDatabase().mimeTypeForFile(info, QMimeDatabase::MatchContent);
    return type.isDefault() ? std::string() : type.name().toStdString();
}

std::optional<std::string> X11Files::moveToTrash(const std::string& path) {
    QFile file(plainText(path));
    if (file.moveToTrash()) return std::nullopt;
    return sentence(QObject::tr("%1 can't be moved to the trash").arg(file.fileName()),
                    file.errorString());
}

std::optional<std::string> X11Files::move(const std::string& from, const std::string& to) {
    QFile file(plainText(from));
    QString name = file.fileName();
    if (file.rename(plainText(to))) return std::nullopt;
    return sentence(QObject::tr("%1 can't be moved to %2").arg(name, plainText(to)),
                    file.errorString());
}

void X11Files::choose(const std::vector<std::string>& contentTypes,
                      std::function<void(std::optional<std::string>)> done) {
    auto* dialog = new QFileDialog(QApplication::activeWindow());
    dialog->setObjectName("choose");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    QString filter = filterFor(contentTypes);
    if (!filter.isEmpty()) dialog->setNameFilter(filter);
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog, done](int result) {
        QStringList files = dialog->selectedFiles();
        bool isChosen = result == QDialog::Accepted && !files.isEmpty();
        if (done) done(isChosen ? std::optional(files.first().toStdString()) : std::nullopt);
    });
    dialog->open();
}

}  // namespace nevo
