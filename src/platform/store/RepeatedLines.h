#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace nevo {

/// Writes a line that comes again and again once a minute. Its repeats are counted, and the count
/// is written as a line of its own before the next line of any kind once the minute is over.
/// Remembers the last 256 lines; when one of them is forgotten early, its count is written then.
class RepeatedLines {
public:
    /// `write` takes the lines that are to be seen; `now` is a monotonic time in seconds.
    RepeatedLines(std::function<void(std::string_view)> write, std::function<double()> now);

    /// A line with its end.
    void add(std::string_view line);
    /// Writes what has been counted so far: for the end of the program.
    void flush();

private:
    struct Line {
        std::string text;
        double writtenAt = 0;
        std::size_t repeats = 0;
    };
    void forgetOldest();

    std::function<void(std::string_view)> write;
    std::function<double()> now;
    /// In the order of their writing.
    std::list<Line> lines;
    std::unordered_map<std::string_view, std::list<Line>::iterator> byText;
};

}  // namespace nevo
