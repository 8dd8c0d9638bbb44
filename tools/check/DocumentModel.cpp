// VELL: data-driven hierarchical state machines.
// tools/check/DocumentModel.cpp: reading the nodes of a document and linking them by id.
#include "tools/check/DocumentModel.h"

#include "platform/durm/Vocabulary.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

constexpr int kDefaultPriority = 5;
constexpr unsigned int kVersionWithStart = 3;

/// Gives the first element of an array when it is an object.
const Value* FirstObject(const Value* array)
{
    const bool has = array != nullptr && array->IsArray() && !array->elements.empty();
    return has && array->elements.front().IsObject() ? &array->elements.front() : nullptr;
}

int ReadConditionType(const Value& condition)
{
    const std::string name(ReadText(condition, JSON_ConditionType));
    const int type = GetParameterName(name.c_str());
    const bool isTestable =
        type == PARAM_Bool || type == PARAM_Integer || type == PARAM_Float || type == PARAM_Message;
    return isTestable ? type : PARAM_None;
}

const char* BuilderWord(int builder)
{
    for (const Word& word : kBuilders)
    {
        if (word.number == builder)
        {
            return word.text;
        }
    }
    return nullptr;
}

bool IsStateBuilder(int builder)
{
    return builder == BUILDER_Generic || builder == BUILDER_AnimClip || builder == BUILDER_Global ||
           builder == BUILDER_Enter || builder == BUILDER_Exit || builder == BUILDER_Substate;
}

} // namespace

const Value* Find(const Value& value, __JSONTYPES__ member)
{
    return value.Find(GetJsonName(member));
}

unsigned int ReadId(const Value& object, __JSONTYPES__ member)
{
    const Value* value = Find(object, member);
    return value == nullptr ? 0 : ReadId(*value);
}

unsigned int ReadId(const Value& value)
{
    if (value.IsString())
    {
        constexpr std::size_t kMostDigits = 9; // fits 32 bits
        const bool isDigits = !value.text.empty() && value.text.size() <= kMostDigits + 1 &&
                              value.text.find_first_not_of("0123456789") == std::string::npos;
        const std::uint64_t number = isDigits ? std::stoull(value.text) : 0;
        return number > std::numeric_limits<unsigned int>::max()
                   ? 0
                   : static_cast<unsigned int>(number);
    }
    const double size = std::fabs(value.number);
    const bool isMeant = value.IsNumber() && value.kind != source::Kind::UInt &&
                         std::floor(size) == size &&
                         size <= std::numeric_limits<unsigned int>::max();
    return isMeant ? static_cast<unsigned int>(size) : value.ReadUInt();
}

std::string_view ReadText(const Value* value)
{
    if (value == nullptr || !value->IsString())
    {
        return {};
    }
    const std::string_view text = value->text;
    return text.substr(0, text.find('\0'));
}

std::string_view ReadText(const Value& object, __JSONTYPES__ member)
{
    return ReadText(Find(object, member));
}

unsigned int CrcOf(std::string_view name)
{
    std::string text(name);
    return ConvertStringToCRC(text);
}

source::Span PlaceOf(const Value& object, __JSONTYPES__ member)
{
    const Value* value = Find(object, member);
    return value == nullptr ? TitlePlace(object) : value->span;
}

source::Span TitlePlace(const Value& object)
{
    for (const __JSONTYPES__ member : {JSON_Name, JSON_ID})
    {
        if (const Value* value = Find(object, member))
        {
            return value->span;
        }
    }
    source::Span brace = object.span;
    if (object.IsObject())
    {
        brace.end = brace.begin;
        ++brace.end.column;
        ++brace.end.offset;
    }
    return brace;
}

bool NodeModel::IsOfHost() const
{
    return builder != 0 && BuilderWord(builder) == nullptr;
}

bool NodeModel::IsEnd() const
{
    return Is(DURMBaseLib::BUILDER_Enter) || Is(DURMBaseLib::BUILDER_Exit) ||
           Is(DURMBaseLib::BUILDER_Global);
}

bool NodeModel::CanRun() const
{
    return IsStateBuilder(builder) || BuilderWord(builder) == nullptr;
}

DocumentModel::DocumentModel(const Value& documentRoot) : root(documentRoot)
{
    const Value* headValue = Find(root, JSON_Head);
    head = headValue != nullptr && headValue->IsObject() ? headValue : nullptr;
    ReadParameters();
    ReadArrays();
    InferId();
    Link();
}

NodeModel* DocumentModel::FindNode(unsigned int id) const
{
    const auto entry = nodesById.find(id);
    return id == 0 || entry == nodesById.end() ? nullptr
                                               : const_cast<NodeModel*>(&nodes[entry->second]);
}

const ParameterModel* DocumentModel::FindParameter(unsigned int id) const
{
    const auto entry = parametersById.find(id);
    return id == 0 || entry == parametersById.end() ? nullptr : &parameters[entry->second];
}

const NodeModel* DocumentModel::FindOwnerOfCondition(unsigned int id) const
{
    const auto entry = ownersByConditionId.find(id);
    return id == 0 || entry == ownersByConditionId.end() ? nullptr : &nodes[entry->second];
}

const ParameterModel* DocumentModel::FindParameterByCrc(unsigned int crc) const
{
    const auto entry = parametersByCrc.find(crc);
    return entry == parametersByCrc.end() ? nullptr : &parameters[entry->second];
}

const ParameterModel* DocumentModel::FindMisnumbered(unsigned int id) const
{
    const ParameterModel* parameter = id == 0 ? nullptr : FindParameterByCrc(id);
    const bool isWrong = parameter != nullptr && !parameter->name.empty() && parameter->id != id;
    return isWrong && FindParameterByName(parameter->name) == parameter ? parameter : nullptr;
}

const ParameterModel* DocumentModel::FindParameterByName(std::string_view name) const
{
    const auto entry = parametersByName.find(name);
    return entry == parametersByName.end() ? nullptr : &parameters[entry->second];
}

void DocumentModel::ReadParameters()
{
    const Value* array = Find(root, JSON_Parameters);
    if (array == nullptr)
    {
        return;
    }
    for (const Value& value : array->elements)
    {
        if (!value.IsObject())
        {
            continue;
        }
        ParameterModel parameter;
        parameter.value = &value;
        parameter.name = ReadText(value, JSON_Name);
        parameter.id = ReadId(value, JSON_ID);
        const std::string type(ReadText(value, JSON_ParameterType));
        parameter.type = GetParameterName(type.c_str());
        parametersById.emplace(parameter.id, parameters.size());
        parametersByCrc.emplace(CrcOf(parameter.name), parameters.size());
        parametersByName.emplace(parameter.name, parameters.size());
        parameters.push_back(parameter);
    }
}

void DocumentModel::ReadArrays()
{
    if (const Value* layers = Find(root, JSON_Layers))
    {
        for (const Value& layer : layers->elements)
        {
            arrays.push_back({Find(layer, JSON_Nodes), ReadText(layer, JSON_Name), false});
        }
    }
    arrays.push_back({Find(root, JSON_Global), {}, true});

    std::size_t count = 0;
    for (const NodeArray& array : arrays)
    {
        count += array.value == nullptr ? 0 : array.value->elements.size();
    }
    nodes.reserve(count);
    nodesById.reserve(count);
    for (std::size_t i = 0; i < arrays.size(); ++i)
    {
        if (arrays[i].value == nullptr)
        {
            continue;
        }
        for (const Value& value : arrays[i].value->elements)
        {
            if (value.IsObject())
            {
                ReadNode(value);
                nodes.back().array = static_cast<int>(i);
            }
        }
    }
}

void DocumentModel::ReadNode(const Value& value)
{
    NodeModel node;
    node.value = &value;
    node.name = ReadText(value, JSON_Name);
    node.id = ReadId(value, JSON_ID);
    node.parentId = ReadId(value, JSON_ParentID);
    const std::string builder(ReadText(value, JSON_BuilderType));
    node.builder = GetBuilderIndex(builder.c_str());
    node.isFirst = nodesById.emplace(node.id, nodes.size()).second;
    if (node.Is(BUILDER_Transition))
    {
        ReadTransition(node);
    }
    else if (node.Is(BUILDER_Enter) || node.Is(BUILDER_Exit))
    {
        node.entryTarget = ReadId(value, JSON_EntryTarget);
    }
    nodes.push_back(std::move(node));
}

void DocumentModel::ReadTransition(NodeModel& node)
{
    const Value& value = *node.value;
    node.target = ReadId(value, JSON_TransitionTarget);
    const Value* priority = Find(value, JSON_TransitionPriority);
    node.priority = priority == nullptr ? kDefaultPriority : static_cast<int>(priority->ReadUInt());
    const Value* disabled = Find(value, JSON_TransitionDisabled);
    node.isDisabled = disabled != nullptr && disabled->IsBool() && disabled->boolean;
    const Value* conditions = Find(value, JSON_Conditions);
    if (conditions == nullptr)
    {
        return;
    }
    for (const Value& condition : conditions->elements)
    {
        if (condition.IsObject())
        {
            node.conditions.push_back(ReadCondition(condition));
            ownersByConditionId.emplace(ReadId(condition, JSON_ID), nodes.size());
        }
    }
}

ConditionModel DocumentModel::ReadCondition(const Value& value) const
{
    ConditionModel condition;
    condition.value = &value;
    condition.parameterId = ReadId(value, JSON_ConditionParameter);
    condition.parameter = FindParameter(condition.parameterId);
    condition.type = ReadConditionType(value);
    const std::string word(ReadText(value, JSON_ConditionEvaluation));
    condition.evaluation = GetEvaluationEnum(word.c_str());
    const Value* first = FirstObject(Find(value, JSON_ConditionValue));
    condition.operand = first == nullptr ? nullptr : Find(*first, JSON_Value);
    return condition;
}

void DocumentModel::InferId()
{
    NodeModel* without = nullptr;
    for (NodeModel& node : nodes)
    {
        if (node.id == 0 && without != nullptr)
        {
            return;
        }
        without = node.id == 0 ? &node : without;
    }
    const unsigned int missed = without == nullptr ? 0 : FindMissedId(*without);
    if (missed != 0)
    {
        without->id = missed;
        without->isIdInferred = true;
        nodesById.emplace(missed, static_cast<std::size_t>(without - nodes.data()));
    }
}

/// Gives the only id that other nodes refer to and none has, when `without` may be what is meant;
/// 0 otherwise.
unsigned int DocumentModel::FindMissedId(const NodeModel& without) const
{
    unsigned int missed = 0;
    bool isOnly = true;
    const auto take = [&](unsigned int id, bool isMeant)
    {
        if (id != 0 && FindNode(id) == nullptr)
        {
            isOnly = isOnly && isMeant && (missed == 0 || missed == id);
            missed = id;
        }
    };
    for (const NodeModel& node : nodes)
    {
        take(node.target, without.CanRun());
        take(node.entryTarget, without.CanRun());
        take(node.parentId, without.Is(BUILDER_Substate));
        if (node.Is(BUILDER_Substate))
        {
            take(ReadId(*node.value, JSON_SubstateEnter), without.Is(BUILDER_Enter));
            take(ReadId(*node.value, JSON_SubstateExit), without.Is(BUILDER_Exit));
        }
        const Value* children = Find(*node.value, JSON_Children);
        const std::size_t count = children == nullptr ? 0 : children->elements.size();
        for (std::size_t i = 0; i < count; ++i)
        {
            take(ReadId(children->elements[i]),
                 without.Is(BUILDER_Transition) || node.Is(BUILDER_Substate));
        }
    }
    if (head != nullptr)
    {
        take(ReadId(*head, JSON_HeadEnterNode), without.CanRun());
        take(ReadId(*head, JSON_HeadSubstateRoot), without.CanRun());
    }
    return isOnly ? missed : 0;
}

void DocumentModel::Link()
{
    for (NodeModel& node : nodes)
    {
        LinkChildren(node);
        if (node.Is(BUILDER_Substate))
        {
            node.enter = FindNode(ReadId(*node.value, JSON_SubstateEnter));
            node.exit = FindNode(ReadId(*node.value, JSON_SubstateExit));
        }
        if (IsInGlobal(node) && node.Is(BUILDER_Global) && node.isFirst)
        {
            global = &node;
        }
    }
    if (head != nullptr && ReadId(*head, JSON_HeadVersion) >= kVersionWithStart)
    {
        NodeModel* state = FindNode(ReadId(*head, JSON_HeadSubstateRoot));
        start = state != nullptr && state->CanRun() ? state : nullptr;
    }
}

/// Gives the id of a child, also where its name or the node itself is written.
unsigned int DocumentModel::ReadChildId(const Value& value) const
{
    if (value.IsObject())
    {
        return ReadId(value, JSON_ID);
    }
    const unsigned int id = ReadId(value);
    if (id != 0 || !value.IsString())
    {
        return id;
    }
    const auto isNamed = [&value](const NodeModel& node)
    {
        return !node.name.empty() && node.name == value.text;
    };
    if (namesLookedUp == kMostNames)
    {
        return 0;
    }
    ++namesLookedUp;
    const auto found = std::find_if(nodes.begin(), nodes.end(), isNamed);
    return found == nodes.end() ? 0 : found->id;
}

void DocumentModel::LinkChildren(NodeModel& node)
{
    const Value* children = Find(*node.value, JSON_Children);
    if (children == nullptr)
    {
        return;
    }
    // A list that lacks its brackets is read all the same.
    const std::size_t count = children->IsArray() ? children->elements.size() : 1;
    node.children.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const Value& value = children->IsArray() ? children->elements[i] : *children;
        const unsigned int id = ReadChildId(value);
        NodeModel* child = FindNode(id);
        node.children.push_back({&value, child, id});
        if (child == nullptr)
        {
            continue;
        }
        // Its listers are appended node by node, so a node that has it twice is the last.
        if (child->listers.empty() || child->listers.back() != &node)
        {
            child->listers.push_back(&node);
        }
        if (child->Is(BUILDER_Transition) && !child->isDisabled && node.CanRun())
        {
            node.transitions.push_back(child);
        }
    }
    const auto isBefore = [](const NodeModel* left, const NodeModel* right)
    {
        return left->priority < right->priority;
    };
    std::stable_sort(node.transitions.begin(), node.transitions.end(), isBefore);
}

std::string Named(const NodeModel& node)
{
    const std::string id = std::to_string(node.id);
    return node.name.empty() ? "node " + id : "'" + std::string(node.name) + "' (" + id + ")";
}

std::string Named(const ParameterModel& parameter)
{
    const std::string id = std::to_string(parameter.id);
    return parameter.name.empty() ? "parameter " + id
                                  : "'" + std::string(parameter.name) + "' (" + id + ")";
}

std::string Titled(const NodeModel& node)
{
    std::string word = "node";
    if (node.Is(BUILDER_Enter) || node.Is(BUILDER_Exit) || node.Is(BUILDER_Global))
    {
        word = std::string(BuilderWord(node.builder)) + " node";
    }
    else if (node.Is(BUILDER_Generic) || node.Is(BUILDER_AnimClip))
    {
        word = "state";
    }
    else if (const char* text = BuilderWord(node.builder))
    {
        word = node.Is(BUILDER_Base) ? "node" : text;
    }
    const std::string id = std::to_string(node.id);
    return node.name.empty() ? word + " " + id : word + " " + Named(node);
}

std::string TitledCondition(const NodeModel& transition, std::size_t index)
{
    const std::string which = transition.conditions.size() == 1
                                  ? "the condition"
                                  : "condition " + std::to_string(index + 1);
    return which + " of " + Titled(transition);
}

std::string Absent(const DocumentModel& model, unsigned int id)
{
    const std::string text = std::to_string(id);
    if (const ParameterModel* parameter = model.FindParameter(id))
    {
        return text + ", which is the " +
               (parameter->name.empty() ? "id of a parameter"
                                        : "parameter '" + std::string(parameter->name) + "'") +
               " and not a node";
    }
    if (const NodeModel* owner = model.FindOwnerOfCondition(id))
    {
        return text + ", which is the id of a condition of " + Titled(*owner) + " and not a node";
    }
    return "node " + text + ", which does not exist";
}

std::string LossWith(const DocumentModel& model, const NodeModel& node)
{
    return model.IsInGlobal(node) ? "so it and what is behind it in 'global' are not read"
                                  : "so all layers are lost";
}

std::string KindOf(const NodeModel& node)
{
    switch (node.builder)
    {
    case BUILDER_Enter:
        return "an enter node";
    case BUILDER_Exit:
        return "an exit node";
    case BUILDER_Global:
        return "a global node";
    case BUILDER_Generic:
    case BUILDER_AnimClip:
        return "a state";
    case BUILDER_Base:
        return "a base node";
    default:
        break;
    }
    const char* word = BuilderWord(node.builder);
    return word == nullptr ? "a node of another kind" : "a " + std::string(word);
}

} // namespace vell::check
