#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Image.h"
#include "platform/Registration.h"

namespace nevo {

/// One window of the global window list. What the list didn't tell is empty.
struct WindowDescription {
    std::optional<WindowNumber> number;
    std::optional<int> layer;
    std::optional<ProcessId> ownerPid;
    std::optional<std::string> ownerName;
    /// For a status item: the name under which its application saves its place, "Item-0" for an
    /// unnamed one.
    std::optional<std::string> name;
    /// Top-left origin; a number that was missing counts as 0.
    std::optional<Rect> bounds;
};

/// Which windows a list takes in (the options of `CGWindowListCopyWindowInfo`, desktop elements
/// always excluded).
enum class WindowListOption {
    onScreenOnly,  ///< 17
    all,           ///< 16
};

/// The window server's view of all programs' windows. Frames are global, in points, origin at the
/// top left of the main display. Each call may fail at any moment: its window may be gone.
class WindowServer {
public:
    virtual ~WindowServer() = default;

    /// `CGSGetWindowCount`; nothing on failure.
    virtual std::optional<int> windowCount() const = 0;
    /// The item windows of all programs' menu bars, at most `capacity` of them, those of the row
    /// first and in its order, left to right (`CGSGetProcessMenuBarWindowList`); nothing on
    /// failure.
    virtual std::optional<std::vector<WindowNumber>> menuBarWindowList(int capacity) const = 0;
    /// `CGSGetWindowLevel`: 25 for a status item, 24 for the bar itself; nothing on failure.
    virtual std::optional<int> windowLevel(WindowNumber window) const = 0;
    /// `CGSGetScreenRectForWindow`, also for windows pushed off the screen; nothing on failure.
    virtual std::optional<Rect> windowFrame(WindowNumber window) const = 0;
    /// Where the bar's layout has a status item, which differs from its frame while it has been
    /// moved directly (the position of the item's accessibility element); nothing on failure.
    virtual std::optional<Rect> slotFrame(WindowNumber window) const = 0;
    /// How far to the right of that frame a status item stands, in points, while the bar makes room
    /// for one that has been moved directly; 0 otherwise (and always where a bar makes no room). No
    /// frame of the row counts it, so what is decided by frames isn't disturbed; what is under the
    /// pointer, or stands beside an item, has to.
    virtual double roomShift(WindowNumber window) const = 0;
    /// `CGWindowListCopyWindowInfo(17 or 16, 0)`; nothing on failure.
    virtual std::optional<std::vector<WindowDescription>> windowList(
        WindowListOption option) const = 0;
    /// `CGWindowListCopyWindowInfo(8, window)`: that window alone; nothing on failure.
    virtual std::optional<WindowDescription> windowDescription(WindowNumber window) const = 0;

    /// `CGSSetWindowAlpha`, 0 to 1, whoever owns the window. False on failure.
    virtual bool setWindowAlpha(WindowNumber window, float alpha) = 0;
    /// `CGSGetWindowAlpha`; nothing on failure.
    virtual std::optional<float> windowAlpha(WindowNumber window) const = 0;
    /// `SLSMoveWindow`: puts the window's origin there. A status item that is put into the bar
    /// floats beside the toggle, where it covers no other; one that is put near its slot or outside
    /// of the bar goes back into its slot. False when it was refused or can't be done here.
    virtual bool moveWindow(WindowNumber window, Point origin) = 0;

    /// The picture of one window (`CGWindowListCreateImage(CGRectNull, 8, window, 9)`), in pixels;
    /// nothing when it can't be had.
    virtual std::optional<Image> windowImage(WindowNumber window) const = 0;
    /// Calls `changed`, on the main thread, when the picture may be another than it was at the last
    /// `windowImage` of that window; once until the next one. Empty where that can't be told.
    virtual Registration watchImage(WindowNumber window, std::function<void()> changed) = 0;
    /// How many pixels of such a picture make a point: 2 where pictures come at the best
    /// resolution whatever the display, else what the items are drawn at.
    virtual double pixelsPerPoint() const = 0;
    /// One picture of all of `windows` in their places, as large as the union of their frames
    /// (`CGWindowListCreateImageFromArray(CGRectNull, windows, 9)`), in pixels; nothing when it
    /// can't be had.
    virtual std::optional<Image> compositeImage(const std::vector<WindowNumber>& windows) const = 0;

    /// Lets this process control the cursor while it isn't the active application
    /// (`CGSSetConnectionProperty` "SetsCursorInBackground"). Stays set.
    virtual void setSetsCursorInBackground(bool sets) = 0;
};

/// The level of a status item's window and that of the bar itself.
inline constexpr int statusItemWindowLevel = 25;
inline constexpr int menuBarWindowLevel = 24;

}  // namespace nevo
