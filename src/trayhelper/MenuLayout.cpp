#include "trayhelper/MenuLayout.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QKeySequence>
#include <QLocale>
#include <QMap>
#include <QVariantMap>

namespace nevo::trayhelper {

namespace {

constexpr std::size_t mostRows = 300;
constexpr qsizetype longestLabel = 200;
constexpr qsizetype mostIconBytes = 256 * 1024;
constexpr qsizetype mostKeys = 4;
constexpr const char* answerSignature = "u(ia{sv}av)";
constexpr const char* rowSignature = "(ia{sv}av)";

/// Marks that turn the direction of writing, also of what stands beside them.
bool turnsDirection(QChar letter) {
    char16_t code = letter.unicode();
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

QString plainText(const QString& text) {
    QString result;
    for (QChar letter : text.left(longestLabel)) {
        if (turnsDirection(letter)) continue;
        result += letter.category() == QChar::Other_Control ? QChar(' ') : letter;
    }
    if (!result.isEmpty() && result.back().isHighSurrogate()) result.chop(1);
    return result.trimmed();
}

/// The protocol marks a key by an underscore before it, and doubles one that is meant.
QString withMnemonic(const QString& label) {
    QString result;
    for (qsizetype i = 0; i < label.size(); ++i) {
        QChar letter = label[i];
        if (letter == '_') {
            bool isMeant = i + 1 < label.size() && label[i + 1] == '_';
            result += isMeant ? '_' : '&';
            if (isMeant) ++i;
        } else {
            result += letter;
            if (letter == '&') result += '&';
        }
    }
    // Nothing comes after it.
    if (result.endsWith('&') && !result.endsWith("&&")) result.chop(1);
    return result;
}

/// "Ctrl+S", in the words of this desktop; of several the first.
QString shortcutText(const QVariant& value) {
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != "aas") return {};
    auto keys = qdbus_cast<QList<QStringList>>(argument);
    if (keys.isEmpty() || keys.front().size() > mostKeys) return {};
    QStringList words = keys.front();
    words.replaceInStrings("Control", "Ctrl").replaceInStrings("Super", "Meta");
    return plainText(QKeySequence(words.join('+')).toString(QKeySequence::NativeText));
}

MenuRow rowOf(int id, const QVariantMap& properties) {
    MenuRow row;
    row.id = id;
    row.isSeparator = properties["type"].toString() == "separator";
    row.isEnabled = properties.value("enabled", true).toBool();
    row.hasSubmenu = properties["children-display"].toString() == "submenu";
    row.text = withMnemonic(plainText(properties["label"].toString()));
    QString keys = shortcutText(properties["shortcut"]);
    if (!keys.isEmpty()) row.text += '\t' + keys;
    QString toggle = properties["toggle-type"].toString();
    if (toggle == "checkmark") row.mark = MenuRow::Mark::check;
    if (toggle == "radio") row.mark = MenuRow::Mark::radio;
    row.isMarked = properties.value("toggle-state", -1).toInt() == 1;
    row.iconName = properties["icon-name"].toString();
    QByteArray icon = properties["icon-data"].toByteArray();
    if (icon.startsWith("\x89PNG") && icon.size() <= mostIconBytes) row.iconData = icon;
    return row;
}

/// Nothing for a row that isn't to be seen.
std::optional<MenuRow> readRow(const QVariant& value) {
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != rowSignature) return std::nullopt;
    int id = 0;
    QVariantMap properties;
    argument.beginStructure();
    argument >> id >> properties;
    argument.endStructure();
    if (!properties.value("visible", true).toBool()) return std::nullopt;
    return rowOf(id, properties);
}

MenuRow remainder(int count) {
    MenuRow row;
    row.id = remainderId;
    row.isEnabled = false;
    row.text = QStringLiteral("\u2026 (+%1)").arg(QLocale().toString(count));
    return row;
}

}  // namespace

std::optional<MenuRows> readLayout(const QDBusMessage& answer) {
    if (answer.signature() != answerSignature) return std::nullopt;
    // Qt would write into one that can be changed.
    const auto layout = answer.arguments().at(1).value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    layout.beginStructure();
    layout >> id >> properties;
    layout.beginArray();
    MenuRows rows;
    int left = 0;
    while (!layout.atEnd()) {
        QDBusVariant child;
        layout >> child;
        if (rows.size() == mostRows) {
            ++left;
        } else if (auto row = readRow(child.variant())) {
            rows.push_back(*row);
        }
    }
    layout.endArray();
    layout.endStructure();
    if (left > 0) rows.push_back(remainder(left));
    return rows;
}

}  // namespace nevo::trayhelper
