#pragma once

#include <optional>
#include <string>

#include "statusnotifier/BusHandles.h"
#include "statusnotifier/Pixmap.h"

namespace nevo::statusnotifier {

enum class Status { passive, active, needsAttention };

/// A picture by its name in the icon theme (or an absolute path), and as pixels; either may be
/// missing.
struct ItemIcon {
    std::string name;
    Picture picture;
    bool operator==(const ItemIcon&) const = default;
    bool isEmpty() const { return name.empty() && picture.isEmpty(); }
};

/// What an item says of itself (`org.kde.StatusNotifierItem`). Texts are plain: without control
/// characters, and cut where they would be unreasonably long.
struct ItemProperties {
    std::string id;
    std::string title;
    std::string toolTip;
    Status status = Status::active;
    /// A folder to look for named pictures in, before the theme's.
    std::string iconThemePath;
    ItemIcon icon;
    ItemIcon attentionIcon;
    ItemIcon overlayIcon;
    /// An object with `com.canonical.dbusmenu`; empty without one.
    std::string menu;
    /// A click is for the menu.
    bool itemIsMenu = false;
    bool operator==(const ItemProperties&) const = default;
};

/// Takes the value that `message` stands at, a variant, as that of the property `name`; one of
/// another type than the protocol has, or of an unknown name, is passed over. Pictures are brought
/// to `side` pixels, those of overlays to `overlaySide` of it. False when the message can't be
/// read.
bool readProperty(sd_bus_message* message, const std::string& name, int side,
                  ItemProperties& properties);

/// Takes the answer to `GetAll`. False when it can't be read; what was read before stays.
bool readAllProperties(sd_bus_message* message, int side, ItemProperties& properties);

/// `text` as it may be shown: without control characters and marks that turn the direction of
/// writing, at most `most` bytes, cut between characters.
std::string plainText(std::string_view text, std::size_t most);

}  // namespace nevo::statusnotifier
