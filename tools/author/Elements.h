// VELL: data-driven hierarchical state machines.
// tools/author/Elements.h: parameters, conditions and attributes as the document has them.
#pragma once

#include "tools/author/Machine.h"
#include "tools/author/Made.h"

#include <string>

namespace vell::author
{

/// Gives a parameter of the document. What is wrong with its value is reported.
Made MakeParameter(const Machine& machine, const Parameter& parameter);

/// Gives the conditions of a transition's `when`, an array. What is wrong with them is reported.
Made MakeConditions(const Machine& machine, const Transition& transition);

/// Gives the attributes of an `attributes`, an array. What is wrong with them is reported.
Made MakeAttributes(const Machine& machine, const Found& attributes);

/// Puts in the members of a source's object as they are. Null takes one out.
void SetAll(const Machine& machine, const Found& members, Made* object);

/// Puts in what the member `members` of a source's object has, and its "$comment".
void AddMembers(const Machine& machine, const std::vector<Piece>& pieces, Made* object);

/// Gives the vocabulary's word for a number; empty when it has none.
std::string WordFor(check::Words words, int number);

/// Gives the parts of the text of a vector or a range, without blanks; empty when one of them is
/// not written as a number is in JSON.
std::vector<std::string> NumbersIn(const std::string& text);

} // namespace vell::author
