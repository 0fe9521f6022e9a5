// What a toggle costs with a large picture of the user's own as Nevo's icon: the whole program on
// the simulated desktop, but pictures are decoded as on the real one.
#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QImage>
#include <random>

#include "entry/NevoApp.h"
#include "fillDesktop.h"
#include "platform/x11/X11Images.h"

namespace nevo {
namespace {

constexpr std::size_t items = 10;
/// Start and first collapse.
constexpr double startTime = 10.0;
/// The guard against fast clicks, and the look at the layout after a collapse.
constexpr double toggleTime = 0.5;
/// Noise doesn't compress: three bytes a pixel, 3.5 MB.
constexpr int side = 1080;

Bytes largePicture() {
    QImage image(side, side, QImage::Format_RGB888);
    std::mt19937 random(1);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) image.setPixel(x, y, static_cast<uint>(random()));
    }
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return {data.begin(), data.end()};
}

Platform withImages(const Platform& p, Images& images) {
    return {p.runLoop,       p.notifications,  p.workspaceNotifications,
            p.defaults,      p.application,    p.statusBar,
            p.windows,       p.events,         p.hotKeys,
            p.screens,       p.workspace,      p.accessibility,
            p.screenCapture, images,           p.panels,
            p.menus,         p.popovers,       p.surfaceWindows,
            p.alerts,        p.files,          p.loginItem,
            p.updaters,      p.childProcesses, p.log};
}

void toggleWith(benchmark::State& state, const Bytes& icon) {
    SimDesktop desktop;
    desktop.trace.keepsLines = false;
    fillDesktop(desktop, items);
    DefaultsDomain& store = desktop.defaults.standard();
    store.set("nevo_onboarding_completed", true);
    if (!icon.empty()) store.set("nevo_custom_icon_data", icon);
    X11Images images;
    std::weak_ptr<NevoApp> app;
    desktop.start([&](Platform platform) {
        auto made = std::make_shared<NevoApp>(withImages(platform, images));
        app = made;
        return made;
    });
    desktop.loop.runFor(startTime);
    std::size_t hidden = items;
    if (desktop.hiddenItems().size() != hidden) return state.SkipWithError("nothing is hidden");
    for (auto _ : state) {
        hidden = items - hidden;
        app.lock()->delegate().controller()->toggle();
        desktop.loop.runFor(toggleTime);
        if (desktop.hiddenItems().size() != hidden) return state.SkipWithError("no toggle");
    }
    desktop.application.die();
    desktop.reap();
}

void toggleWithLargeIcon(benchmark::State& state) { toggleWith(state, largePicture()); }
/// The peer: one of Nevo's own icons.
void toggleWithStandardIcon(benchmark::State& state) { toggleWith(state, {}); }

BENCHMARK(toggleWithLargeIcon)->Unit(benchmark::kMillisecond);
BENCHMARK(toggleWithStandardIcon)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace nevo
