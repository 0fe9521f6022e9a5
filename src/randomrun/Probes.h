#pragma once

#include <string>
#include <vector>

namespace nevo {

/// Counts which rare turns of the program a run has reached, by texts of its log lines.
class Probes {
public:
    Probes();

    void noteTrace(const std::string& line);
    /// Adds what another run has reached.
    void add(const Probes& other);

    static const std::vector<std::string>& texts();
    /// By the order of `texts`.
    const std::vector<int>& counts() const { return reached; }
    std::vector<std::string> neverReached() const;

private:
    std::vector<int> reached;
};

}  // namespace nevo
