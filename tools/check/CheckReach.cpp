// VELL: data-driven hierarchical state machines.
// tools/check/CheckReach.cpp: states that are never entered or never left, and blips without end.
#include "tools/check/Rules.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;

using NodeSet = std::unordered_set<const NodeModel*>;

/// Gives the state that a substate starts with, or null.
NodeModel* FirstOf(const DocumentModel& model, const NodeModel& state)
{
    const bool hasEnter =
        state.Is(BUILDER_Substate) && state.enter != nullptr && state.enter->Is(BUILDER_Enter);
    return hasEnter ? model.FindNode(state.enter->entryTarget) : nullptr;
}

/// Calls `use(state)` for every state that may run because `state` does.
template <class Use>
void ForEachNext(const DocumentModel& model, const NodeModel& state, Use use)
{
    const auto offer = [&use](const NodeModel* next)
    {
        if (next != nullptr && next->CanRun())
        {
            use(*next);
        }
    };
    for (const NodeModel* transition : state.transitions)
    {
        offer(model.FindNode(transition->target));
    }
    offer(FirstOf(model, state));
}

/// Gives the states that run at some time: on the main stack and, when asked, in blips.
NodeSet FindReached(const DocumentModel& model, bool withBlips)
{
    NodeSet reached;
    std::vector<const NodeModel*> open;
    const auto reach = [&reached, &open](const NodeModel& state)
    {
        if (reached.insert(&state).second)
        {
            open.push_back(&state);
        }
    };
    reach(*model.start);
    if (withBlips && model.global != nullptr)
    {
        reach(*model.global);
    }
    while (!open.empty())
    {
        const NodeModel& state = *open.back();
        open.pop_back();
        ForEachNext(model, state, reach);
    }
    return reached;
}

/// Gives the states from which an exit node can be reached.
NodeSet FindEnding(const DocumentModel& model)
{
    std::unordered_map<const NodeModel*, std::vector<const NodeModel*>> before;
    NodeSet ending;
    std::vector<const NodeModel*> open;
    for (const NodeModel& node : model.nodes)
    {
        ForEachNext(model, node,
                    [&before, &node](const NodeModel& next)
                    {
                        before[&next].push_back(&node);
                    });
        if (node.Is(BUILDER_Exit))
        {
            ending.insert(&node);
            open.push_back(&node);
        }
    }
    while (!open.empty())
    {
        const auto known = before.find(open.back());
        open.pop_back();
        if (known == before.end())
        {
            continue;
        }
        for (const NodeModel* node : known->second)
        {
            if (ending.insert(node).second)
            {
                open.push_back(node);
            }
        }
    }
    return ending;
}

bool IsPlainState(const NodeModel& node)
{
    return node.CanRun() && !node.IsEnd();
}

void CheckUnreached(const DocumentModel& model, const NodeSet& reached, Findings& findings)
{
    for (const NodeModel& node : model.nodes)
    {
        const NodeModel* parent = model.FindNode(node.parentId);
        const bool isWithParent = parent != nullptr && parent != &node && IsPlainState(*parent) &&
                                  reached.count(parent) == 0;
        if (!node.isFirst || !IsPlainState(node) || reached.count(&node) != 0 || isWithParent)
        {
            continue;
        }
        const std::string within =
            node.Is(BUILDER_Substate) ? ", and neither is what it contains" : "";
        findings.Add(Code::StateUnreached, TitlePlace(*node.value),
                     Titled(node) + " is never entered" + within +
                         ": no transition in force leads to it from the start");
    }
}

/// Enter and exit nodes that no substate names; an exit node may also be a target.
void CheckUnused(const DocumentModel& model, const NodeSet& reached, Findings& findings)
{
    NodeSet named;
    for (const NodeModel& node : model.nodes)
    {
        named.insert(node.enter);
        named.insert(node.exit);
    }
    for (const NodeModel& node : model.nodes)
    {
        const bool isEnd = node.Is(BUILDER_Enter) || node.Is(BUILDER_Exit);
        if (!isEnd || !node.isFirst || named.count(&node) != 0 || reached.count(&node) != 0)
        {
            continue;
        }
        const std::string member = node.Is(BUILDER_Enter) ? "'enter'" : "'exit'";
        findings.Add(Code::EndUnused, TitlePlace(*node.value),
                     Titled(node) + " is the " + member +
                         " of no substate and the target of no transition in force");
    }
}

void ReportNeverLeft(const NodeModel& node, Findings& findings)
{
    if (node.Is(BUILDER_Exit))
    {
        findings.Add(Code::EndRunsAsState, TitlePlace(*node.value),
                     Titled(node) + " is reached on the main stack, and no substate around it has "
                                    "a transition in force: the machine stays there");
        return;
    }
    findings.Add(Code::StateNeverLeft, TitlePlace(*node.value),
                 Titled(node) + " is never left: it has no transition in force, and "
                                "neither has a substate around it");
}

/// A state that is left by no transition of its own and of no level around it; and so an exit node
/// that ends no blip.
void CheckDeadEnds(const DocumentModel& model, const NodeSet& reached, Findings& findings)
{
    if (reached.size() < 2)
    {
        return;
    }
    const NodeSet onMainStack = FindReached(model, false);
    // Whether a substate or one around it has a transition, asked once of each.
    std::unordered_map<const NodeModel*, bool> isLeft;
    const auto find = [&](const NodeModel& node)
    {
        std::vector<const NodeModel*> asked;
        const NodeModel* at = &node;
        bool result = false;
        while (at != nullptr)
        {
            const auto entry = isLeft.emplace(at, false);
            if (!entry.second)
            {
                result = entry.first->second;
                break;
            }
            asked.push_back(at);
            if (!at->transitions.empty())
            {
                result = true;
                break;
            }
            const NodeModel* parent = model.FindNode(at->parentId);
            at = parent != nullptr && parent->Is(BUILDER_Substate) ? parent : nullptr;
        }
        for (const NodeModel* substate : asked)
        {
            isLeft[substate] = result;
        }
        return result;
    };
    for (const NodeModel& node : model.nodes)
    {
        const bool isState =
            IsPlainState(node) && !node.Is(BUILDER_Substate) && reached.count(&node) != 0;
        const bool isExit = node.Is(BUILDER_Exit) && onMainStack.count(&node) != 0;
        if (node.isFirst && (isState || isExit) && !find(node))
        {
            ReportNeverLeft(node, findings);
        }
    }
}

void CheckBlips(const DocumentModel& model, Findings& findings)
{
    if (model.global == nullptr)
    {
        return;
    }
    const NodeSet ending = FindEnding(model);
    for (const NodeModel* transition : model.global->transitions)
    {
        const NodeModel* target = model.FindNode(transition->target);
        if (transition->priority < 1)
        {
            findings.Add(Code::BlipTooWeak, PlaceOf(*transition->value, JSON_TransitionPriority),
                         Titled(*transition) + " has the priority " +
                             std::to_string(transition->priority) +
                             ": a transition of the global node below 1 never starts a blip");
        }
        if (target != nullptr && target->CanRun() && ending.count(target) == 0)
        {
            findings.Add(Code::BlipWithoutEnd, PlaceOf(*transition->value, JSON_TransitionTarget),
                         "the blip that " + Titled(*transition) + " starts never ends by itself: " +
                             "no exit node can be reached from " + Named(*target),
                         "", TitlePlace(*target->value), "where the blip begins");
        }
    }
}

/// Where the machine stays at an enter or global node, where no global node counts or another than
/// was meant, and where two substates share an end, much is out of reach because of that.
bool HasCauseOfUnreached(const Findings& findings)
{
    return std::any_of(findings.list.begin(), findings.list.end(),
                       [](const Finding& finding)
                       {
                           return finding.code == Code::EndRunsAsState ||
                                  finding.code == Code::NoGlobalNode ||
                                  finding.code == Code::SecondGlobalNode ||
                                  finding.code == Code::EndOfOtherLevel;
                       });
}

} // namespace

void CheckReach(const DocumentModel& model, Findings& findings)
{
    CheckBlips(model, findings);
    // What does not lead where it should leaves much out of reach; that is told first.
    if (model.start == nullptr || findings.HasErrors() || HasCauseOfUnreached(findings))
    {
        return;
    }
    const NodeSet reached = FindReached(model, true);
    CheckUnreached(model, reached, findings);
    CheckUnused(model, reached, findings);
    CheckDeadEnds(model, reached, findings);
}

} // namespace vell::check
