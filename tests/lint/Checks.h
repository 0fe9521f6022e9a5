#pragma once

#include <string>
#include <vector>

#include "lint/SourceFile.h"

namespace nevo::lint {

/// Each check gives one line for each offence, "path:line: what is wrong", and nothing for a file
/// that it isn't about.
using Findings = std::vector<std::string>;

/// Which folder may include which: the layers of the program.
Findings includesAcrossLayers(const SourceFile& file);

/// Time and chance come through the run loop alone, or a simulated run wouldn't repeat.
Findings clocksAndChance(const SourceFile& file);

/// The forms of `co_await` that g++ 12 compiles wrongly without a word: see Task.h.
Findings fragileAwaits(const SourceFile& file);

/// Files in which two ideas share the room.
Findings overlongFiles(const SourceFile& file);

/// Words that send the reader to a paper outside of the tree, or to a place on one machine. The
/// tree is its own authority; protocols that others publish may be named.
Findings pointersOutside(const SourceFile& file);

/// Tests that are switched off.
Findings sleepingTests(const SourceFile& file);

/// Where the files that are installed beside the programs give them another id, name or version
/// than they have.
Findings disagreeingNames(const std::vector<SourceFile>& files);

/// The long options of `program` that its `manual` doesn't tell, and the other way round.
Findings disagreeingManual(const SourceFile& program, const SourceFile& manual);

/// The packages in `list` (scripts/packages) that `decisions` don't name.
Findings unexplainedPackages(const SourceFile& list, const std::string& decisions);

}  // namespace nevo::lint
