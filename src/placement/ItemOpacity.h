#pragma once

#include <bitset>
#include <cstddef>
#include <map>
#include <set>

#include "platform/WindowServer.h"

namespace nevo {

/// Which windows of other programs are transparent, and why. The only caller of the window server's
/// alpha operation on them.
///
/// A window has reasons for being transparent and for being kept opaque; the strongest one decides,
/// and a window without any is opaque. So nothing stays transparent that nobody wants to be, and
/// who hides a window for a while needn't know how it was before. A write that fails is repeated by
/// `writeAgain`. Main thread only.
class ItemOpacity {
public:
    /// The strongest first. Each says whether it makes a window transparent or keeps it opaque.
    enum class Reason {
        blanked,        ///< transparent while the bar is rearranged
        broughtOut,     ///< opaque: beside the toggle for the user to click
        hiddenInFront,  ///< transparent by the rule of the application in front
        shownInFront,   ///< opaque by the same
        hiddenByRule,   ///< transparent by the item's own rule
        shownByRule,    ///< opaque by the same
        stray,          ///< transparent since it belongs behind the divider
    };

    explicit ItemOpacity(WindowServer& server) : windows(server) {}

    /// Gives the window a reason, or takes it away, and writes the opacity that follows. False when
    /// the window server refuses. After `end` nothing can be hidden.
    bool add(Reason reason, WindowNumber window);
    bool remove(Reason reason, WindowNumber window);
    /// Takes the reason away from every window.
    void removeAll(Reason reason);
    /// Replaces what the item's own rule says; neither reason for none.
    bool setRule(WindowNumber window, bool hides, bool shows);

    bool has(Reason reason, WindowNumber window) const;
    std::set<WindowNumber> windowsWith(Reason reason) const;
    bool isTransparent(WindowNumber window) const;
    /// Windows that are transparent for what they are and where they stand: neither for a moment
    /// nor for the application in front.
    std::set<WindowNumber> alphaHiddenWindows() const;
    /// Windows that a rule keeps in sight, their own or that of the application in front.
    std::set<WindowNumber> alwaysShowProtectedWIDs() const;

    /// Writes the window's opacity once more: the window server may have lost it.
    bool reassert(WindowNumber window);
    /// Repeats the writes that have failed.
    void writeAgain();
    /// Drops windows that aren't among `present`, opaque as far as they can be reached.
    void forgetOthersThan(const std::set<WindowNumber>& present);
    /// For the program's end: every window is opaque, and stays so.
    void end();

private:
    static constexpr std::size_t reasonCount = 7;
    struct Entry {
        std::bitset<reasonCount> reasons;
        bool isUnwritten = false;
    };
    static bool wantsTransparent(const Entry& entry);
    bool write(std::map<WindowNumber, Entry>::iterator entry);

    WindowServer& windows;
    std::map<WindowNumber, Entry> entries;
    bool hasEnded = false;
};

}  // namespace nevo
