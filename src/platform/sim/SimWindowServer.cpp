#include "platform/sim/SimWindowServer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nevo {

namespace {

/// Larger pictures can't be had.
constexpr double maxPicturePixels = 64e6;

std::optional<Image> plainImage(double width, double height, const std::string& source) {
    bool drawable = width >= 1 && height >= 1 && width * height <= maxPicturePixels;
    if (!drawable) return std::nullopt;
    auto bitmap = std::make_shared<Bitmap>();
    bitmap->width = static_cast<int>(width);
    bitmap->height = static_cast<int>(height);
    bitmap->pixels.assign(
        static_cast<std::size_t>(bitmap->width) * static_cast<std::size_t>(bitmap->height), 0);
    Size size{static_cast<double>(bitmap->width), static_cast<double>(bitmap->height)};
    return Image{std::move(bitmap), size, false, source};
}

/// An opaque colour that tells windows apart.
std::uint32_t colorOf(WindowNumber window) {
    return 0xFF000000U | ((window * 2654435761U) & 0x00FFFFFFU);
}

void fill(Bitmap& bitmap, const Rect& area, std::uint32_t color) {
    int left = std::max(0, static_cast<int>(area.minX()));
    int right = std::min(bitmap.width, static_cast<int>(area.maxX()));
    int bottom = std::min(bitmap.height, static_cast<int>(area.maxY()));
    for (int y = std::max(0, static_cast<int>(area.minY())); y < bottom; ++y) {
        auto rowStart = bitmap.pixels.begin() + static_cast<std::ptrdiff_t>(y) * bitmap.width;
        if (left < right) std::fill(rowStart + left, rowStart + right, color);
    }
}

}  // namespace

std::optional<int> SimWindowServer::windowCount() const {
    if (faults.strikes(SimOperation::windowCount)) return std::nullopt;
    return static_cast<int>(windows.all().size());
}

std::optional<std::vector<WindowNumber>> SimWindowServer::menuBarWindowList(int capacity) const {
    if (faults.strikes(SimOperation::menuBarWindowList)) return std::nullopt;
    std::vector<WindowNumber> result = bar.order();
    for (const auto& [number, window] : windows.all()) {
        if (std::find(result.begin(), result.end(), number) == result.end())
            result.push_back(number);
    }
    std::erase_if(result, [this](WindowNumber number) {
        const SimWindow* window = windows.find(number);
        return window == nullptr || !window->inMenuBarList || !window->mapped;
    });
    if (result.size() > static_cast<std::size_t>(capacity))
        result.resize(static_cast<std::size_t>(capacity));
    return result;
}

std::optional<int> SimWindowServer::windowLevel(WindowNumber window) const {
    const SimWindow* held = windows.find(window);
    if (faults.strikes(SimOperation::windowLevel, window) || held == nullptr) return std::nullopt;
    return held->layer;
}

std::optional<Rect> SimWindowServer::windowFrame(WindowNumber window) const {
    const SimWindow* held = windows.find(window);
    if (faults.strikes(SimOperation::windowFrame, window) || held == nullptr) return std::nullopt;
    return settledFrame(*held);
}

/// As if the bar made no room for a float.
Rect SimWindowServer::settledFrame(const SimWindow& window) const {
    Rect frame = window.frame;
    frame.x -= roomShift(window.number);
    return frame;
}

double SimWindowServer::roomShift(WindowNumber window) const {
    const SimBar::Item* item = bar.find(window);
    bool isInHand = bar.isPointerDragging() && bar.draggedWindow() == window;
    return item == nullptr || item->floating || isInHand ? 0 : item->aside;
}

std::optional<Rect> SimWindowServer::slotFrame(WindowNumber window) const {
    const SimBar::Item* item = bar.find(window);
    if (faults.strikes(SimOperation::windowFrame, window) || item == nullptr) return std::nullopt;
    return item->slot;
}

std::optional<std::vector<WindowDescription>> SimWindowServer::windowList(
    WindowListOption option) const {
    if (faults.strikes(SimOperation::windowList)) return std::nullopt;
    std::vector<WindowDescription> result;
    for (const auto& [number, window] : windows.all()) {
        bool wanted = option == WindowListOption::all || isOnScreen(window);
        if (window.mapped && wanted) result.push_back(describe(window));
    }
    return result;
}

std::optional<WindowDescription> SimWindowServer::windowDescription(WindowNumber window) const {
    const SimWindow* held = windows.find(window);
    bool failed = faults.strikes(SimOperation::windowDescription, window);
    if (failed || held == nullptr) return std::nullopt;
    return describe(*held);
}

WindowDescription SimWindowServer::describe(const SimWindow& window) const {
    WindowDescription result;
    auto told = [&](SimOperation field) { return !faults.strikes(field, window.number); };
    if (told(SimOperation::descriptionNumber)) result.number = window.number;
    if (told(SimOperation::descriptionLayer)) result.layer = window.layer;
    if (told(SimOperation::descriptionOwnerPid)) result.ownerPid = window.pid;
    if (told(SimOperation::descriptionOwnerName)) result.ownerName = window.ownerName;
    if (told(SimOperation::descriptionName)) result.name = window.name;
    if (told(SimOperation::descriptionBounds)) result.bounds = settledFrame(window);
    return result;
}

bool SimWindowServer::setWindowAlpha(WindowNumber window, float alpha) {
    SimWindow* held = windows.find(window);
    bool failed = faults.strikes(SimOperation::setWindowAlpha, window);
    if (failed || held == nullptr) return false;
    if (held->alpha != alpha) {
        const SimBar::Item* item = bar.find(window);
        std::string label = item != nullptr ? item->label : held->name;
        trace.note("window", fmt::format("{} {} alpha {}", window, label, alpha));
    }
    held->alpha = alpha;
    return true;
}

std::optional<float> SimWindowServer::windowAlpha(WindowNumber window) const {
    const SimWindow* held = windows.find(window);
    if (faults.strikes(SimOperation::windowAlpha, window) || held == nullptr) return std::nullopt;
    return held->alpha;
}

bool SimWindowServer::moveWindow(WindowNumber window, Point origin) {
    SimWindow* held = windows.find(window);
    if (held == nullptr || faults.strikes(SimOperation::moveWindow, window)) return false;
    const SimBar::Item* item = bar.find(window);
    bool refused = item != nullptr && item->own && !ownMovesAllowed;
    trace.note("window", fmt::format("{} move to {},{}{}", window, origin.x, origin.y,
                                     refused ? " refused" : ""));
    if (refused) return false;
    if (item != nullptr) return bar.moveDirectly(window, origin);
    held->frame.x = origin.x;
    held->frame.y = origin.y;
    return true;
}

bool SimWindowServer::mayPicture(WindowNumber window) const {
    const SimBar::Item* item = bar.find(window);
    return permissions.screenRecording || (item != nullptr && item->own);
}

double SimWindowServer::scale() const {
    return screens.displays().empty() ? 2 : screens.displays().front().scale;
}

std::optional<Image> SimWindowServer::windowImage(WindowNumber window) const {
    ++reads;
    for (auto& [id, watch] : *watches) watch.isSpent = watch.isSpent && watch.window != window;
    bool failed = faults.strikes(SimOperation::windowImage, window);
    if (failed || !mayPicture(window)) return std::nullopt;
    return picture(window, scale());
}

std::optional<Image> SimWindowServer::picture(WindowNumber window, double pixelsPerPoint) const {
    const SimWindow* held = windows.find(window);
    if (held == nullptr) return std::nullopt;
    auto image = plainImage(std::round(held->frame.width * pixelsPerPoint),
                            std::round(held->frame.height * pixelsPerPoint),
                            fmt::format("window:{}", window));
    if (!image) return std::nullopt;
    auto bitmap = std::make_shared<Bitmap>(*image->bitmap);
    auto drawn = repaints.find(window);
    std::uint32_t painted = drawn == repaints.end() ? 0 : drawn->second * 1000;
    std::fill(bitmap->pixels.begin(), bitmap->pixels.end(), colorOf(window + painted));
    image->bitmap = std::move(bitmap);
    return image;
}

Registration SimWindowServer::watchImage(WindowNumber window, std::function<void()> changed) {
    if (windows.find(window) == nullptr) return {};
    std::size_t id = ++nextWatch;
    watches->emplace(id, Watch{window, std::move(changed)});
    return Registration([weak = std::weak_ptr(watches), id] {
        if (auto all = weak.lock()) all->erase(id);
    });
}

void SimWindowServer::repaint(WindowNumber window) {
    ++repaints[window];
    auto before = *watches;
    for (const auto& [id, watch] : before) {
        auto still = watches->find(id);
        if (watch.window != window || still == watches->end()) continue;
        if (!std::exchange(still->second.isSpent, true)) watch.changed();
    }
}

std::optional<Image> SimWindowServer::compositeImage(
    const std::vector<WindowNumber>& numbers) const {
    if (faults.strikes(SimOperation::compositeImage)) return std::nullopt;
    Rect around;
    for (WindowNumber number : numbers) {
        const SimWindow* held = windows.find(number);
        if (held != nullptr && mayPicture(number)) around = around.unionWith(held->frame);
    }
    auto image = plainImage(std::round(around.width * scale()), std::round(around.height * scale()),
                            "composite");
    if (!image) return std::nullopt;
    auto bitmap = std::make_shared<Bitmap>(*image->bitmap);
    for (WindowNumber number : numbers) {
        const SimWindow* held = windows.find(number);
        if (held == nullptr || !mayPicture(number)) continue;
        Rect part{(held->frame.x - around.x) * scale(), (held->frame.y - around.y) * scale(),
                  held->frame.width * scale(), held->frame.height * scale()};
        fill(*bitmap, part, colorOf(number));
    }
    image->bitmap = std::move(bitmap);
    return image;
}

bool SimWindowServer::isOnScreen(const SimWindow& window) const {
    for (const SimDisplay& display : screens.displays()) {
        if (display.frame.intersects(window.frame)) return true;
    }
    return false;
}

}  // namespace nevo
