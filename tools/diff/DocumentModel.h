// VELL: data-driven hierarchical state machines.
// tools/diff/DocumentModel.h: a document as a reviewer thinks of it.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace vell::source
{
class Value;
} // namespace vell::source

namespace vell::diff
{

/// A member that is neither a list nor part of the hierarchy.
struct Property
{
    std::string name;      ///< with " [2]" behind it when it is the second of its name
    std::string canonical; ///< equal for equal values
    std::string shown;     ///< as the document has it, on one line
    unsigned int number = 0;
    bool isReference = false; ///< `number` is the id of a node
};

using Properties = std::vector<Property>;

/// One condition of a transition. Two are equal when their texts and parameters are.
struct Condition
{
    unsigned int parameter = 0;
    std::string comparison;                     ///< without the parameter: `greater 0.1`
    std::string canonical;                      ///< everything but the parameter's id
    std::string whole;                          ///< as the document has it, on one line
    std::map<std::string, std::string> members; ///< as the document has them, without quotes
};

struct Attribute
{
    std::string name;
    std::string canonical;
    std::string shown; ///< type and value: `double 0.7`
    std::string whole; ///< as the document has it, on one line
};

struct Node
{
    unsigned int id = 0;
    std::string name;
    std::string builder;
    std::string layer; ///< "the global nodes" for those of `global`
    unsigned int parent = 0;
    Properties properties;
    std::vector<unsigned int> children;
    std::vector<Condition> conditions;
    std::vector<Attribute> attributes;

    bool IsTransition() const;
};

struct Parameter
{
    unsigned int id = 0;
    std::string name;
    Properties properties;
};

/// What a document says, apart from its layout. A member with its default value is left out, so
/// that it is equal to an absent one.
struct DocumentModel
{
    Properties head;
    Properties skeleton;
    Properties others; ///< members of the root that the library does not know
    std::vector<Parameter> parameters;
    std::vector<std::string> layers;
    std::vector<Node> nodes;
    std::unordered_map<unsigned int, std::size_t> nodeIndex;      ///< the first of each id
    std::unordered_map<unsigned int, std::size_t> parameterIndex; ///< the first of each id

    const Node* FindNode(unsigned int id) const;
    const Parameter* FindParameter(unsigned int id) const;
    /// `Walk (11)`, `#11` for a node without a name, `#11 (no such node)`, or `none` for 0.
    std::string NameOfNode(unsigned int id) const;
    std::string NameOfParameter(unsigned int id) const;
};

/// Reads a document. What has another shape than the library expects is kept as a property.
DocumentModel ReadModel(const source::Value& root);

/// Gives the value that an absent member `name` counts as, or an empty text.
std::string DefaultOf(const std::string& name);

/// `Walk (11)`, or `#11` for a node without a name.
std::string NameAndId(const std::string& name, unsigned int id);

} // namespace vell::diff
