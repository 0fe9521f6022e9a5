#pragma once

#include <vector>

#include "platform/Panels.h"
#include "platform/sim/SimApplication.h"
#include "platform/sim/SimRunLoop.h"
#include "platform/sim/SimScreens.h"
#include "platform/sim/SimTrace.h"
#include "platform/sim/SimWindows.h"

namespace nevo {

class SimPanels;

/// Keeps what a panel would show. What is animated has its last value from the start.
class SimPanel : public Panel {
public:
    SimPanel(SimPanels& all, const PanelConfiguration& of);
    ~SimPanel() override;
    SimPanel(const SimPanel&) = delete;
    SimPanel& operator=(const SimPanel&) = delete;

    Rect frame() const override { return configuration.frame; }
    void setFrame(Rect frame) override;
    std::optional<Screen> screen() const override;
    void setViews(std::vector<PanelView> all) override { shownViews = std::move(all); }
    void setView(const PanelView& view, std::optional<Animation> animation) override;
    void bringViewToFront(const std::string& key) override;
    void setAlpha(double alpha) override { panelAlpha = alpha; }
    void animateAlpha(double alpha, Animation animation, std::function<void()> done) override;
    void orderFront() override;
    bool makeKey() override { return isKey = configuration.canBecomeKey; }
    void resignKey() override { isKey = false; }
    void orderOut() override;
    bool isVisible() const override;

    // What a person sees and does.
    const PanelConfiguration& shownConfiguration() const { return configuration; }
    /// Back to front.
    const std::vector<PanelView>& views() const { return shownViews; }
    /// nullptr when there is none.
    const PanelView* view(const std::string& key) const;
    double alpha() const { return panelAlpha; }
    bool hasKeys() const { return isKey; }
    WindowNumber window() const { return number; }
    /// Hands an event on to the view that it is for; its location has its origin at the bottom
    /// left of the main display.
    void deliver(const Event& event);
    void deliver(PanelKey key);

private:
    const PanelView* viewAt(Point inPanel) const;

    SimPanels& panels;
    PanelConfiguration configuration;
    WindowNumber number = 0;
    std::vector<PanelView> shownViews;
    double panelAlpha = 1;
    bool isKey = false;
    /// Where a button went down.
    std::string pressedView;
    /// For what runs later and must find out that the panel has gone.
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);
};

/// The program's panels.
class SimPanels : public Panels {
public:
    SimPanels(SimRunLoop& runLoop, SimWindows& allWindows, SimScreens& allScreens, SimProgram& self,
              SimTrace& to)
        : loop(runLoop), windows(allWindows), screens(allScreens), program(self), trace(to) {}

    std::unique_ptr<Panel> create(const PanelConfiguration& configuration) override;

    /// The visible ones, in the order in which they came to the front.
    std::vector<SimPanel*> visible() const;
    /// The topmost one at a place (origin at the top left) that takes the mouse; nullptr for none.
    SimPanel* at(Point place) const;
    /// The one that has the keys; nullptr for none.
    SimPanel* key() const;
    /// nullptr when no panel has that window.
    SimPanel* find(WindowNumber window) const;
    std::size_t count() const { return all.size(); }

private:
    friend class SimPanel;

    SimRunLoop& loop;
    SimWindows& windows;
    SimScreens& screens;
    SimProgram& program;
    SimTrace& trace;
    /// The frontmost last.
    std::vector<SimPanel*> all;
};

}  // namespace nevo
