// VELL: data-driven hierarchical state machines.
// tests/twin/TwinRun.h: runs a case on both machines and shrinks a case that differs.
#pragma once

#include "tests/twin/Side.h"

namespace twin
{

/// The first operation after which the two machines differ.
struct Difference
{
    bool isFound = false;
    std::size_t operation = 0; ///< the number of operations when it was the end that differed
    Lines done;                ///< what the operations did until then
    Lines with;                ///< what the last one led to on the machine with the shortcut
    Lines without;             ///< on its twin
    Lines pictures;            ///< where the machines then differ, fields and tree
};

/// What a comparison looks at.
enum class Look
{
    Often,  ///< all of the machine after each operation, the tree now and then
    Always, ///< the tree too
};

Difference Compare(const Case& twinCase, Look look);

/// Takes away whatever can be taken away while the machines still differ.
Case Shrink(const Case& twinCase);

/// The document, the operations and the difference, for a person.
std::string Report(const Case& twinCase);

/// How often each kind of operation was done, by its name.
std::map<std::string, unsigned long>& Counts();

} // namespace twin
