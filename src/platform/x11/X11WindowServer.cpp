#include "platform/x11/X11WindowServer.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "platform/menubar/BarProtocol.h"
#include "platform/x11/WindowPictures.h"

namespace nevo {

namespace {
namespace bar = barprotocol;

constexpr double mostComposedPixels = 16.0 * 1024 * 1024;
/// The bar puts a floating item back into its slot when it is moved as near as this.
constexpr double rejoinDistance = 50;

std::uint32_t coordinate(double value) {
    return static_cast<std::uint32_t>(
        static_cast<std::int32_t>(std::clamp(std::round(value), -1e9, 1e9)));
}
}  // namespace

X11WindowServer::X11WindowServer(XServer& x, BarClient& client, ClientWindows& clientWindows,
                                 Screens& theScreens, WindowNumbers& windowNumbers,
                                 PictureWatch& pictureWatch)
    : server(x),
      barClient(client),
      clients(clientWindows),
      screens(theScreens),
      numbers(windowNumbers),
      watches(pictureWatch) {}

bool X11WindowServer::isBar(WindowNumber window) const {
    xcb_window_t own = barClient.barWindow();
    return own != 0 && numbers.window(window) == own;
}

std::optional<int> X11WindowServer::windowCount() const {
    std::size_t own = barClient.barWindow() == 0 ? 0 : 1;
    return static_cast<int>(barClient.items().size() + own + clients.windows().size());
}

std::optional<std::vector<WindowNumber>> X11WindowServer::menuBarWindowList(int capacity) const {
    const auto& items = barClient.items();
    if (barClient.control() == 0) return std::nullopt;
    auto count = std::min(items.size(), static_cast<std::size_t>(std::max(0, capacity)));
    std::vector<WindowNumber> result(count);
    std::transform(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(count),
                   result.begin(), [](const BarItemInfo* item) { return item->number; });
    return result;
}

std::optional<int> X11WindowServer::windowLevel(WindowNumber window) const {
    if (barClient.itemOfNumber(window) != nullptr) return statusItemWindowLevel;
    if (isBar(window)) return menuBarWindowLevel;
    if (clients.find(window) != nullptr) return 0;
    return std::nullopt;
}

std::optional<Rect> X11WindowServer::windowFrame(WindowNumber window) const {
    if (const auto* item = barClient.itemOfNumber(window)) {
        return server.coordinates.fromRoot(item->place());
    }
    if (isBar(window)) return server.coordinates.fromRoot(barClient.barFrame());
    if (const auto* client = clients.find(window)) {
        return server.coordinates.fromRoot(client->frame);
    }
    return std::nullopt;
}

std::optional<Rect> X11WindowServer::slotFrame(WindowNumber window) const {
    const auto* item = barClient.itemOfNumber(window);
    if (item == nullptr) return std::nullopt;
    return server.coordinates.fromRoot(item->slot);
}

double X11WindowServer::roomShift(WindowNumber window) const {
    const auto* item = barClient.itemOfNumber(window);
    return item == nullptr ? 0 : item->roomShift / pixelsPerPoint();
}

std::optional<std::vector<WindowDescription>> X11WindowServer::windowList(
    WindowListOption option) const {
    std::vector<WindowDescription> result;
    for (const BarItemInfo* item : barClient.items()) result.push_back(describe(*item));
    if (barClient.barWindow() != 0) result.push_back(describeBar());
    const auto& ordinary = clients.windows();
    std::transform(ordinary.rbegin(), ordinary.rend(), std::back_inserter(result),
                   [&](const ClientWindowInfo& window) { return describe(window); });
    if (option == WindowListOption::all) return result;

    auto monitors = screens.screens();
    std::erase_if(result, [&](const WindowDescription& window) {
        return std::none_of(monitors.begin(), monitors.end(), [&](const Screen& screen) {
            return server.coordinates.flipped(screen.frame).intersects(*window.bounds);
        });
    });
    return result;
}

std::optional<WindowDescription> X11WindowServer::windowDescription(WindowNumber window) const {
    if (const auto* item = barClient.itemOfNumber(window)) return describe(*item);
    if (isBar(window)) return describeBar();
    if (const auto* client = clients.find(window)) return describe(*client);
    return std::nullopt;
}

WindowDescription X11WindowServer::describe(const BarItemInfo& item) const {
    WindowDescription result{
        item.number, statusItemWindowLevel, {}, {}, {}, server.coordinates.fromRoot(item.place())};
    if (item.pid > 0) result.ownerPid = item.pid;
    if (!item.ownerName.empty()) result.ownerName = item.ownerName;
    if (!item.name.empty()) result.name = item.name;
    return result;
}

WindowDescription X11WindowServer::describe(const ClientWindowInfo& window) const {
    WindowDescription result{
        window.number, 0, {}, {}, {}, server.coordinates.fromRoot(window.frame)};
    if (window.pid > 0) result.ownerPid = window.pid;
    result.ownerName = window.owner.name;
    if (!window.title.empty()) result.name = window.title;
    return result;
}

WindowDescription X11WindowServer::describeBar() const {
    return {numbers.of(barClient.barWindow()),
            menuBarWindowLevel,
            {},
            "nevo-menubar",
            "Menubar",
            server.coordinates.fromRoot(barClient.barFrame())};
}

bool X11WindowServer::setWindowAlpha(WindowNumber window, float alpha) {
    const auto* item = barClient.itemOfNumber(window);
    if (item == nullptr || std::isnan(alpha)) return false;
    auto asked = static_cast<std::uint32_t>(
        std::llround(std::clamp(static_cast<double>(alpha), 0.0, 1.0) * 0xffffffff));
    // The logic asks again and again. What others hold at this opacity isn't held by us: it ends
    // when they do.
    bool isOpaque = asked == 0xffffffff;
    if (item->opacity == asked && (isOpaque || alphaHeld.contains(window))) return true;
    if (isOpaque) {
        alphaHeld.erase(window);
    } else {
        alphaHeld.insert(window);
    }
    barClient.send(bar::setOpacity, item->frame, asked, server.lease(), 0, 0);
    return barClient.waitUntil([&] {
        const auto* now = barClient.itemOfNumber(window);
        return now != nullptr && now->opacity == asked;
    });
}

std::optional<float> X11WindowServer::windowAlpha(WindowNumber window) const {
    if (const auto* item = barClient.itemOfNumber(window)) {
        return static_cast<float>(static_cast<double>(item->opacity) / 0xffffffff);
    }
    if (windowLevel(window)) return 1.0F;
    return std::nullopt;
}

bool X11WindowServer::moveWindow(WindowNumber window, Point origin) {
    const auto* item = barClient.itemOfNumber(window);
    // The bar refuses to float this program's own items: their place is the order of the row.
    if (item == nullptr || item->pid == getpid()) return false;
    Point asked = server.coordinates.toRoot(origin);
    barClient.send(bar::moveItem, item->frame, coordinate(asked.x), coordinate(asked.y),
                   server.lease(), 0);
    Rect bar = barClient.barFrame();
    if (asked.x + item->slot.width < bar.minX() || asked.x > bar.maxX()) {
        return barClient.waitUntil([&] {
            const auto* now = barClient.itemOfNumber(window);
            return now != nullptr && !now->floats;
        });
    }
    bool rejoins = std::abs(item->slot.x - asked.x) <= rejoinDistance;
    return barClient.waitUntil([&] {
        const auto* now = barClient.itemOfNumber(window);
        return now != nullptr && now->floats != rejoins;
    });
}

std::optional<Image> X11WindowServer::windowImage(WindowNumber window) const {
    std::optional<Image> image;
    if (const auto* item = barClient.itemOfNumber(window)) {
        watches.willRead(item->frame);
        image = pictureOfFrame(server, item->frame);
    } else if (windowLevel(window)) {
        image = pictureOfWindow(server, numbers.window(window).value_or(0));
    }
    if (!image) return std::nullopt;
    image->size = {image->size.width / pixelsPerPoint(), image->size.height / pixelsPerPoint()};
    image->source = "window:" + std::to_string(window);
    return image;
}

Registration X11WindowServer::watchImage(WindowNumber window, std::function<void()> changed) {
    const auto* item = barClient.itemOfNumber(window);
    return item == nullptr ? Registration() : watches.watch(item->frame, std::move(changed));
}

std::optional<Image> X11WindowServer::compositeImage(
    const std::vector<WindowNumber>& windows) const {
    Rect whole;
    std::vector<std::pair<Rect, Image>> parts;
    for (WindowNumber window : windows) {
        auto frame = windowFrame(window);
        auto image = frame ? windowImage(window) : std::nullopt;
        if (!image) continue;
        Rect pixels = server.coordinates.toRoot(*frame);
        whole = whole.unionWith(pixels);
        parts.emplace_back(pixels, std::move(*image));
    }
    if (whole.isEmpty() || whole.width * whole.height > mostComposedPixels) return std::nullopt;
    auto bitmap = std::make_shared<Bitmap>();
    bitmap->width = static_cast<int>(whole.width);
    bitmap->height = static_cast<int>(whole.height);
    bitmap->pixels.resize(static_cast<std::size_t>(bitmap->width) *
                          static_cast<std::size_t>(bitmap->height));
    // The list's first window is the frontmost.
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        drawOver(*bitmap, *part->second.bitmap, static_cast<int>(part->first.x - whole.x),
                 static_cast<int>(part->first.y - whole.y));
    }
    Size size{whole.width / pixelsPerPoint(), whole.height / pixelsPerPoint()};
    return Image{std::move(bitmap), size, false, "windows"};
}

}  // namespace nevo
