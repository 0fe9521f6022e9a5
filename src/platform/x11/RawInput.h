#pragma once

#include <functional>

#include "platform/x11/EventPump.h"

namespace nevo {

/// What the user's devices do, whoever it is for: the raw events of the XInput extension. They come
/// also while another program has grabbed the pointer.
class RawInput {
public:
    enum class Kind { motion, press, release };
    /// `button` is 0 for motion.
    using Handler = std::function<void(Kind, std::uint32_t button)>;

    RawInput(XServer& x, EventPump& pump, Handler onInput);

    /// False where the extension is missing or too old.
    bool isAvailable() const { return opcode != 0; }
    /// Listening wakes this program at each motion: only while somebody wants to know.
    void setListening(bool listens);
    bool listens() const { return isListening; }

private:
    XServer& server;
    std::uint8_t opcode = 0;
    bool isListening = false;
};

/// Lets go of what the synthetic devices still hold: a predecessor may have ended in the middle of
/// a drag.
void releaseSyntheticDevices(XServer& server);

}  // namespace nevo
