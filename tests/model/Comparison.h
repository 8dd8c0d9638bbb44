// VELL: data-driven hierarchical state machines.
// tests/model/Comparison.h: runs a case on both machines and shrinks a case that differs.
#pragma once

#include "tests/model/NaiveMachine.h"
#include "tests/model/Observed.h"

#include <cstddef>
#include <map>
#include <string>

namespace model
{

/// The first call after which the machines differ.
struct Difference
{
    bool isFound = false;
    std::size_t input = 0;
    Step expected; ///< of the naive machine
    Step actual;   ///< of the library
};

/// How often the library's runs came by each kind of event, to show that cases reach it.
using Counts = std::map<std::string, unsigned long>;

/// Runs `modelCase` on both machines until they differ or the library throws.
Difference Compare(const Case& modelCase, Fault fault, Counts* counts);

/// Takes away whatever can be taken away while the machines still differ.
Case Shrink(Case modelCase, Fault fault);

/// The document, the calls and the first difference, for a person.
std::string Report(const Case& modelCase, const Difference& difference);

} // namespace model
