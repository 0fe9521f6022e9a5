#include "platform/x11/X11LogOutput.h"

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace nevo {

namespace {
void writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        ssize_t count = write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}
}  // namespace

void X11LogOutput::writeStandardError(std::string_view text) { writeAll(STDERR_FILENO, text); }

void X11LogOutput::writeStandardOutput(std::string_view text) { writeAll(STDOUT_FILENO, text); }

void X11LogOutput::writeSystemLog(std::string_view text) {
    syslog(LOG_NOTICE, "%.*s", static_cast<int>(text.size()), text.data());
}

void X11LogOutput::appendToLogFile(std::string_view text) {
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home == '\0') return;
    // Opened each time: a user may move the file away at any moment.
    std::string path = std::string(home) + "/nevo_debug.log";
    int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (file < 0) return;
    writeAll(file, text);
    close(file);
}

}  // namespace nevo
