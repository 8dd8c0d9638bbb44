// VELL: data-driven hierarchical state machines.
// tests/docs/Pages.h: the pages of the documentation, as tests read them.
#pragma once

#include <string>
#include <vector>

namespace vell::test
{

using TextLines = std::vector<std::string>;

/// Gives the paths of README.md, CONTRIBUTING.md and all pages of docs/, from the repository's
/// root.
std::vector<std::string> PagePaths();

/// Gives the lines of a file; `path` starts at the repository's root. None when there is no file.
TextLines ReadLines(const std::string& path);

/// A block of code of a page.
struct CodeBlock
{
    std::string page;
    std::size_t line = 0; ///< the number of its opening line
    TextLines lines;
};

/// Gives the blocks of a page that are marked as of `language`.
std::vector<CodeBlock> ReadBlocks(const std::string& page, const std::string& language);

/// Gives the lines of a page that stand in no block of code.
TextLines ReadProse(const std::string& page);

} // namespace vell::test
