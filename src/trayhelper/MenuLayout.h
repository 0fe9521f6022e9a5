#pragma once

#include <QByteArray>
#include <QDBusMessage>
#include <QString>
#include <optional>
#include <vector>

namespace nevo::trayhelper {

/// A row of another program's menu, made harmless.
struct MenuRow {
    enum class Mark { none, check, radio };

    /// By which its program knows it.
    int id = 0;
    bool isSeparator = false;
    bool isEnabled = true;
    bool hasSubmenu = false;
    /// As QAction has it: an ampersand before the letter that is its key, and behind a tab the
    /// shortcut, which is only shown.
    QString text;
    Mark mark = Mark::none;
    bool isMarked = false;
    /// In the theme.
    QString iconName;
    /// A PNG, of any width and height; empty without one.
    QByteArray iconData;
    bool operator==(const MenuRow&) const = default;
};

/// The id of the row that stands for those left out.
inline constexpr int remainderId = -1;

using MenuRows = std::vector<MenuRow>;

/// The visible rows in an answer to `GetLayout`, those of one level; of very many only the first,
/// and a row that says how many more there are. Nothing when it is no such answer.
std::optional<MenuRows> readLayout(const QDBusMessage& answer);

}  // namespace nevo::trayhelper
