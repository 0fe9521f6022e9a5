#pragma once

#include "platform/Images.h"
#include "platform/Windows.h"
#include "platform/x11/ReducedMotion.h"

namespace nevo {

/// Windows of Qt's, in the desktop's style, font and colours. Points are Qt's units.
class X11Windows : public Windows {
public:
    X11Windows(const Images& pictures, XServer& server, EventPump& pump);
    std::unique_ptr<Window> create(const WindowConfiguration& configuration) override;
    bool prefersReducedMotion() const override { return motion.isWanted(); }

private:
    const Images& images;
    ReducedMotion motion;
};

}  // namespace nevo
