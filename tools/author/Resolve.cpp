// VELL: data-driven hierarchical state machines.
// tools/author/Resolve.cpp: what kind of node each state is, which states names mean, and the ids.
#include <durm/DURMBaseLib.h>

#include "tools/author/Machine.h"
#include "tools/check/DocumentModel.h"
#include "tools/check/Nearest.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace vell::author
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

/// Tells whether `members` give a member of the document, so that the source need not.
bool IsGiven(const Node& node, __JSONTYPES__ member)
{
    const Found members = Find(node.pieces, "members");
    return members && members->Find(GetJsonName(member)) != nullptr;
}

/// Finds states by their names.
class NameFinder
{
public:
    explicit NameFinder(Machine& newMachine) : machine(newMachine)
    {
        for (State& state : machine.states)
        {
            if (!state.isDouble)
            {
                byName[state.name].push_back(&state);
            }
        }
    }

    /// Finds a state by its name, or by a path from the top such as "/Fight/Jab"; the first of
    /// several. Null when there is none.
    State* FindAnywhere(const std::string& name) const
    {
        const std::size_t begin = name.find('/') == 0 ? 1 : 0;
        const auto all = byName.find(name);
        State* const found = Descend(&machine.top, name.substr(begin));
        return found != nullptr || all == byName.end() ? found : all->second.front();
    }

    /// Finds a child of a level by its name.
    State* FindChild(const Found& name, State& level) const
    {
        const auto found = level.byName.find(name->text);
        if (found != level.byName.end())
        {
            return found->second;
        }
        std::vector<std::string_view> words;
        for (const State* child : level.children)
        {
            words.emplace_back(child->name);
        }
        const std::string where = level.path.empty() ? "the machine" : "'" + level.path + "'";
        machine.problems.AddUnknown(name.Where(),
                                    where + " has no state '" + name->text + "' in it",
                                    check::DidYouMean(name->text, words));
        return nullptr;
    }

    /// Reports a name that no state has. Those of the level are proposed first.
    State* Report(const Found& name, const State* level) const
    {
        const bool isPath = name->text.find('/') != std::string::npos;
        std::vector<std::string_view> near;
        for (const State* child : (level == nullptr ? machine.top : *level).children)
        {
            near.emplace_back(child->name);
        }
        std::string hint = isPath ? "" : check::DidYouMean(name->text, near);
        if (hint.empty())
        {
            std::vector<std::string_view> all;
            for (const State& state : machine.states)
            {
                all.emplace_back(isPath ? state.path : state.name);
            }
            hint = check::DidYouMean(name->text, all);
        }
        machine.problems.AddUnknown(name.Where(), "unknown state '" + name->text + "'", hint);
        return nullptr;
    }

private:
    static State* Descend(State* level, const std::string& path)
    {
        for (std::size_t begin = 0; level != nullptr && begin <= path.size();)
        {
            const std::size_t end = std::min(path.find('/', begin), path.size());
            const auto found =
                level->byName.find(std::string_view(path).substr(begin, end - begin));
            level = found == level->byName.end() ? nullptr : found->second;
            begin = end + 1;
        }
        return level;
    }

    Machine& machine;
    std::unordered_map<std::string_view, std::vector<State*>> byName;
};

class Resolver
{
public:
    explicit Resolver(Machine& newMachine) : machine(newMachine), names(newMachine)
    {
    }

    void Run()
    {
        for (State& state : machine.states)
        {
            if (!state.pieces.empty())
            {
                SetBuilder(state);
                CheckKind(state);
            }
        }
        for (State& state : machine.states)
        {
            if (!state.pieces.empty())
            {
                SetLevel(state);
            }
        }
        ResolveStart();
        for (Transition& transition : machine.transitions)
        {
            SetTarget(transition);
        }
    }

private:
    void Add(const Origin& where, const std::string& message, const std::string& hint = {})
    {
        machine.problems.Add(where, message, hint);
    }

    // Kinds.

    static void SetBuilder(State& state)
    {
        const std::vector<Piece>& pieces = state.pieces;
        const Found ends = Find(pieces, "ends");
        if (const Found builder = Find(pieces, "builder"))
        {
            state.builderText = builder->text;
            state.builder = GetBuilderIndex(state.builderText.c_str());
            return;
        }
        const bool isLevel = !state.children.empty() || Find(pieces, "states") ||
                             Find(pieces, "start") || Find(pieces, "enter") || Find(pieces, "exit");
        const bool isClip = Find(pieces, "clip") || Find(pieces, "clipFlag") ||
                            Find(pieces, "secondaryA") || Find(pieces, "secondaryB");
        state.builder = ends && ends->boolean       ? BUILDER_Exit
                        : Find(pieces, "connector") ? BUILDER_Connector
                        : isLevel                   ? BUILDER_Substate
                        : isClip                    ? BUILDER_AnimClip
                                                    : BUILDER_Generic;
    }

    /// Says which member does not belong to the kind that another one makes of it.
    void CheckKind(const State& state)
    {
        struct Owner
        {
            const char* member;
            int builder;
            const char* hint;
        };
        static constexpr Owner kOwners[] = {
            {"clip", BUILDER_AnimClip, "give the clip to one of its states"},
            {"clipFlag", BUILDER_AnimClip, "it belongs to a clip"},
            {"secondaryA", BUILDER_AnimClip, "it belongs to a clip"},
            {"secondaryB", BUILDER_AnimClip, "it belongs to a clip"},
            {"connector", BUILDER_Connector, ""},
            {"states", BUILDER_Substate, ""},
            {"start", BUILDER_Substate, ""},
            {"enter", BUILDER_Substate, ""},
            {"exit", BUILDER_Substate, ""},
        };
        const bool isOfHost = !check::IsStandardBuilder(state.builder);
        for (const Owner& owner : kOwners)
        {
            const Found found = Find(state.pieces, owner.member);
            if (found && state.builder != owner.builder && !isOfHost)
            {
                Add({found.file, found.member->nameSpan, true},
                    check::TitleOfNode(state.builder) + " has no '" + owner.member + "'",
                    owner.hint);
            }
        }
        const Found ends = Find(state.pieces, "ends");
        if (ends && ends->boolean && state.builder != BUILDER_Exit)
        {
            Add(ends.Where(), check::TitleOfNode(state.builder) + " does not end anything");
        }
    }

    // Levels.

    void SetLevel(State& state)
    {
        const Found connector = Find(state.pieces, "exitConnector");
        if (connector && connector->IsString())
        {
            state.exitConnector = names.FindAnywhere(connector->text);
            if (state.exitConnector == nullptr)
            {
                names.Report(connector, state.parent);
            }
        }
        if (state.builder == BUILDER_Enter || state.builder == BUILDER_Exit)
        {
            SetStart(state, "next");
        }
        if (state.builder != BUILDER_Substate)
        {
            return;
        }
        state.isLevel = true;
        SetInnerStart(state);
        SetEnd(state);
        state.hasEnter = !IsGiven(state, JSON_SubstateEnter);
        state.enter.name = state.name + "In";
        state.enter.path = state.path + "/(in)";
        state.enter.origin = state.origin;
        state.exit.name = state.name + "Out";
        state.exit.path = state.path + "/(out)";
        state.exit.origin = state.origin;
        AddEnd(state, "enter", state.hasEnter, state.enter);
        AddEnd(state, "exit", state.hasExit, state.exit);
        if (state.hasEnter && state.start == nullptr && state.startId == 0 &&
            !Find(state.pieces, "start") && !IsGiven(state.enter, JSON_EntryTarget))
        {
            const std::string example =
                state.children.empty() ? "NAME" : state.children.front()->name;
            Add(state.origin, "'" + state.path + "' does not say in which of its states it starts",
                "add \"start\": \"" + example + "\" to it");
        }
    }

    void SetStart(State& state, const char* member)
    {
        const Found start = Find(state.pieces, member);
        if (start && start->IsString())
        {
            state.start = FindInLevel(start, state.parent, "what follows is in the same level");
        }
        state.startId = start && !start->IsString() ? start->ReadUInt() : 0;
    }

    void SetInnerStart(State& state)
    {
        const Found start = Find(state.pieces, "start");
        if (start && start->IsString())
        {
            state.start = names.FindChild(start, state);
        }
        state.startId = start && !start->IsString() ? start->ReadUInt() : 0;
    }

    void SetEnd(State& state)
    {
        const Found exit = Find(state.pieces, "exit");
        if (exit && exit->IsString())
        {
            state.end = names.FindChild(exit, state);
        }
        else if (!exit && !IsGiven(state, JSON_SubstateExit))
        {
            const auto end = std::find_if(state.children.begin(), state.children.end(),
                                          [](const State* child)
                                          {
                                              return child->builder == BUILDER_Exit;
                                          });
            state.end = end == state.children.end() ? nullptr : *end;
        }
        state.hasExit = !(exit && exit->IsString()) && state.end == nullptr &&
                        !IsGiven(state, JSON_SubstateExit);
    }

    void AddEnd(const State& state, const char* member, bool isMade, Node& node)
    {
        const Found found = Find(state.pieces, member);
        if (found && found->IsObject() && isMade)
        {
            node.origin = {found.file, found.member->nameSpan, true};
            node.pieces.push_back({&found.member->value, found.file, SourceKind::End});
            CheckMembers(machine, node.pieces.back());
        }
    }

    void ResolveStart()
    {
        const Found start = Find(machine.root, "start");
        if (start && start->IsString())
        {
            machine.top.start = FindInLevel(start, nullptr, "a machine starts at the top");
        }
        machine.top.startId = start && !start->IsString() ? start->ReadUInt() : 0;
        const Found head = Find(machine.root, "head");
        const bool isGiven = head && head->Find(GetJsonName(JSON_HeadSubstateRoot)) != nullptr;
        if (!start && !isGiven && machine.root.value != nullptr)
        {
            const std::string example =
                machine.top.children.empty() ? "NAME" : machine.top.children.front()->name;
            Add(machine.top.origin, "the machine does not say in which of its states it starts",
                "add \"start\": \"" + example + "\"");
        }
    }

    /// Finds a state of a level. One of another level is reported by the rule that it breaks: the
    /// machine would run it in this one, where it does not belong.
    State* FindInLevel(const Found& name, State* level, const char* rule)
    {
        const State& around = level == nullptr ? machine.top : *level;
        const auto own = around.byName.find(name->text);
        if (own != around.byName.end())
        {
            return own->second;
        }
        State* const found = names.FindAnywhere(name->text);
        if (found == nullptr || found->parent == level)
        {
            return found == nullptr ? names.Report(name, level) : found;
        }
        const std::string there =
            found->parent == nullptr ? "at the top" : "in '" + found->parent->path + "'";
        std::string hint;
        if (IsAround(level, found->parent))
        {
            const State* outer = found;
            for (const State* next = outer->parent; next != level && next != nullptr;
                 next = next->parent)
            {
                outer = next;
            }
            hint = "name '" + outer->name + "', the level around it";
        }
        else if (level != nullptr)
        {
            hint = "give the transition to the level that it leaves, '" + level->path + "'";
        }
        machine.problems.AddUnknown(name.Where(),
                                    "'" + found->name + "' is " + there + ", and " + rule, hint);
        return nullptr;
    }

    /// Tells whether `level` is around `inner`; the top is around all.
    static bool IsAround(const State* level, const State* inner)
    {
        for (; inner != nullptr; inner = inner->parent)
        {
            if (inner->parent == level)
            {
                return true;
            }
        }
        return false;
    }

    void SetTarget(Transition& transition)
    {
        const Found to = Find(transition.pieces, "to");
        if (to && to->IsString())
        {
            State* const level = transition.owner == nullptr ? nullptr : transition.owner->parent;
            transition.target = FindInLevel(to, level, "a transition stays in its level");
        }
        transition.targetId = to && !to->IsString() ? to->ReadUInt() : 0;
        const Piece& piece = transition.pieces.front();
        if (piece.value->FindMember("to") == nullptr && !IsGiven(transition, JSON_TransitionTarget))
        {
            Add(transition.origin, "the transition does not say where it leads",
                "add \"to\": \"STATE\"");
        }
        if (piece.value->FindMember("when") == nullptr && !IsGiven(transition, JSON_Conditions))
        {
            Add(transition.origin, "the transition does not say when it fires",
                "add \"when\": \"CONDITION\", or [] if only a trigger of the host fires it");
        }
    }

    Machine& machine;
    const NameFinder names;
};

/// Gives ids, and reports those that two nodes have.
class IdGiver
{
public:
    explicit IdGiver(Machine& newMachine) : machine(newMachine)
    {
    }

    void Run()
    {
        for (State& state : machine.states)
        {
            Give(state, "the state '" + state.path + "'");
            if (state.hasEnter)
            {
                Give(state.enter, "the enter node of '" + state.path + "'");
            }
            if (state.hasExit)
            {
                Give(state.exit, "the exit node of '" + state.path + "'");
            }
        }
        if (machine.hasGlobal)
        {
            Give(machine.global, "the node of the interrupts");
        }
        for (Transition& transition : machine.transitions)
        {
            NameTransition(transition);
            Give(transition, "the transition '" + transition.path + "'");
        }
    }

private:
    struct Owner
    {
        Origin origin;
        std::string title;
    };

    /// A transition's path is made of its states, and of its name when it has one of its own.
    void NameTransition(Transition& transition)
    {
        const Node& owner =
            transition.owner == nullptr ? machine.global : static_cast<Node&>(*transition.owner);
        const std::string number = std::to_string(transition.targetId);
        const State* target = transition.target;
        const std::string ownerName =
            transition.owner == nullptr ? machine.global.name : transition.owner->name;
        const std::string own = TextOf(Find(transition.pieces, "name"));
        transition.name = TransitionName(ownerName, target == nullptr ? number : target->name);
        transition.path = owner.path + " -> " + (target == nullptr ? number : target->path);
        transition.path += own.empty() ? "" : " (" + own + ")";
        const unsigned int count = ++counts[transition.path];
        if (count > 1)
        {
            transition.name += std::to_string(count);
            transition.path += " #" + std::to_string(count);
        }
    }

    void Give(Node& node, const std::string& title)
    {
        const Found id = Find(node.pieces, "id");
        node.id = id ? id->ReadUInt() : check::CrcOf(node.path);
        const Origin where = id ? id.Where() : node.origin;
        if (node.id == 0)
        {
            machine.problems.Add(where, "the id of " + title + " is 0, which means none",
                                 id ? "" : "give it an \"id\" of its own");
            return;
        }
        Take(node.id, where, title);
    }

    void Take(unsigned int id, const Origin& where, const std::string& title)
    {
        const auto [known, isNew] = owners.emplace(id, Owner{where, title});
        if (!isNew)
        {
            machine.problems.AddTwice(where,
                                      title + " and " + known->second.title +
                                          " have the same id, " + std::to_string(id),
                                      "give one of them another name or an \"id\" of its own",
                                      known->second.origin, "the other is here");
        }
    }

    Machine& machine;
    std::unordered_map<unsigned int, Owner> owners;
    std::unordered_map<std::string, unsigned int> counts;
};

} // namespace

void Resolve(Machine& machine)
{
    Resolver(machine).Run();
    if (machine.problems.list.empty())
    {
        IdGiver(machine).Run();
    }
}

} // namespace vell::author
