#include "platform/x11/X11ScreenCapture.h"

#include <QPainter>

#include "platform/x11/Pictures.h"

namespace nevo {

namespace {
constexpr int mostPixelsASide = 8192;

/// `image` as large as fits into `size` in its own proportions, centred.
Image fitted(const Image& image, QSize size, bool scales) {
    QImage source = toQImage(image);
    QImage canvas(size, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    if (scales && source.size() != size) {
        source = source.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    QPainter painter(&canvas);
    painter.drawImage(
        QPoint((size.width() - source.width()) / 2, (size.height() - source.height()) / 2), source);
    painter.end();
    return fromQImage(canvas);
}
}  // namespace

void X11ScreenCapture::shareableContent(
    bool, bool onScreenWindowsOnly,
    std::function<void(Result<std::vector<ShareableWindow>>)> completion) {
    auto list = windows.windowList(onScreenWindowsOnly ? WindowListOption::onScreenOnly
                                                       : WindowListOption::all);
    if (!list) return completion({std::nullopt, "the bar can't be reached"});
    std::vector<ShareableWindow> result;
    for (const WindowDescription& window : *list) {
        if (window.layer != statusItemWindowLevel) continue;
        result.push_back({*window.number, *window.bounds});
    }
    completion({std::move(result), {}});
}

void X11ScreenCapture::captureImage(WindowNumber window, CaptureConfiguration configuration,
                                    std::function<void(Result<Image>)> completion) {
    auto image = windows.windowImage(window);
    if (!image) return completion({std::nullopt, "the window has no picture"});
    bool isSensible = configuration.width > 0 && configuration.height > 0 &&
                      configuration.width <= mostPixelsASide &&
                      configuration.height <= mostPixelsASide;
    if (!isSensible) return completion({std::nullopt, "a picture of that size can't be made"});
    Image result =
        fitted(*image, {configuration.width, configuration.height}, configuration.scalesToFit);
    result.source = image->source;
    completion({std::move(result), {}});
}

}  // namespace nevo
