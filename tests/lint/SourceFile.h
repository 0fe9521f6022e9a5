#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nevo::lint {

/// A text file of the tree.
struct SourceFile {
    /// From the root of the tree, with slashes.
    std::string path;
    std::string text;

    bool isCode() const;
    /// Whether the file stands in `folder` or below it.
    bool isIn(std::string_view folder) const;
    /// `text` with each comment and the inside of each literal blanked, so that offsets and lines
    /// stay.
    std::string code() const;
    /// The opposite: comments and literals alone. All of a file that isn't code.
    std::string prose() const;
};

/// The number of the line, from 1, on which `offset` stands.
std::size_t lineOf(const std::string& text, std::size_t offset);

/// Every text file of the tree that belongs to it: nothing built, nothing hidden but `.ci`.
std::vector<SourceFile> wholeTree();

}  // namespace nevo::lint
