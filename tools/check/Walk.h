// VELL: data-driven hierarchical state machines.
// tools/check/Walk.h: every object of a document, with its kind.
#pragma once

#include "tools/check/MemberTable.h"
#include "tools/source/Value.h"

#include <functional>
#include <string>

namespace vell::check
{

/// An object of the document.
struct Visit
{
    const source::Value& object;
    ObjectKind kind;
    const source::Value* parent; ///< the object that it belongs to; null for the root
    int builder;                 ///< of a node: its number, 0 when it is not known
};

/// Visits the root and all objects within it that the table of members knows, in the order of the
/// text. What is not an object is passed over.
void VisitObjects(const source::Value& root, const std::function<void(const Visit&)>& visitor);

/// Finds the rule of a member of the object; null when there is none.
const MemberRule* FindRule(const Visit& visit, std::string_view name);

/// Gives what a message calls the object: "the transition 'ToWalk'".
std::string NameOf(const Visit& visit);

} // namespace vell::check
