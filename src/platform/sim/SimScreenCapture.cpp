#include "platform/sim/SimScreenCapture.h"

#include "platform/sim/SimImages.h"

namespace nevo {

void SimScreenCapture::requestAccess() {
    ++prompts;
    trace.note("prompt", "screen recording");
}

void SimScreenCapture::shareableContent(
    bool, bool, std::function<void(Result<std::vector<ShareableWindow>>)> completion) {
    Result<std::vector<ShareableWindow>> result;
    if (faults.strikes(SimOperation::shareableContent)) {
        result.error = "the window list can't be had";
    } else if (!permissions.screenRecording) {
        result.error = "the user declined screen recording";
    } else {
        result.value.emplace();
        for (const auto& [number, window] : windows.all()) {
            if (window.mapped) result.value->push_back({number, window.frame});
        }
    }
    loop.postAfter(delay, [completion = std::move(completion), result] { completion(result); });
}

void SimScreenCapture::captureImage(WindowNumber window, CaptureConfiguration configuration,
                                    std::function<void(Result<Image>)> completion) {
    Result<Image> result;
    bool failed = faults.strikes(SimOperation::captureImage, window);
    auto picture = server.picture(window, 1);
    if (failed || !permissions.screenRecording || !picture) {
        result.error = "the window can't be captured";
    } else {
        Size size{static_cast<double>(configuration.width),
                  static_cast<double>(configuration.height)};
        result.value = simImage(size, false, picture->source);
    }
    loop.postAfter(delay, [completion = std::move(completion), result] { completion(result); });
}

}  // namespace nevo
