// VELL: data-driven hierarchical state machines.
// tools/check/MemberTable.h: the members of each kind of object, for the check and the schema.
#pragma once

#include <durm/DURMBaseLib.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vell::check
{

/// The kinds of objects that a document has.
enum class ObjectKind : std::uint8_t
{
    None,
    Root,
    Head,
    Parameter,
    VectorDefault, ///< the element of a vector's default
    Layer,
    Node,
    Condition,
    Operand, ///< the element of a condition's operand
    Attribute,
    AttributeData, ///< the element of an attribute's data
    Skeleton
};

/// What a member's value is.
enum class Shape : std::uint8_t
{
    Text,
    FilledText, ///< not empty
    Identity,   ///< a text of fewer bytes than the library keeps
    Id,         ///< a whole number from 0 to 2^32 - 1
    Integer,    ///< a whole number of 32 bits with a sign, or without one
    Flag,
    Number,
    Object,
    Array, ///< of objects
    First, ///< an array whose first element is an object; the others are not read
    Ids,   ///< an array of ids
    ByType ///< as another member of the object, or of that around it, says
};

/// The lists of words.
enum class Words : std::uint8_t
{
    None,
    Builders,
    Operators,
    ParameterTypes,
    ConditionTypes,
    Inputs,
    MachineTypes,
    Connectors,
    AttributeTypes
};

/// A member of a kind of object.
struct MemberRule
{
    std::string_view name; ///< by the vocabulary; terminated
    Shape shape;
    bool isRequired;
    const char* defaultValue;               ///< as JSON; null when there is none to tell
    const char* description;                ///< for an editor
    ObjectKind contents = ObjectKind::None; ///< of the object, or of the array's elements
    Words words = Words::None;
    unsigned int version = 0; ///< of the head from which on it is read
};

using MemberRules = std::vector<MemberRule>;

/// Gives the members of a kind of object; of a node, those that all nodes have.
const MemberRules& RulesOf(ObjectKind kind);
/// Gives the members that the nodes of a standard builder have besides; empty for other builders.
const MemberRules& RulesOfBuilder(int builder);

/// Tells whether a builder is one of the library's.
bool IsStandardBuilder(int builder);

/// Gives the rule of that name; null when there is none.
const MemberRule* FindRule(const MemberRules& rules, std::string_view name);

/// Gives "a head", "a node".
const char* TitleOf(ObjectKind kind);
/// Gives "a transition", "an enter node".
std::string TitleOfNode(int builder);
/// Gives the kinds of objects and nodes that have a member of that name: "a transition". Empty when
/// there is none.
std::string OwnersOf(std::string_view name);

/// Gives the words of a list as this vocabulary has them.
const std::vector<std::string_view>& WordsOf(Words words);
/// Gives the number that the library gives a word, 0 when it does not know it.
int NumberOf(Words words, const std::string& word);
/// Gives what the words of a list are: "operator".
const char* TitleOf(Words words);
/// Tells whether upper and lower case are the same in a list.
bool IgnoresCase(Words words);

} // namespace vell::check
