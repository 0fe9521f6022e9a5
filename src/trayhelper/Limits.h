#pragma once

namespace nevo::trayhelper {

/// The address space that this process may have from now on; what needs more fails or ends it.
void limitMemory(int megabytes);

/// While it lives, this process ends (by SIGPROF) once it has computed for `seconds`: there are
/// drawings of a few bytes that take years, and nobody may be there to end it.
class ComputingLimit {
public:
    explicit ComputingLimit(int seconds);
    ~ComputingLimit();
    ComputingLimit(const ComputingLimit&) = delete;
    ComputingLimit& operator=(const ComputingLimit&) = delete;
};

}  // namespace nevo::trayhelper
