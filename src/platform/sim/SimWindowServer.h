#pragma once

#include <map>
#include <memory>

#include "platform/WindowServer.h"
#include "platform/sim/SimBar.h"
#include "platform/sim/SimFaults.h"

namespace nevo {

/// What the user has allowed the program.
struct SimPermissions {
    bool accessibility = true;
    bool screenRecording = true;
};

class SimWindowServer : public WindowServer {
public:
    SimWindowServer(SimBar& row, SimWindows& allWindows, const SimScreens& allScreens,
                    SimFaults& scripted, const SimPermissions& permitted, SimTrace& to)
        : bar(row),
          windows(allWindows),
          screens(allScreens),
          faults(scripted),
          permissions(permitted),
          trace(to) {}

    std::optional<int> windowCount() const override;
    std::optional<std::vector<WindowNumber>> menuBarWindowList(int capacity) const override;
    std::optional<int> windowLevel(WindowNumber window) const override;
    std::optional<Rect> windowFrame(WindowNumber window) const override;
    std::optional<Rect> slotFrame(WindowNumber window) const override;
    double roomShift(WindowNumber window) const override;
    std::optional<std::vector<WindowDescription>> windowList(
        WindowListOption option) const override;
    std::optional<WindowDescription> windowDescription(WindowNumber window) const override;

    bool setWindowAlpha(WindowNumber window, float alpha) override;
    std::optional<float> windowAlpha(WindowNumber window) const override;
    bool moveWindow(WindowNumber window, Point origin) override;

    /// Without the screen recording permission a program sees only its own windows' pictures.
    std::optional<Image> windowImage(WindowNumber window) const override;
    Registration watchImage(WindowNumber window, std::function<void()> changed) override;
    std::optional<Image> compositeImage(const std::vector<WindowNumber>& numbers) const override;
    double pixelsPerPoint() const override { return 2; }
    void setSetsCursorInBackground(bool sets) override { cursorInBackground = sets; }

    /// The picture of a window, whoever asks: one colour, the window's own.
    std::optional<Image> picture(WindowNumber window, double scale) const;
    bool setsCursorInBackground() const { return cursorInBackground; }
    /// A program draws another picture into its window.
    void repaint(WindowNumber window);
    /// How often the program has read a window's picture.
    int imageReads() const { return reads; }

    /// Whether direct moves of the program's own items are obeyed; the real bar refuses them.
    bool ownMovesAllowed = false;

private:
    bool isOnScreen(const SimWindow& window) const;
    WindowDescription describe(const SimWindow& window) const;
    Rect settledFrame(const SimWindow& window) const;
    bool mayPicture(WindowNumber window) const;
    double scale() const;

    SimBar& bar;
    SimWindows& windows;
    const SimScreens& screens;
    SimFaults& faults;
    const SimPermissions& permissions;
    SimTrace& trace;
    bool cursorInBackground = false;
    struct Watch {
        WindowNumber window;
        std::function<void()> changed;
        /// Told, and the picture not read since.
        bool isSpent = false;
    };
    using Watches = std::map<std::size_t, Watch>;
    std::shared_ptr<Watches> watches = std::make_shared<Watches>();
    std::size_t nextWatch = 0;
    std::map<WindowNumber, std::uint32_t> repaints;
    mutable int reads = 0;
};

}  // namespace nevo
