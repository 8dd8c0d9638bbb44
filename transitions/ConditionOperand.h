// VELL: data-driven hierarchical state machines.
// transitions/ConditionOperand.h: reading what a condition compares with.
#pragma once

#include <vell/Json.h>

namespace vell
{

/// Gives the value that the condition `node` compares with, or null when the document gives none.
const GenericValue* FindOperand(const GenericValue& node);

/// Reads a range text, the smaller number first. Returns 1, or 0.
int ReadRange(const char* text, double* low, double* high);

} // namespace vell
