#include "platform/x11/X11LogOutput.h"

#include <syslog.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "platform/store/FileAccess.h"
#include "platform/store/LogFile.h"

namespace nevo {

namespace {

double monotonicSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void appendToFile(std::string_view line) {
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home == '\0') return;
    LogFile(std::filesystem::path(home) / "nevo_debug.log").append(line);
}

void writeToStandardError(std::string_view line) { writeAll(STDERR_FILENO, line); }

}  // namespace

X11LogOutput::X11LogOutput()
    : writesAll(std::getenv("NEVO_LOG_ALL") != nullptr),
      standardError(writeToStandardError, monotonicSeconds),
      logFile(appendToFile, monotonicSeconds) {}

X11LogOutput::~X11LogOutput() {
    standardError.flush();
    logFile.flush();
}

void X11LogOutput::writeStandardError(std::string_view text) {
    writesAll ? writeToStandardError(text) : standardError.add(text);
}

void X11LogOutput::writeStandardOutput(std::string_view text) { writeAll(STDOUT_FILENO, text); }

void X11LogOutput::writeSystemLog(std::string_view text) {
    syslog(LOG_NOTICE, "%.*s", static_cast<int>(text.size()), text.data());
}

void X11LogOutput::appendToLogFile(std::string_view text) {
    writesAll ? appendToFile(text) : logFile.add(text);
}

}  // namespace nevo
