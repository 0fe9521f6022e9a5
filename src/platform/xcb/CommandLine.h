#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nevo::xcb {

/// The base name of the program or script that a command line runs; empty when it tells nothing
/// (`sh -c`, a launcher of containers). For `{"/usr/bin/python3", "-u", "/opt/foo/foo.py"}`
/// "foo.py". `folder`: where relative paths begin, absolute; empty when that isn't known.
std::string programOfCommandLine(const std::vector<std::string>& arguments,
                                 const std::string& folder = {});

/// Whether a program of this base name runs other people's scripts, so that its own name says
/// nothing about what it is.
bool isInterpreter(std::string_view baseName);

}  // namespace nevo::xcb
