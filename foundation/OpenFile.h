// VELL: data-driven hierarchical state machines.
// foundation/OpenFile.h: opening a file by its UTF-8 path.
#pragma once

#include <cstdio>

namespace vell
{

/// Opens the file for reading its bytes. The path is UTF-8; on Windows one that is not, or that
/// names no file, is then taken in the code page of the process. Null when there is no such file.
std::FILE* OpenFileToRead(const char* path);

} // namespace vell
