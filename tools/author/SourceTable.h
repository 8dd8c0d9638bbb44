// VELL: data-driven hierarchical state machines.
// tools/author/SourceTable.h: the members of a source, for the reader and the schema.
#pragma once

#include "tools/check/MemberTable.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace vell::author
{

/// The kinds of objects that a source has.
enum class SourceKind : std::uint8_t
{
    Machine, ///< the root of the main file
    Part,    ///< the root of an included file
    Level,   ///< the root of a file that a state is taken from
    State,
    Transition,
    Condition,
    Parameter,
    End,   ///< the enter or exit node that a level gets of itself
    Global ///< the node of the interrupts
};

/// What a member's value is.
enum class SourceShape : std::uint8_t
{
    Text,
    TextOrNull,
    Name, ///< of a state, or an id as it is in the document
    Builder,
    Words, ///< one of a list of the vocabulary
    Integer,
    Id,
    Number,
    Flag,
    Texts,
    Members, ///< an object that is copied
    Nodes,   ///< an array of objects that are copied
    States,
    Transitions,
    Conditions,
    Parameters,
    Attributes,
    Value, ///< of a parameter, as its type says
    EndNode,
    ExitNode, ///< or the name of a state
    GlobalNode,
    Any
};

/// A member of a kind of object.
struct SourceRule
{
    std::string_view name; ///< terminated
    SourceShape shape;
    const char* description; ///< for an editor
    check::Words words = check::Words::None;
};

using SourceRules = std::vector<SourceRule>;

/// Gives the members of a kind, in the order in which `fmt` and `decompile` know them.
const SourceRules& RulesOf(SourceKind kind);
const SourceRule* FindRule(SourceKind kind, std::string_view name);

/// Gives "a state", "a transition".
const char* TitleOf(SourceKind kind);
/// Says which kinds have a member: "a state or a transition"; empty for none.
std::string OwnersOf(std::string_view name);
/// Says what a value of a shape is: "a whole number".
std::string DescriptionOf(const SourceRule& rule);

} // namespace vell::author
