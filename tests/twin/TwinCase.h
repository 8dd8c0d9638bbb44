// VELL: data-driven hierarchical state machines.
// tests/twin/TwinCase.h: one case of the twin test, a document and what a host does to its machine.
#pragma once

#include "tests/model/ModelCase.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace twin
{

/// One thing that a host does. The picks choose among whatever the machine has at that time, so
/// that an operation fits every document.
struct Operation
{
    std::size_t kind = 0; ///< index of its OperationKind
    std::array<unsigned int, 4> picks = {};
    float time = 0.0f;
    model::Value value;
    std::vector<Operation> inner; ///< what a callback or an action does, at most one
};

struct Case
{
    model::Document document;
    std::vector<Operation> operations;
};

/// A random case, the same for the same seed everywhere. None of its operations is of a kind that
/// is in `without`, names with commas between them.
Case MakeCase(unsigned long long seed, const std::string& without = "");

} // namespace twin
