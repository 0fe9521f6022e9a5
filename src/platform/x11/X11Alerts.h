#pragma once

#include "platform/Alerts.h"

namespace nevo {

/// Message boxes of Qt's, above the window of ours that is in use.
class X11Alerts : public Alerts {
public:
    AlertAnswer run(const Alert& alert) override;
};

}  // namespace nevo
