#include "desktop/PanelSession.h"

#include <cstring>

#include "platform/xcb/Properties.h"

namespace nevo::desktoptest {

using xcb::Reply;

void PanelSession::SetUp() {
    X11Session::SetUp();
    auto c = server->get();
    std::uint32_t color = ground;
    xcb_change_window_attributes(c, server->root(), XCB_CW_BACK_PIXEL, &color);
    xcb_clear_area(c, 0, server->root(), 0, 0, 0, 0);
    server->flush();
}

Rect PanelSession::frameOf(const Rect& place) const {
    const xcb_screen_t& whole = server->screen();
    Reply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(
        server->get(), xcb_get_geometry(server->get(), whole.root), nullptr));
    return {place.x, static_cast<double>(root->height) - place.maxY(), place.width, place.height};
}

std::unique_ptr<Panel> PanelSession::create(const Rect& place, bool hasShadow, int level) {
    PanelConfiguration configuration;
    configuration.frame = frameOf(place);
    configuration.hasShadow = hasShadow;
    configuration.level = level;
    return platform().panels.create(configuration);
}

PanelView PanelSession::filled(const Rect& place, const Color& color, const std::string& key) {
    PanelView view;
    view.key = key;
    view.frame = {0, 0, place.width, place.height};
    view.background = color;
    view.takesMouse = true;
    return view;
}

Image PanelSession::picture(int width, int height, const std::vector<std::uint32_t>& pixels) {
    auto bitmap = std::make_shared<Bitmap>(Bitmap{width, height, pixels});
    return {bitmap, {static_cast<double>(width), static_cast<double>(height)}, false, {}};
}

std::uint32_t PanelSession::pixel(Point place) const {
    auto found = screenshot().pixels({place.x, place.y, 1, 1});
    return found.empty() ? 0xffffffff : found.front();
}

testing::AssertionResult PanelSession::showsSoon(Point place, std::uint32_t color) {
    if (soon([&] { return pixel(place) == color; })) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << std::hex << pixel(place) << " at " << std::dec << place.x << ", " << place.y;
}

TopWindow PanelSession::topPanel() const {
    TopWindow found;
    for (const TopWindow& each : topWindows()) {
        if (each.name == "Nevo") found = each;
    }
    return found;
}

std::uint32_t PanelSession::shade(int x, int y) const {
    auto c = server->get();
    Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(
        c,
        xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, window(), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 1, 1, 0xffffffff),
        nullptr));
    std::uint32_t value = 0;
    if (image) std::memcpy(&value, xcb_get_image_data(image.get()), sizeof value);
    return value;
}

void PanelSession::letTimePass() {
    constexpr double aMoment = 0.05;
    bool hasPassed = false;
    platform().runLoop.postAfter(aMoment, [&] { hasPassed = true; });
    EXPECT_TRUE(soon([&] { return hasPassed; }));
}

void PanelSession::listen(Panel& panel) {
    panel.onEvent = [this](const PanelEvent& event) { heard.push_back(event); };
}

Names PanelSession::heardTypes() const {
    Names names;
    for (const PanelEvent& event : heard) {
        static const std::map<EventType, std::string> words{{EventType::leftMouseDown, "down"},
                                                            {EventType::leftMouseDragged, "drag"},
                                                            {EventType::leftMouseUp, "up"},
                                                            {EventType::rightMouseDown, "right"},
                                                            {EventType::rightMouseUp, "right up"}};
        std::string name = words.at(event.type) + ":" + event.view;
        if (names.empty() || names.back() != name) names.push_back(name);
    }
    return names;
}

}  // namespace nevo::desktoptest
