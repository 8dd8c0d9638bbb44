// VELL: data-driven hierarchical state machines.
// tools/check/CheckValue.h: a member's value against its rule.
#pragma once

#include "tools/check/Finding.h"
#include "tools/check/MemberTable.h"
#include "tools/check/Walk.h"

#include <string>

namespace vell::check
{

/// Reports what is wrong with the type, the range and the length of a member's value.
void CheckValue(const Visit& visit, const MemberRule& rule, const source::Value& value,
                Findings& findings);

/// Gives what a message calls a value: "the text 'a'", "5", "an object".
std::string Describe(const source::Value& value);

/// Gives the number of floats of a parameter's type; 0 when it is not a vector.
int VectorWidthOf(const source::Value& parameter);

} // namespace vell::check
