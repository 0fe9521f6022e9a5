#pragma once

namespace nevo::trayhelper {

/// Answers each line of standard input, "ID SIZE<TAB>FOLDER<TAB>NAME", with the picture of that
/// icon on standard output: a line "ID WIDTH HEIGHT", then WIDTH * HEIGHT * 4 bytes, premultiplied
/// ARGB in this machine's byte order, row by row. Neither side is longer than SIZE (8 to 256);
/// "ID 0 0" says that there is no such picture, or none that can be read. Opens no display.
///
/// Gives the exit status: 0 at the end of the input, 1 when nobody reads the answers, 2 at a line
/// of another form, with a sentence on standard error.
int serveIcons();

}  // namespace nevo::trayhelper
