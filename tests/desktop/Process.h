#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace nevo::desktoptest {

/// Ends a test at once, with what was expected and what stood there instead.
struct Failed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Looks at `condition` again and again until it holds; false when it still doesn't after 20 s.
bool holdsSoon(const std::function<bool()>& condition);
/// The same for another time, for what takes long by its nature.
bool holdsWithin(std::chrono::steady_clock::duration time, const std::function<bool()>& condition);

using Environment = std::map<std::string, std::string>;

/// A program under test or beside it, leading a process group of its own. Ended with its group when
/// this goes; the system ends it when the test program dies.
class Process {
public:
    /// Starts `command` with nothing but `environment`; its output is added to the file `log`.
    /// `kept` is a descriptor that it inherits. Throws `Failed` when it can't be started.
    Process(std::vector<std::string> command, const Environment& environment,
            std::filesystem::path log, std::optional<int> kept = std::nullopt);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    pid_t pid() const { return id; }
    /// Base name of the program.
    std::string name() const;
    bool isRunning();
    /// As a shell tells it: 128 and the signal's number for a killed one. Nothing while it runs.
    std::optional<int> exitStatus();
    /// Sends it a signal, and no other process.
    void signal(int number) const;
    /// Waits until it has ended by itself or by an earlier signal, and gives its exit status.
    int waitForEnd();

    /// All that it has written so far.
    std::string output() const;

private:
    std::vector<std::string> words;
    std::filesystem::path logFile;
    pid_t id = -1;
    std::optional<int> status;
};

/// Starts a program that writes a line to the descriptor whose number stands for "{}" in its
/// command, and gives that line.
std::pair<std::unique_ptr<Process>, std::string> startAndReadLine(std::vector<std::string> command,
                                                                  const Environment& environment,
                                                                  const std::filesystem::path& log);

std::string readFile(const std::filesystem::path& file);
/// How often `part` stands in `text`.
std::size_t countIn(const std::string& text, const std::string& part);

}  // namespace nevo::desktoptest
