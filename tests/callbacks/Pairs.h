// VELL: data-driven hierarchical state machines.
// tests/callbacks/Pairs.h: runs each pair of a callback and an operation in a process of its own.
#pragma once

#include "tests/callbacks/Operations.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vell::callbacks
{

/// A callback of the scene: its name, and which of its calls the operations run in, from 1.
struct Callback
{
    const char* name;
    int call;
};

/// All callbacks, each with one entry or several.
const std::vector<Callback>& Callbacks();

/// Gives the name that reports show: the callback's, and the number of its call past the first.
std::string Title(const Callback& callback);

/// What came of all pairs.
struct Outcome
{
    std::size_t run = 0;              ///< pairs that had a process
    std::size_t fired = 0;            ///< of these, pairs whose operation ran
    std::size_t failed = 0;           ///< of these, pairs that did not end normally
    std::size_t impossible = 0;       ///< pairs that cannot work and were left out
    std::vector<std::string> missing; ///< callbacks that the scene does not reach, or does not list
};

/// Runs every pair whose callback's title contains `callbackPart` and whose operation's name
/// contains `operationPart`, two at a time. A pair that fails is reported on standard error at
/// once, with the end of what its process wrote.
Outcome RunPairs(const std::string& callbackPart, const std::string& operationPart);

} // namespace vell::callbacks
