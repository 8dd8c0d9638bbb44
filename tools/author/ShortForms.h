// VELL: data-driven hierarchical state machines.
// tools/author/ShortForms.h: from the document's objects to the short forms of a source.
#pragma once

#include "tools/author/Made.h"
#include "tools/check/DocumentModel.h"

#include <optional>
#include <string>

namespace vell::author
{

/// Gives the expression of a condition; empty when no expression says it.
std::string ExpressionOf(const check::DocumentModel& model, const check::ConditionModel& condition);

/// Gives what `attributes` of a source has for the document's array; nothing when it cannot say it.
std::optional<Made> AttributesOf(const source::Text& document, const source::Value& array);

/// Gives a parameter's value in a source, without what `members` has to say: its default alone when
/// that says all and `mayBeShort`.
Made ParameterOf(const source::Text& document, const check::ParameterModel& parameter,
                 bool mayBeShort);

/// Tells whether two values say the same; the numbers of a vector or a range may have any blanks.
bool IsSameMeaning(const Made& left, const Made& right);

/// Gives what `members` has to say so that `made` says the same as `wanted`: an object, perhaps
/// empty. What `wanted` has not is null.
Made DifferenceOf(const Made& made, const Made& wanted);

} // namespace vell::author
