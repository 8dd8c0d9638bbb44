// VELL: data-driven hierarchical state machines.
// tools/check/DocumentModel.h: the nodes and parameters of a document, and who names whom.
#pragma once

#include <durm/DURMBaseLib.h>

#include "tools/source/Value.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vell::check
{

struct NodeModel;

struct ParameterModel
{
    const source::Value* value = nullptr; ///< the object
    std::string_view name;
    unsigned int id = 0;
    int type = 0; ///< number of the parameter type, 0 when it is not known
};

struct ConditionModel
{
    const source::Value* value = nullptr; ///< the object
    const source::Value* operand = nullptr;
    const ParameterModel* parameter = nullptr; ///< null when there is none with this id
    unsigned int parameterId = 0;
    int type = 0;       ///< number of the condition's own type, 0 when it cannot be a condition's
    int evaluation = 0; ///< number of the operator, 0 when it is not known
};

/// A node in a list of children.
struct ChildModel
{
    const source::Value* value = nullptr; ///< the number in the list
    NodeModel* node = nullptr;            ///< null when no node has this id
    unsigned int id = 0;
};

/// A node as the document writes it. `id` and the others are what the library reads or, where that
/// is told to be wrong, what is evidently meant: of "1010" and 1010.0 the number.
struct NodeModel
{
    const source::Value* value = nullptr; ///< the object
    std::string_view name;
    unsigned int id = 0;
    unsigned int parentId = 0;
    int builder = 0;
    int array = 0;             ///< counted from 0 over the layers; the last is `global`
    bool isFirst = true;       ///< false when an earlier node has its id
    bool isIdInferred = false; ///< it has none, and `id` is the one that all others miss

    std::vector<ChildModel> children;
    std::vector<NodeModel*> listers; ///< the nodes whose children have it, each once

    // Of a transition.
    unsigned int target = 0;
    int priority = 0;
    bool isDisabled = false;
    std::vector<ConditionModel> conditions;

    // Of a state.
    std::vector<NodeModel*> transitions; ///< in force, in the order in which they are tested
    NodeModel* enter = nullptr;          ///< of a substate: its enter node
    NodeModel* exit = nullptr;

    // Of an enter or exit node.
    unsigned int entryTarget = 0;

    /// True when a host has to register its builder.
    bool IsOfHost() const;
    bool Is(int builderNumber) const
    {
        return builder == builderNumber;
    }
    /// True for an enter, exit or global node: a state can be created from it, but it is none.
    bool IsEnd() const;
    /// Tells whether a state can be created from it. One of a host's own builder may, and so may
    /// one without a valid builder, which is told elsewhere.
    bool CanRun() const;
};

/// One array of nodes: that of a layer, or `global`.
struct NodeArray
{
    const source::Value* value = nullptr; ///< the array; null when there is none
    std::string_view layer;               ///< the layer's name; empty for `global`
    bool isGlobal = false;
};

/// The document as the library files it: of two nodes with one id the first counts. Built in linear
/// time from any document; what is not of the right type is as if it were missing. The document
/// must outlive this.
class DocumentModel
{
public:
    explicit DocumentModel(const source::Value& root);
    DocumentModel(const DocumentModel&) = delete;
    DocumentModel& operator=(const DocumentModel&) = delete;

    /// Gives the node that `id` means, or null.
    NodeModel* FindNode(unsigned int id) const;
    const ParameterModel* FindParameter(unsigned int id) const;
    /// Gives the transition with a condition that has this id, or null. Nothing reads these ids.
    const NodeModel* FindOwnerOfCondition(unsigned int id) const;
    /// Gives the parameter whose name has this CRC, whatever its id is.
    const ParameterModel* FindParameterByCrc(unsigned int crc) const;
    /// Gives the parameter that should have the id and has another or none; null when there is
    /// none, or when it is the second of its name.
    const ParameterModel* FindMisnumbered(unsigned int id) const;
    const ParameterModel* FindParameterByName(std::string_view name) const;

    /// Tells whether a node is in `global` rather than in a layer.
    bool IsInGlobal(const NodeModel& node) const
    {
        return arrays[static_cast<std::size_t>(node.array)].isGlobal;
    }

    const source::Value& root;
    const source::Value* head = nullptr; ///< null when it is missing or not an object
    std::vector<NodeArray> arrays;
    std::vector<NodeModel> nodes; ///< in the order of the document
    std::vector<ParameterModel> parameters;
    NodeModel* start = nullptr;  ///< what the machine starts with; null when that cannot run
    NodeModel* global = nullptr; ///< the node whose transitions start blips

private:
    void ReadParameters();
    void ReadArrays();
    void ReadNode(const source::Value& value);
    void ReadTransition(NodeModel& node);
    ConditionModel ReadCondition(const source::Value& value) const;
    void InferId();
    unsigned int FindMissedId(const NodeModel& without) const;
    void Link();
    unsigned int ReadChildId(const source::Value& value) const;
    void LinkChildren(NodeModel& node);

    /// So many children that are written as names are looked up.
    static constexpr int kMostNames = 100;

    mutable int namesLookedUp = 0;
    std::unordered_map<unsigned int, std::size_t> nodesById;
    std::unordered_map<unsigned int, std::size_t> parametersById;
    std::unordered_map<unsigned int, std::size_t> parametersByCrc;
    std::unordered_map<std::string_view, std::size_t> parametersByName;
    std::unordered_map<unsigned int, std::size_t> ownersByConditionId;
};

// Reading as the library reads: a missing member or one of another type gives 0, false or an empty
// text. A text ends at its first null character. But an id that is written in another way, such as
// "1010", is read as it is meant: that it is wrong is told by the rules of members.

/// Gives the member's value; null when there is none or `value` is no object.
const source::Value* Find(const source::Value& value, DURMBaseLib::__JSONTYPES__ member);
unsigned int ReadId(const source::Value& object, DURMBaseLib::__JSONTYPES__ member);
unsigned int ReadId(const source::Value& value);
std::string_view ReadText(const source::Value& object, DURMBaseLib::__JSONTYPES__ member);
std::string_view ReadText(const source::Value* value);
/// Gives the CRC of a text, which is the id of a parameter of that name.
unsigned int CrcOf(std::string_view name);
/// Gives the place of the member's value, or of its object's beginning where it is missing.
source::Span PlaceOf(const source::Value& object, DURMBaseLib::__JSONTYPES__ member);

// Words for messages.

/// Gives `'Walk' (11)`, or `node 11` for one without a name.
std::string Named(const NodeModel& node);
/// Gives `'speed' (254213878)`.
std::string Named(const ParameterModel& parameter);
/// Gives `transition 'Stop' (20)`: the word for its builder, then as above.
std::string Titled(const NodeModel& node);
/// Gives `condition 2 of transition 'Stop' (20)`; `index` is counted from 0.
std::string TitledCondition(const NodeModel& transition, std::size_t index);
/// Says what an id is that should be a node's: `node 7, which does not exist`.
std::string Absent(const DocumentModel& model, unsigned int id);
/// Says what is lost with a node that the library cannot build: `so no layer is read`.
std::string LossWith(const DocumentModel& model, const NodeModel& node);
/// Gives the word for a builder with its article: `a transition`.
std::string KindOf(const NodeModel& node);
/// Gives the place that stands for a node: its name or else its id, or else its beginning.
source::Span TitlePlace(const source::Value& object);

} // namespace vell::check
