// VELL: data-driven hierarchical state machines.
// tools/vell/Script.h: the instructions that drive a machine, one a line.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace vell::tool
{

/// One instruction of a script.
enum class Operation
{
    Tick,        ///< `count` ticks
    Set,         ///< parameter `name` takes `value`
    Message,     ///< message `name` is fired
    ExpectStack, ///< the stack is the path `value`; an empty one is an empty stack
    ExpectParam, ///< parameter `name` is `value`
    ExpectBlip   ///< a blip runs, or not, as `flag` says
};

struct Instruction
{
    Operation operation = Operation::Tick;
    unsigned int line = 0; ///< counted from 1
    std::uint64_t count = 1;
    std::string name;
    std::string value;
    bool flag = false;
};

struct Script
{
    std::string file; ///< as messages name it
    std::vector<Instruction> instructions;
    std::vector<std::string> errors; ///< `file:line: ...`, one for each invalid line
};

/// Reads a whole script. Invalid lines are reported in `errors`.
Script ReadScript(std::istream& in, const std::string& file);

/// Reads the script in a file, or standard input for "-". A file that cannot be read is an error
/// too.
Script ReadScriptFile(const std::string& path);

} // namespace vell::tool
