#include "statusnotifier/ItemProperties.h"

#include <array>
#include <functional>
#include <string_view>

namespace nevo::statusnotifier {

namespace {
constexpr std::size_t longestText = 512;
constexpr std::size_t longestPath = 4096;
/// More sizes of one picture than anybody needs.
constexpr int mostPixmaps = 64;
constexpr const char* pixmapsType = "a(iiay)";

/// Continuation bytes of UTF-8.
bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

/// Marks that embed, override and isolate directions: U+200E, U+200F, U+202A-U+202E, U+2066-U+2069.
bool isDirectionMark(std::string_view character) {
    if (character.size() != 3 || character[0] != '\xE2') return false;
    auto second = static_cast<unsigned char>(character[1]);
    auto third = static_cast<unsigned char>(character[2]);
    if (second == 0x81) return third >= 0xA6 && third <= 0xA9;
    return second == 0x80 && (third == 0x8E || third == 0x8F || (third >= 0xAA && third <= 0xAE));
}

bool isControl(std::string_view character) {
    auto first = static_cast<unsigned char>(character[0]);
    // Whatever follows: text that isn't valid may have anything after it.
    if (first < 0x20 || first == 0x7F) return true;
    return character.size() == 2 && first == 0xC2 &&
           static_cast<unsigned char>(character[1]) < 0xA0;
}

/// A text inside a variant, whose contents are of type `s` or `o`.
bool readText(sd_bus_message* message, const char* contents, std::size_t most, std::string& text) {
    const char* value = nullptr;
    if (sd_bus_message_read_basic(message, contents[0], &value) < 0) return false;
    text = plainText(value, most);
    return true;
}

/// The best of several sizes, at `side` pixels.
bool readPixmaps(sd_bus_message* message, int side, Picture& picture) {
    RawPixmap best;
    if (sd_bus_message_enter_container(message, 'a', "(iiay)") < 0) return false;
    for (int i = 0; sd_bus_message_enter_container(message, 'r', "iiay") > 0; ++i) {
        RawPixmap pixmap;
        const void* bytes = nullptr;
        std::size_t size = 0;
        if (sd_bus_message_read(message, "ii", &pixmap.width, &pixmap.height) < 0) return false;
        if (sd_bus_message_read_array(message, 'y', &bytes, &size) < 0) return false;
        if (sd_bus_message_exit_container(message) < 0) return false;
        pixmap.bytes = {static_cast<const std::uint8_t*>(bytes), size};
        bool counts = i < mostPixmaps && isSound(pixmap);
        if (counts && (best.width == 0 || isBetter(pixmap, best, side))) best = pixmap;
    }
    picture = best.width == 0 ? Picture() : scaledToFit(best, side);
    return sd_bus_message_exit_container(message) >= 0;
}

/// `(sa(iiay)ss)`: a picture's name, the picture, a title, a text.
bool readToolTip(sd_bus_message* message, std::string& toolTip) {
    const char* title = nullptr;
    const char* text = nullptr;
    if (sd_bus_message_enter_container(message, 'r', "sa(iiay)ss") < 0) return false;
    if (sd_bus_message_skip(message, "sa(iiay)") < 0) return false;
    if (sd_bus_message_read(message, "ss", &title, &text) < 0) return false;
    toolTip = plainText(title, longestText);
    std::string more = plainText(text, longestText);
    if (!more.empty()) toolTip += (toolTip.empty() ? "" : "\n") + more;
    return sd_bus_message_exit_container(message) >= 0;
}

Status statusOf(const std::string& word) {
    if (word == "Passive") return Status::passive;
    return word == "NeedsAttention" ? Status::needsAttention : Status::active;
}

/// A property: its type, and what becomes of its value.
struct Reader {
    const char* name;
    const char* type;
    bool (*read)(sd_bus_message*, int side, ItemProperties&);
};

template <std::string ItemProperties::*field, std::size_t most = longestText>
bool text(sd_bus_message* message, int, ItemProperties& properties) {
    return readText(message, "s", most, properties.*field);
}
template <ItemIcon ItemProperties::*field>
bool iconName(sd_bus_message* message, int, ItemProperties& properties) {
    return readText(message, "s", longestPath, (properties.*field).name);
}
template <ItemIcon ItemProperties::*field>
bool iconPicture(sd_bus_message* message, int side, ItemProperties& properties) {
    return readPixmaps(message, side, (properties.*field).picture);
}
bool overlayPicture(sd_bus_message* message, int side, ItemProperties& properties) {
    return readPixmaps(message, overlaySide(side), properties.overlayIcon.picture);
}

bool status(sd_bus_message* message, int, ItemProperties& properties) {
    std::string word;
    if (!readText(message, "s", longestText, word)) return false;
    properties.status = statusOf(word);
    return true;
}

bool menu(sd_bus_message* message, int, ItemProperties& properties) {
    if (!readText(message, "o", longestPath, properties.menu)) return false;
    // How toolkits say that there is none.
    if (properties.menu == "/" || properties.menu == "/NO_DBUSMENU") properties.menu.clear();
    return true;
}

bool itemIsMenu(sd_bus_message* message, int, ItemProperties& properties) {
    int value = 0;
    if (sd_bus_message_read_basic(message, 'b', &value) < 0) return false;
    properties.itemIsMenu = value != 0;
    return true;
}

bool toolTip(sd_bus_message* message, int, ItemProperties& properties) {
    return readToolTip(message, properties.toolTip);
}

constexpr std::array<Reader, 14> readers{
    {{"Id", "s", text<&ItemProperties::id>},
     {"Title", "s", text<&ItemProperties::title>},
     {"Status", "s", status},
     {"IconThemePath", "s", text<&ItemProperties::iconThemePath, longestPath>},
     {"IconName", "s", iconName<&ItemProperties::icon>},
     {"IconPixmap", pixmapsType, iconPicture<&ItemProperties::icon>},
     {"AttentionIconName", "s", iconName<&ItemProperties::attentionIcon>},
     {"AttentionIconPixmap", pixmapsType, iconPicture<&ItemProperties::attentionIcon>},
     {"OverlayIconName", "s", iconName<&ItemProperties::overlayIcon>},
     {"OverlayIconPixmap", pixmapsType, overlayPicture},
     {"ToolTip", "(sa(iiay)ss)", toolTip},
     {"Menu", "o", menu},
     {"ItemIsMenu", "b", itemIsMenu},
     // Not in the protocol's text, but what some toolkits send.
     {"Menu", "s", text<&ItemProperties::menu, longestPath>}}};
}  // namespace

std::string plainText(std::string_view given, std::size_t most) {
    std::string result;
    for (std::size_t i = 0; i < given.size();) {
        std::size_t end = i + 1;
        while (end < given.size() && continuesCharacter(given[end])) ++end;
        std::string_view character = given.substr(i, end - i);
        i = end;
        if (isControl(character) || isDirectionMark(character)) continue;
        if (result.size() + character.size() > most) break;
        result += character;
    }
    return result;
}

bool readProperty(sd_bus_message* message, const std::string& name, int side,
                  ItemProperties& properties) {
    char type = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message, &type, &contents) <= 0 || type != 'v') return false;
    for (const Reader& reader : readers) {
        if (name != reader.name || std::string_view(contents) != reader.type) continue;
        if (sd_bus_message_enter_container(message, 'v', reader.type) < 0) return false;
        return reader.read(message, side, properties) &&
               sd_bus_message_exit_container(message) >= 0;
    }
    return sd_bus_message_skip(message, "v") >= 0;
}

bool readAllProperties(sd_bus_message* message, int side, ItemProperties& properties) {
    if (sd_bus_message_enter_container(message, 'a', "{sv}") <= 0) return false;
    while (true) {
        int entered = sd_bus_message_enter_container(message, 'e', "sv");
        if (entered < 0) return false;
        if (entered == 0) return sd_bus_message_exit_container(message) >= 0;
        const char* name = nullptr;
        if (sd_bus_message_read_basic(message, 's', &name) < 0) return false;
        if (!readProperty(message, name, side, properties)) return false;
        if (sd_bus_message_exit_container(message) < 0) return false;
    }
}

}  // namespace nevo::statusnotifier
