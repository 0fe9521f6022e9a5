#include "trayhelper/Limits.h"

#include <sys/resource.h>
#include <sys/time.h>

namespace nevo::trayhelper {

namespace {

#if defined(__has_feature)
#define NEVO_HAS_FEATURE(feature) __has_feature(feature)
#else
#define NEVO_HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || NEVO_HAS_FEATURE(address_sanitizer)
// It reserves terabytes for itself.
constexpr bool hasHugeAddressSpace = true;
#else
constexpr bool hasHugeAddressSpace = false;
#endif

void setComputingTimer(int seconds) {
    itimerval timer{};
    timer.it_value.tv_sec = seconds;
    ::setitimer(ITIMER_PROF, &timer, nullptr);
}

}  // namespace

void limitMemory(int megabytes) {
    if (hasHugeAddressSpace) return;
    auto bytes = static_cast<rlim_t>(megabytes) * 1024 * 1024;
    rlimit limit{bytes, bytes};
    ::setrlimit(RLIMIT_AS, &limit);
}

ComputingLimit::ComputingLimit(int seconds) { setComputingTimer(seconds); }

ComputingLimit::~ComputingLimit() { setComputingTimer(0); }

}  // namespace nevo::trayhelper
