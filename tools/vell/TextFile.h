// VELL: data-driven hierarchical state machines.
// tools/vell/TextFile.h: reading and writing whole files, with words for what goes wrong.
#pragma once

#include <string>

namespace vell::tool
{

/// Gives the name of a file in messages: `standard input` for "-", else the path.
std::string FileName(const std::string& path);

/// Reads a whole file, or standard input for "-". Returns an empty text, or an error message such
/// as `cannot read hero.json: No such file or directory`.
std::string ReadTextFile(const std::string& path, std::string* text);

/// Writes a whole file. Returns an empty text, or an error message such as
/// `cannot write hero.svg: No space left on device`.
std::string WriteTextFile(const std::string& path, const std::string& text);

/// Tells whether both paths name the same existing file.
bool IsSameFile(const std::string& path, const std::string& other);

/// Gives `cannot write hero.svg: REASON` for a value of `errno`.
std::string CannotWrite(const std::string& name, int error);

} // namespace vell::tool
