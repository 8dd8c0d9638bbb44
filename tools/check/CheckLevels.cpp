// VELL: data-driven hierarchical state machines.
// tools/check/CheckLevels.cpp: what `children`, `source` and `parentId` say of each other.
#include "tools/check/NearId.h"
#include "tools/check/Rules.h"

#include <algorithm>
#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

bool IsTransition(const NodeModel& node)
{
    return node.Is(BUILDER_Transition);
}

/// What a substate may list.
bool IsNotGlobal(const NodeModel& node)
{
    return !node.Is(BUILDER_Global);
}

bool IsSubstate(const NodeModel& node)
{
    return node.Is(BUILDER_Substate);
}

/// An id that the list has twice.
void CheckTwice(const NodeModel& node, Findings& findings)
{
    if (node.children.size() < 2)
    {
        return;
    }
    std::unordered_map<unsigned int, const Value*> firsts;
    for (const ChildModel& child : node.children)
    {
        const auto entry = firsts.emplace(child.id, child.value);
        if (child.id != 0 && !entry.second)
        {
            const std::string name =
                child.node == nullptr ? std::to_string(child.id) : Named(*child.node);
            findings.Add(Code::ChildTwice, child.value->span,
                         "'children' of " + Titled(node) + " names " + name + " twice",
                         "remove one of them", entry.first->second->span, "the first is here");
        }
    }
}

void CheckChildren(const DocumentModel& model, const NodeModel& node, Findings& findings)
{
    CheckTwice(node, findings);
    for (const ChildModel& child : node.children)
    {
        const std::string begin = "'children' of " + Titled(node) + " names ";
        if (!child.value->IsNumber())
        {
            continue;
        }
        if (child.id == 0)
        {
            findings.Add(Code::ChildZero, child.value->span,
                         begin + "0, which means none, " + LossWith(model, node));
        }
        else if (child.node == nullptr)
        {
            findings.Add(
                Code::ChildAbsent, child.value->span, begin + Absent(model, child.id),
                SuggestNode(model, child.id, IsSubstate(node) ? IsNotGlobal : IsTransition));
        }
        else if (!child.node->Is(BUILDER_Transition) && child.node->builder != 0 &&
                 child.node->parentId != node.id)
        {
            findings.Add(Code::ChildOfOther, child.value->span,
                         begin + Named(*child.node) + ", whose parentId is " +
                             std::to_string(child.node->parentId),
                         "", PlaceOf(*child.node->value, JSON_ParentID), "its parentId");
        }
    }
}

/// A transition belongs to the state that lists it; its source should be that state.
void CheckListers(const DocumentModel& model, const NodeModel& transition, Findings& findings)
{
    const Value& value = *transition.value;
    const unsigned int sourceId = ReadId(value, JSON_TransitionSource);
    const NodeModel* source = model.FindNode(sourceId);
    if (transition.listers.empty())
    {
        const std::string advice = source == nullptr ? ""
                                                     : "add " + std::to_string(transition.id) +
                                                           " to those of " + Named(*source);
        findings.Add(Code::TransitionUnlisted, TitlePlace(value),
                     Titled(transition) + " is in no node's children, so it is never tested",
                     advice);
        if (source != nullptr && source->CanRun() && transition.isFirst && transition.id != 0)
        {
            findings.AddFix({source->value, GetJsonName(JSON_Children), transition.id, true});
        }
        return;
    }
    if (transition.listers.size() > 1)
    {
        const NodeModel& first = *transition.listers[0];
        const NodeModel& second = *transition.listers[1];
        findings.Add(Code::TransitionListedTwice, TitlePlace(value),
                     Titled(transition) + " is in the children of " + Named(first) + " and of " +
                         Named(second) + ": both test it",
                     "", PlaceOf(*second.value, JSON_Children), "the second list");
    }
    const NodeModel& lister = *transition.listers[0];
    if (!lister.CanRun())
    {
        findings.Add(Code::ListerCannotRun, PlaceOf(*lister.value, JSON_Children),
                     "'children' of " + Titled(lister) + " has " + Titled(transition) + ", but " +
                         KindOf(lister) + " tests no transitions");
    }
    bool isLister = sourceId == 0;
    for (const NodeModel* candidate : transition.listers)
    {
        isLister = isLister || candidate->id == sourceId;
    }
    if (!isLister && lister.isFirst && lister.id != 0)
    {
        findings.Add(Code::SourceNotLister, PlaceOf(value, JSON_TransitionSource),
                     "the source of " + Titled(transition) + " is " +
                         (source == nullptr ? std::to_string(sourceId) : Named(*source)) +
                         ", but the transition leaves " + Named(lister) +
                         ", whose children list it",
                     "", PlaceOf(*lister.value, JSON_Children), "the list");
        if (transition.listers.size() == 1 && lister.CanRun())
        {
            findings.AddFix({&value, GetJsonName(JSON_TransitionSource), lister.id});
        }
    }
}

/// Where a state comes to run: in a level, which is a substate or null for the top.
struct Arrival
{
    NodeModel* state;
    const NodeModel* level;
    const NodeModel* by; ///< the transition, enter node or substate that brings it there, or null
};

/// Follows the machine from its start through all transitions, and says where states run in another
/// level than they say.
class LevelWalk
{
public:
    LevelWalk(const DocumentModel& documentModel, Findings& filledFindings)
        : model(documentModel), findings(filledFindings)
    {
    }

    /// Gives the states whose parentId it reported.
    const std::unordered_set<const NodeModel*>& Run()
    {
        Arrive(model.start != nullptr && model.start->IsEnd() ? nullptr : model.start, nullptr,
               nullptr);
        if (model.global != nullptr)
        {
            for (const NodeModel* transition : model.global->transitions)
            {
                Arrive(model.FindNode(transition->target), nullptr, transition);
            }
        }
        while (!right.empty() || !wrong.empty())
        {
            FollowNext();
        }
        for (const NodeModel& node : model.nodes)
        {
            const auto entry = arrivals.find(&node);
            if (entry != arrivals.end())
            {
                Judge(node, entry->second);
            }
        }
        return reported;
    }

private:
    /// A state is followed into two levels at most, so the walk is linear.
    static constexpr std::size_t kMaxLevels = 2;

    void Arrive(NodeModel* state, const NodeModel* level, const NodeModel* by)
    {
        // What cannot run is told elsewhere; so are enter and global nodes that are run as states,
        // and a substate that is entered within itself.
        if (state == nullptr || !state->CanRun() || state->Is(BUILDER_Enter) ||
            state->Is(BUILDER_Global) || state == level)
        {
            return;
        }
        std::vector<Arrival>& known = arrivals[state];
        for (const Arrival& arrival : known)
        {
            if (arrival.level == level)
            {
                return;
            }
        }
        if (known.size() < kMaxLevels)
        {
            known.push_back({state, level, by});
            (IsRight(known.back()) ? right : wrong).push_back(known.back());
        }
    }

    /// A state that runs in the wrong level is followed there only when it runs nowhere else, or
    /// the states that it leads to would be told to be wrong as well.
    void FollowNext()
    {
        std::deque<Arrival>& open = right.empty() ? wrong : right;
        const Arrival arrival = open.front();
        open.pop_front();
        const std::vector<Arrival>& known = arrivals[arrival.state];
        if (IsRight(arrival) || std::none_of(known.begin(), known.end(), IsRight))
        {
            Follow(arrival);
        }
    }

    void Follow(const Arrival& arrival)
    {
        NodeModel& state = *arrival.state;
        for (const NodeModel* transition : state.transitions)
        {
            Arrive(model.FindNode(transition->target), arrival.level, transition);
        }
        if (state.Is(BUILDER_Substate) && state.enter != nullptr && state.enter->Is(BUILDER_Enter))
        {
            Arrive(model.FindNode(state.enter->entryTarget), &state, state.enter);
        }
    }

    static bool IsRight(const Arrival& arrival)
    {
        return IdOf(arrival.level) == arrival.state->parentId;
    }
    static unsigned int IdOf(const NodeModel* level)
    {
        return level == nullptr ? 0 : level->id;
    }
    static std::string NameOf(const NodeModel* level)
    {
        return level == nullptr ? "at the top" : "in " + Named(*level);
    }

    void Judge(const NodeModel& state, const std::vector<Arrival>& known)
    {
        const auto bad = std::find_if_not(known.begin(), known.end(), IsRight);
        if (bad == known.end())
        {
            return;
        }
        const bool isRightElsewhere = std::any_of(known.begin(), known.end(), IsRight);
        const bool isCrossing =
            isRightElsewhere && bad->by != nullptr && bad->by->Is(BUILDER_Transition);
        isCrossing ? ReportCrossing(state, *bad) : ReportParent(state, *bad);
    }

    void ReportCrossing(const NodeModel& state, const Arrival& arrival)
    {
        const NodeModel& transition = *arrival.by;
        findings.Add(Code::TargetOfOtherLevel, PlaceOf(*transition.value, JSON_TransitionTarget),
                     Titled(transition) + " leads to " + Named(state) + ", whose parentId is " +
                         std::to_string(state.parentId) + ", but there it runs " +
                         NameOf(arrival.level),
                     "a transition stays in the level of its state; to leave a level, give its "
                     "substate the transition",
                     PlaceOf(*state.value, JSON_ParentID), "the parentId of the target");
    }

    void ReportParent(const NodeModel& state, const Arrival& arrival)
    {
        const bool isWritten = Find(*state.value, JSON_ParentID) != nullptr;
        const std::string has =
            isWritten ? "its parentId is " + std::to_string(state.parentId) : "it has no parentId";
        std::string effect;
        if (arrival.level != nullptr)
        {
            effect = ", so " + Named(*arrival.level) + " does not resume it";
        }
        reported.insert(&state);
        findings.Add(Code::ParentNotLevel, PlaceOf(*state.value, JSON_ParentID),
                     Titled(state) + " runs " + NameOf(arrival.level) + ", but " + has + effect,
                     "parentId should be " + std::to_string(IdOf(arrival.level)));
        if (arrivals.at(&state).size() == 1)
        {
            findings.AddFix({state.value, GetJsonName(JSON_ParentID), IdOf(arrival.level)});
        }
    }

    const DocumentModel& model;
    Findings& findings;
    std::deque<Arrival> right; ///< to be followed, in the level that the state names
    std::deque<Arrival> wrong; ///< in another one
    std::unordered_map<const NodeModel*, std::vector<Arrival>> arrivals;
    std::unordered_set<const NodeModel*> reported;
};

void CheckParent(const DocumentModel& model, const NodeModel& node, Findings& findings)
{
    const Value* value = Find(*node.value, JSON_ParentID);
    const bool isState = node.CanRun() && !node.Is(BUILDER_Global);
    if (!isState || node.parentId == 0 || value == nullptr || !value->IsNumber())
    {
        return;
    }
    const NodeModel* parent = model.FindNode(node.parentId);
    if (parent == nullptr)
    {
        findings.Add(Code::ParentWrong, value->span,
                     "the parentId of " + Titled(node) + " is " + std::to_string(node.parentId) +
                         ", and there is no such node",
                     SuggestNode(model, node.parentId, IsSubstate));
    }
    else if (parent == &node)
    {
        findings.Add(Code::ParentWrong, value->span,
                     "the parentId of " + Titled(node) + " is its own id");
    }
    else if (!parent->Is(BUILDER_Substate))
    {
        findings.Add(Code::ParentWrong, value->span,
                     "the parentId of " + Titled(node) + " is " + Named(*parent) + ", " +
                         KindOf(*parent) + " and not a substate",
                     "", TitlePlace(*parent->value), "the node");
    }
}

} // namespace

void CheckLevels(const DocumentModel& model, Findings& findings)
{
    LevelWalk walk(model, findings);
    const std::unordered_set<const NodeModel*>& reported = walk.Run();
    for (const NodeModel& node : model.nodes)
    {
        CheckChildren(model, node, findings);
        if (reported.count(&node) == 0)
        {
            CheckParent(model, node, findings);
        }
        if (node.Is(BUILDER_Transition) && node.isFirst)
        {
            CheckListers(model, node, findings);
        }
    }
}

} // namespace vell::check
