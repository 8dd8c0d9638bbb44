// VELL: data-driven hierarchical state machines.
// tools/vell/DocumentFiles.h: the documents that a command line names.
#pragma once

#include <string>
#include <vector>

namespace vell::tool
{

/// What is in a file.
struct FileText
{
    std::string bytes;
    std::string error; ///< why it cannot be read; empty when it was
};

/// Reads a whole file, or standard input for "-".
FileText ReadWholeFile(const std::string& path);

/// Gives `cannot read hero.json: No such file or directory`.
std::string CannotRead(const std::string& path, const std::string& reason);

/// A document to read.
struct DocumentFile
{
    std::string path;
    bool isNamed = false; ///< by the user; the others were found in a folder
    std::string fault;    ///< why there is none, as a line; empty when there is one
};

/// Gives the files behind the words of a command line, each once: a folder stands for all files
/// *.json in it and its folders, in the order of their names; hidden folders are left out. A folder
/// without such files is given with a fault. One that cannot be read is given as it is, for reading
/// it to fail.
std::vector<DocumentFile> FindDocuments(const std::vector<std::string>& paths);

} // namespace vell::tool
