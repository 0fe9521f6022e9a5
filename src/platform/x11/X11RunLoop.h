#pragma once

#include <memory>

#include "platform/RunLoop.h"
#include "platform/x11/XServer.h"

namespace nevo {

/// The run loop on Qt's event loop.
class X11RunLoop : public RunLoop {
public:
    explicit X11RunLoop(XServer& x);
    ~X11RunLoop() override;

    double now() const override;
    void post(std::function<void()> work) override;
    void postAfter(double seconds, std::function<void()> work) override;
    Registration timer(double seconds, bool repeats, std::function<void()> fire) override;
    void blockFor(double seconds) override;
    void turnFor(double seconds) override;

    /// Forgets all that waits: nothing posted so far will run.
    void drop();

private:
    class Queue;
    XServer& server;
    std::shared_ptr<Queue> queue;
};

}  // namespace nevo
