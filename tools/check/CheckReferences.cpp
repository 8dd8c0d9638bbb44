// VELL: data-driven hierarchical state machines.
// tools/check/CheckReferences.cpp: ids that lead nowhere, or to a node of the wrong kind.
#include "tools/check/NearId.h"
#include "tools/check/Rules.h"

#include <string>
#include <unordered_map>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

constexpr unsigned int kVersionWithStart = 3;

bool IsEnter(const NodeModel& node)
{
    return node.Is(BUILDER_Enter);
}

bool IsExit(const NodeModel& node)
{
    return node.Is(BUILDER_Exit);
}

bool IsConnector(const NodeModel& node)
{
    return node.Is(BUILDER_Connector);
}

/// What a transition or an enter node may lead to.
bool IsTarget(const NodeModel& node)
{
    return node.CanRun() && !node.Is(BUILDER_Enter) && !node.Is(BUILDER_Global);
}

bool IsStart(const NodeModel& node)
{
    return node.CanRun() && !node.IsEnd();
}

bool IsNumber(const Value* value)
{
    return value != nullptr && value->IsNumber();
}

/// The member of one node that names another.
class Reference
{
public:
    Reference(const DocumentModel& documentModel, const Value& ownerObject, __JSONTYPES__ member)
        : model(documentModel),
          value(check::Find(ownerObject, member)),
          id(value == nullptr ? 0 : ReadId(*value)),
          node(model.FindNode(id))
    {
    }

    /// True when the member is there and is a number. All else is told by the rules of members.
    bool IsWritten() const
    {
        return IsNumber(value);
    }

    const DocumentModel& model;
    const Value* value;
    unsigned int id;
    const NodeModel* node;
};

/// Says what to write in place of an enter node: what it leads to or the substate that it is of,
/// whichever is in this level.
std::string AdviseInsteadOf(const DocumentModel& model, const NodeModel& end, unsigned int level)
{
    if (!end.Is(BUILDER_Enter))
    {
        return "";
    }
    for (const NodeModel* node : {model.FindNode(end.entryTarget), model.FindNode(end.parentId)})
    {
        if (node != nullptr && node->CanRun() && !node->IsEnd() && node->parentId == level)
        {
            return "write " + std::to_string(node->id) + " to enter " + Titled(*node);
        }
    }
    return "";
}

/// An enter or global node that is entered like a state in this level. `begin` says by what.
void CheckEntered(const Reference& reference, unsigned int level, const std::string& begin,
                  Findings& findings)
{
    const NodeModel& node = *reference.node;
    if (!node.Is(BUILDER_Enter) && !node.Is(BUILDER_Global))
    {
        return;
    }
    findings.Add(Code::EndRunsAsState, reference.value->span,
                 begin + Named(node) + ", " + KindOf(node) + ": as a state it does nothing" +
                     (node.transitions.empty() ? ", and the machine stays there" : ""),
                 AdviseInsteadOf(reference.model, node, level));
}

void CheckTarget(const DocumentModel& model, const NodeModel& transition, Findings& findings)
{
    const Reference target(model, *transition.value, JSON_TransitionTarget);
    if (!target.IsWritten())
    {
        return;
    }
    const source::Span& place = target.value->span;
    if (target.id == 0)
    {
        findings.Add(Code::TargetZero, place,
                     Titled(transition) + " has the target 0, which means none: it never fires, "
                                          "and while it holds no transition behind it is tested");
    }
    else if (target.node == nullptr)
    {
        findings.Add(Code::TargetAbsent, place,
                     Titled(transition) + " leads to " + Absent(model, target.id),
                     SuggestNode(model, target.id, IsTarget));
    }
    else if (!target.node->CanRun())
    {
        findings.Add(Code::TargetCannotRun, place,
                     Titled(transition) + " leads to " + Named(*target.node) + ", " +
                         KindOf(*target.node) + ", which cannot run",
                     "", TitlePlace(*target.node->value), "its target");
    }
    else
    {
        const bool isListed = !transition.listers.empty();
        CheckEntered(target, isListed ? transition.listers[0]->parentId : 0,
                     Titled(transition) + " leads to ", findings);
    }
}

/// The enter or the exit node of a substate.
void CheckEnd(const DocumentModel& model, const NodeModel& substate, __JSONTYPES__ member,
              bool (*isWanted)(const NodeModel& node), Findings& findings)
{
    const Reference end(model, *substate.value, member);
    if (!end.IsWritten())
    {
        return;
    }
    const std::string name = GetJsonName(member);
    const Code code = member == JSON_SubstateEnter ? Code::SubstateEnter : Code::SubstateExit;
    const std::string begin = "'" + name + "' of " + Titled(substate) + " is ";
    const std::string effect = ": the substate cannot be entered";
    if (end.id == 0)
    {
        findings.Add(code, end.value->span,
                     begin + "0, which means none, " + LossWith(model, substate));
    }
    else if (end.node == nullptr)
    {
        findings.Add(code, end.value->span, begin + Absent(model, end.id),
                     SuggestNode(model, end.id, isWanted));
    }
    else if (!isWanted(*end.node))
    {
        findings.Add(code, end.value->span,
                     begin + Named(*end.node) + ", " + KindOf(*end.node) + " and not an " + name +
                         " node" + effect,
                     "", TitlePlace(*end.node->value), "the node");
    }
    else if (end.node->parentId != substate.id)
    {
        findings.Add(Code::EndOfOtherLevel, PlaceOf(*end.node->value, JSON_ParentID),
                     Titled(*end.node) + " is the " + name + " node of " + Named(substate) +
                         ", but its parentId is " + std::to_string(end.node->parentId),
                     "", end.value->span, "named here");
        findings.AddFix({end.node->value, GetJsonName(JSON_ParentID), substate.id});
    }
}

void CheckEntryTarget(const DocumentModel& model, const NodeModel& node, Findings& findings)
{
    const Reference target(model, *node.value, JSON_EntryTarget);
    if (!target.IsWritten())
    {
        return;
    }
    const source::Span& place = target.value->span;
    const std::string begin = "'entryTarget' of " + Titled(node) + " is ";
    if (target.id == 0)
    {
        findings.Add(Code::EntryTarget, place,
                     begin + "0, which means none, " + LossWith(model, node));
    }
    else if (target.node == nullptr)
    {
        findings.Add(Code::EntryTarget, place, begin + Absent(model, target.id),
                     SuggestNode(model, target.id, IsTarget));
    }
    else if (!target.node->CanRun())
    {
        findings.Add(Code::EntryTarget, place,
                     begin + Named(*target.node) + ", " + KindOf(*target.node) +
                         ", which cannot run",
                     "", TitlePlace(*target.node->value), "the node");
    }
    else if (target.node == &node)
    {
        findings.Add(Code::EndRunsAsState, place,
                     begin + "the node itself: as a state it does nothing, and the machine stays "
                             "there");
    }
    else if (target.node->enter == &node)
    {
        findings.Add(Code::EndRunsAsState, place,
                     begin + "its own substate " + Named(*target.node) +
                         ", which is then entered within itself and does nothing");
    }
    else
    {
        CheckEntered(target, node.parentId, begin, findings);
    }
}

void CheckExitConnector(const DocumentModel& model, const NodeModel& node, Findings& findings)
{
    const Reference connector(model, *node.value, JSON_ExitConnector);
    if (!connector.IsWritten() || connector.id == 0)
    {
        return;
    }
    const std::string begin = "'exitConnector' of " + Titled(node) + " is ";
    if (connector.node == nullptr)
    {
        findings.Add(Code::ExitConnectorWrong, connector.value->span,
                     begin + Absent(model, connector.id),
                     SuggestNode(model, connector.id, IsConnector));
    }
    else if (!connector.node->Is(BUILDER_Connector))
    {
        findings.Add(Code::ExitConnectorWrong, connector.value->span,
                     begin + Named(*connector.node) + ", " + KindOf(*connector.node) +
                         " and not a connector");
    }
}

/// Says which parameter an id that none has may mean.
std::string AdviseParameter(const DocumentModel& model, unsigned int id)
{
    if (const NodeModel* node = model.FindNode(id))
    {
        return "it is the id of " + Titled(*node);
    }
    return SuggestParameter(model, id);
}

void CheckConditionParameters(const DocumentModel& model, const NodeModel& transition,
                              Findings& findings)
{
    for (std::size_t i = 0; i < transition.conditions.size(); ++i)
    {
        const ConditionModel& condition = transition.conditions[i];
        const Value* value = Find(*condition.value, JSON_ConditionParameter);
        const std::string begin = TitledCondition(transition, i) + " tests ";
        if (condition.parameter != nullptr || !IsNumber(value) ||
            model.FindMisnumbered(condition.parameterId) != nullptr)
        {
            continue;
        }
        if (condition.parameterId == 0)
        {
            findings.Add(Code::ConditionParameter, value->span,
                         begin + "parameter 0, which means none: it and the conditions behind it "
                                 "are left out");
            continue;
        }
        findings.Add(Code::ConditionParameter, value->span,
                     begin + "parameter " + std::to_string(condition.parameterId) +
                         ", which does not exist",
                     AdviseParameter(model, condition.parameterId));
    }
}

void CheckConditionCount(const NodeModel& transition, Findings& findings)
{
    const Value* conditions = Find(*transition.value, JSON_Conditions);
    if (conditions == nullptr || (conditions->IsArray() && conditions->elements.empty()))
    {
        findings.Add(Code::NoConditions, PlaceOf(*transition.value, JSON_Conditions),
                     Titled(transition) +
                         " has no conditions: only a trigger of the host can make it fire");
    }
}

/// Two enter nodes with one parent: the library files the first and says so.
void CheckEnterNodes(const DocumentModel& model, Findings& findings)
{
    std::unordered_map<unsigned int, const NodeModel*> firsts;
    for (const NodeModel& node : model.nodes)
    {
        if (!node.Is(BUILDER_Enter))
        {
            continue;
        }
        const auto entry = firsts.emplace(node.parentId, &node);
        const NodeModel* parent = model.FindNode(node.parentId);
        if (entry.second)
        {
            continue;
        }
        const std::string level =
            parent != nullptr ? Named(*parent) : "parent " + std::to_string(node.parentId);
        findings.Add(Code::SecondEnterNode, TitlePlace(*node.value),
                     Titled(node) + " is the second enter node of " + level + ": a level has one",
                     "", TitlePlace(*entry.first->second->value), "the first");
    }
}

void CheckSubstateRoot(const DocumentModel& model, Findings& findings)
{
    const Value& head = *model.head;
    const Value* version = Find(head, JSON_HeadVersion);
    if (version != nullptr && version->IsInteger() && version->ReadUInt() < kVersionWithStart)
    {
        findings.Add(Code::VersionWithoutStart, version->span,
                     "the machine starts nothing: 'substateRoot' is read from version 3 on, and "
                     "the version is " +
                         std::to_string(version->ReadUInt()),
                     "write 3");
        return;
    }
    const Reference start(model, head, JSON_HeadSubstateRoot);
    if (!start.IsWritten())
    {
        return;
    }
    const source::Span& place = start.value->span;
    const std::string effect = ": the machine starts nothing";
    if (start.id == 0)
    {
        findings.Add(Code::StartWrong, place, "'substateRoot' is 0, which means none" + effect);
    }
    else if (start.node == nullptr)
    {
        findings.Add(Code::StartWrong, place, "'substateRoot' is " + Absent(model, start.id),
                     SuggestNode(model, start.id, IsStart));
    }
    else if (!start.node->CanRun())
    {
        findings.Add(Code::StartWrong, place,
                     "'substateRoot' is " + Named(*start.node) + ", " + KindOf(*start.node) +
                         ", which cannot run" + effect);
    }
    else if (start.node->IsEnd())
    {
        findings.Add(Code::EndRunsAsState, place,
                     "'substateRoot' is " + Named(*start.node) + ", " + KindOf(*start.node) +
                         ": as a state it does nothing" +
                         (start.node->transitions.empty() ? ", and the machine stays there" : ""),
                     AdviseInsteadOf(model, *start.node, 0));
    }
}

void CheckEnterNode(const DocumentModel& model, Findings& findings)
{
    const Reference enter(model, *model.head, JSON_HeadEnterNode);
    if (!enter.IsWritten())
    {
        return;
    }
    const source::Span& place = enter.value->span;
    if (enter.id == 0)
    {
        findings.Add(Code::EnterNodeAbsent, place,
                     "'enterNode' is 0, which means none: the document is refused");
    }
    else if (enter.node == nullptr)
    {
        findings.Add(Code::EnterNodeAbsent, place, "'enterNode' is " + Absent(model, enter.id),
                     SuggestNode(model, enter.id, IsStart));
    }
    else if (model.IsInGlobal(*enter.node))
    {
        findings.Add(Code::EnterNodeAbsent, place,
                     "'enterNode' is " + Named(*enter.node) +
                         ", a node of 'global': these are read later, so the library does not "
                         "find it");
    }
    else if (!enter.node->CanRun())
    {
        findings.Add(Code::EnterNodeCannotRun, place,
                     "'enterNode' is " + Named(*enter.node) + ", " + KindOf(*enter.node) +
                         ", which cannot run");
    }
}

void CheckLayers(const DocumentModel& model, Findings& findings)
{
    const Value* layers = Find(model.root, JSON_Layers);
    const Value* nodes = Find(model.root, JSON_Nodes);
    if (nodes != nullptr)
    {
        findings.Add(Code::NodesAtRoot, model.root.FindMember(GetJsonName(JSON_Nodes))->nameSpan,
                     "the root has 'nodes': nodes are read from the layers only");
    }
    if (layers != nullptr && layers->IsArray() && layers->elements.empty())
    {
        findings.Add(Code::NoLayers, layers->span,
                     "there are no layers, so there is nothing to run");
        findings.hasLostNodes = true;
    }
}

void CheckGlobals(const DocumentModel& model, Findings& findings)
{
    const NodeModel* first = nullptr;
    for (const NodeModel& node : model.nodes)
    {
        if (!node.Is(BUILDER_Global) || !node.isFirst)
        {
            continue;
        }
        if (!model.IsInGlobal(node))
        {
            findings.Add(Code::GlobalInLayer, TitlePlace(*node.value),
                         Titled(node) + " is in a layer, where it has no effect; move it into "
                                        "'global'");
            continue;
        }
        if (first != nullptr)
        {
            findings.Add(Code::SecondGlobalNode, TitlePlace(*first->value),
                         Titled(*first) + " has no effect: of several global nodes the last counts",
                         "", TitlePlace(*node.value), "a later one");
        }
        first = &node;
    }
    const Value* global = model.arrays.back().value;
    if (global != nullptr && global->IsArray() && !global->elements.empty() && first == nullptr)
    {
        findings.Add(Code::NoGlobalNode, global->span,
                     "'global' has no node with the builder 'global', so nothing interrupts the "
                     "machine");
    }
}

} // namespace

void CheckReferences(const DocumentModel& model, Findings& findings)
{
    if (model.head != nullptr)
    {
        CheckSubstateRoot(model, findings);
        CheckEnterNode(model, findings);
    }
    CheckLayers(model, findings);
    CheckGlobals(model, findings);
    CheckEnterNodes(model, findings);
    for (const NodeModel& node : model.nodes)
    {
        switch (node.builder)
        {
        case BUILDER_Transition:
            CheckTarget(model, node, findings);
            CheckConditionCount(node, findings);
            CheckConditionParameters(model, node, findings);
            break;
        case BUILDER_Substate:
            CheckEnd(model, node, JSON_SubstateEnter, IsEnter, findings);
            CheckEnd(model, node, JSON_SubstateExit, IsExit, findings);
            break;
        case BUILDER_Enter:
        case BUILDER_Exit:
            CheckEntryTarget(model, node, findings);
            break;
        default:
            break;
        }
        CheckExitConnector(model, node, findings);
    }
}

} // namespace vell::check
