// VELL: data-driven hierarchical state machines.
// tools/check/CheckTransitions.cpp: transitions that are never taken, or that undo each other.
#include "tools/check/Rules.h"
#include "tools/check/ValueSet.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;

/// When a transition holds, as far as the document tells.
struct Guard
{
    std::vector<HoldingSet> sets; ///< of its conditions
    bool isKnown = true;          ///< false when one of them is wrong in a way told elsewhere

    /// True when it has conditions, all are known and one can hold.
    bool IsUsable() const
    {
        return isKnown && std::any_of(sets.begin(), sets.end(),
                                      [](const HoldingSet& set)
                                      {
                                          return !set.values.empty();
                                      });
    }
};

bool ResetsEachTick(const ParameterModel& parameter)
{
    const source::Value* value = Find(*parameter.value, JSON_ParameterResetEachFrame);
    return value != nullptr && value->boolean;
}

bool IsCovered(const Guard& guard, const Cover& cover)
{
    return guard.IsUsable() && std::all_of(guard.sets.begin(), guard.sets.end(),
                                           [&cover](const HoldingSet& set)
                                           {
                                               return cover.Covers(set);
                                           });
}

class TransitionRules
{
public:
    TransitionRules(const DocumentModel& documentModel, Findings& filledFindings)
        : model(documentModel), findings(filledFindings)
    {
        for (const NodeModel& node : model.nodes)
        {
            if (node.Is(BUILDER_Transition))
            {
                ReadGuard(node);
            }
        }
    }

    void Run()
    {
        for (const NodeModel& node : model.nodes)
        {
            if (node.Is(BUILDER_Transition))
            {
                CheckConditions(node);
            }
            if (node.isFirst && !node.transitions.empty())
            {
                CheckShadows(node);
                CheckReturns(node);
                CheckSameTick(node);
            }
        }
        // Conditions on another parameter than was meant are told first.
        if (!findings.HasErrors())
        {
            CheckParameters();
        }
    }

private:
    /// So many transitions before a shadowed one are looked at to name the one that shadows it.
    static constexpr std::size_t kMaxNamed = 64;
    /// So many substates around a state are looked at.
    static constexpr int kMaxOutward = 32;

    void ReadGuard(const NodeModel& transition)
    {
        Guard& guard = guards[&transition];
        for (const ConditionModel& condition : transition.conditions)
        {
            guard.sets.push_back(sets.Find(condition));
            guard.isKnown = guard.isKnown && guard.sets.back().isKnown;
            tested.insert(condition.parameter);
            if (condition.operand != nullptr && condition.type == PARAM_Message)
            {
                awaited[condition.parameter].insert(std::string(ReadText(condition.operand)));
            }
        }
    }

    const Guard& GuardOf(const NodeModel& transition) const
    {
        return guards.find(&transition)->second;
    }

    /// Conditions that hold for every value or for none.
    void CheckConditions(const NodeModel& transition)
    {
        const Guard& guard = GuardOf(transition);
        Cover cover;
        bool isReported = false;
        for (std::size_t i = 0; i < guard.sets.size(); ++i)
        {
            const HoldingSet& set = guard.sets[i];
            if (guard.sets.size() > 1)
            {
                cover.Add(set);
            }
            if (!set.isKnown || (!set.values.empty() && !set.HoldsAlways()))
            {
                continue;
            }
            const std::string name = Named(*set.condition->parameter);
            const bool isNever = set.values.empty();
            findings.Add(isNever ? Code::ConditionNever : Code::ConditionAlways,
                         TitlePlaceOf(*set.condition),
                         TitledCondition(transition, i) +
                             (isNever ? " never holds" : " always holds") +
                             ", whatever the value of " + name);
            isReported = true;
        }
        if (cover.HoldsAlways() && !isReported)
        {
            findings.Add(Code::ConditionAlways, TitlePlace(*transition.value),
                         Titled(transition) +
                             " always holds: one of its conditions does, whatever the value; any "
                             "one of them is enough");
        }
    }

    static source::Span TitlePlaceOf(const ConditionModel& condition)
    {
        return condition.operand->span;
    }

    /// A transition behind others that hold whenever it does.
    void CheckShadows(const NodeModel& state)
    {
        Cover before;
        for (std::size_t i = 0; i < state.transitions.size(); ++i)
        {
            const NodeModel& transition = *state.transitions[i];
            const Guard& guard = GuardOf(transition);
            if (IsCovered(guard, before))
            {
                ReportShadow(state, i);
            }
            for (const HoldingSet& set : guard.sets)
            {
                before.Add(set);
            }
        }
    }

    void ReportShadow(const NodeModel& state, std::size_t index)
    {
        const NodeModel& transition = *state.transitions[index];
        const NodeModel* shadow = nullptr;
        for (std::size_t i = 0; i < std::min(index, kMaxNamed) && shadow == nullptr; ++i)
        {
            Cover cover;
            for (const HoldingSet& set : GuardOf(*state.transitions[i]).sets)
            {
                cover.Add(set);
            }
            shadow = IsCovered(GuardOf(transition), cover) ? state.transitions[i] : nullptr;
        }
        if (shadow == &transition)
        {
            return;
        }
        const std::string begin =
            Titled(transition) + " is never taken from " + Named(state) + ": ";
        if (shadow == nullptr)
        {
            findings.Add(Code::TransitionShadowed, TitlePlace(*transition.value),
                         begin + "one of those tested before it holds whenever it does");
            return;
        }
        const bool isSame = shadow->priority == transition.priority;
        findings.Add(Code::TransitionShadowed, TitlePlace(*transition.value),
                     begin + Named(*shadow) + " is tested before it and holds whenever it does",
                     isSame ? "of equal priorities the order of 'children' counts"
                            : "a smaller priority is tested first",
                     TitlePlace(*shadow->value), "tested before it");
    }

    /// For which values the transitions from `state` to `target` fire, by parameter, leaving out
    /// those for which a transition tested before fires.
    std::map<const ParameterModel*, ValueSet> FindFiring(const std::vector<NodeModel*>& transitions,
                                                         unsigned int target) const
    {
        Cover before;
        std::map<const ParameterModel*, ValueSet> firing;
        for (const NodeModel* transition : transitions)
        {
            const Guard& guard = GuardOf(*transition);
            if (transition->target == target && guard.isKnown)
            {
                AddFiring(guard, before, &firing);
            }
            for (const HoldingSet& set : guard.sets)
            {
                before.Add(set);
            }
        }
        return firing;
    }

    static void AddFiring(const Guard& guard, const Cover& before,
                          std::map<const ParameterModel*, ValueSet>* firing)
    {
        if (before.HoldsAlways())
        {
            return;
        }
        for (const HoldingSet& set : guard.sets)
        {
            ValueSet values;
            for (const Interval& interval : set.values)
            {
                values.Add(interval);
            }
            const auto known = before.Sets().find(set.condition->parameter);
            if (known != before.Sets().end())
            {
                values.Remove(known->second);
            }
            ValueSet& all = (*firing)[set.condition->parameter];
            values.ForEach(
                [&all](const Interval& interval)
                {
                    all.Add(interval);
                });
        }
    }

    static bool LeadsTo(const NodeModel& state, unsigned int target)
    {
        return std::any_of(state.transitions.begin(), state.transitions.end(),
                           [target](const NodeModel* transition)
                           {
                               return transition->target == target;
                           });
    }

    /// Two states whose transitions lead to each other for the same value of one parameter.
    void CheckReturns(const NodeModel& state)
    {
        const bool isLarge = state.transitions.size() > kMaxNamed;
        std::unordered_set<unsigned int> seen;
        for (const NodeModel* transition : state.transitions)
        {
            const NodeModel* target = model.FindNode(transition->target);
            const bool isPair = target != nullptr && target->CanRun() &&
                                !state.Is(BUILDER_Global) && (target == &state || &state < target);
            if (!isPair || isLarge || target->transitions.size() > kMaxNamed ||
                !LeadsTo(*target, state.id) || !seen.insert(target->id).second)
            {
                continue;
            }
            const auto there = FindFiring(state.transitions, target->id);
            const auto back = FindFiring(target->transitions, state.id);
            if (const ParameterModel* parameter = FindShared(there, back))
            {
                ReportReturn(*transition, state, *target, *parameter);
            }
        }
    }

    /// Gives a parameter that makes both fire and keeps its value from tick to tick, or null.
    const ParameterModel* FindShared(const std::map<const ParameterModel*, ValueSet>& there,
                                     const std::map<const ParameterModel*, ValueSet>& back)
    {
        const ParameterModel* shared = nullptr;
        for (const auto& entry : there)
        {
            const auto other = back.find(entry.first);
            const bool isFirst = shared == nullptr || entry.first < shared;
            if (other != back.end() && isFirst &&
                CanStay(*entry.first, entry.second, other->second))
            {
                shared = entry.first;
            }
        }
        return shared;
    }

    bool CanStay(const ParameterModel& parameter, const ValueSet& there, const ValueSet& back)
    {
        if (!ResetsEachTick(parameter))
        {
            return there.Overlaps(back);
        }
        Interval rest{};
        return sets.FindDefault(parameter, &rest) && there.Covers(rest) && back.Covers(rest);
    }

    void ReportReturn(const NodeModel& transition, const NodeModel& state, const NodeModel& target,
                      const ParameterModel& parameter)
    {
        if (&state == &target)
        {
            findings.Add(Code::TransitionToItself, TitlePlace(*transition.value),
                         Titled(transition) + " leads back to " + Named(state) +
                             ", which is left and entered in every tick in which it holds");
            return;
        }
        const auto isBack = [&state](const NodeModel* candidate)
        {
            return candidate->target == state.id;
        };
        const NodeModel& back =
            **std::find_if(target.transitions.begin(), target.transitions.end(), isBack);
        findings.Add(Code::BackAndForth, TitlePlace(*transition.value),
                     Titled(transition) + " and " + Named(back) + " throw the machine from " +
                         Named(state) + " to " + Named(target) +
                         " and back in every tick: both hold for the same value of " +
                         Named(parameter),
                     "", TitlePlace(*back.value), "the way back");
    }

    /// A transition whose target is left at once, because one of a substate around it holds too.
    void CheckSameTick(const NodeModel& state)
    {
        const NodeModel* around = model.FindNode(state.parentId);
        for (int i = 0; i < kMaxOutward && around != nullptr && around->Is(BUILDER_Substate) &&
                        around != &state;
             ++i)
        {
            const Cover& cover = CoverOf(*around);
            // A transition that always holds is told once.
            if (cover.HoldsAlways())
            {
                return;
            }
            for (const NodeModel* transition : state.transitions)
            {
                const bool isNew = transition->target != 0 &&
                                   IsCovered(GuardOf(*transition), cover) &&
                                   leftAtOnce.insert(transition).second;
                if (isNew)
                {
                    findings.Add(Code::TargetLeftAtOnce, TitlePlace(*transition->value),
                                 "what " + Titled(*transition) +
                                     " enters is left in the same tick: a transition of " +
                                     Named(*around) + ", around it, holds whenever it does",
                                 "", TitlePlace(*around->value), "the substate around it");
                }
            }
            around = around->parentId == around->id ? nullptr : model.FindNode(around->parentId);
        }
    }

    /// When one of a substate's transitions holds.
    const Cover& CoverOf(const NodeModel& substate)
    {
        const auto entry = covers.try_emplace(&substate);
        if (entry.second)
        {
            for (const NodeModel* transition : substate.transitions)
            {
                const bool leaves = transition->target != 0;
                for (const HoldingSet& set : GuardOf(*transition).sets)
                {
                    leaves ? entry.first->second.Add(set) : void();
                }
            }
        }
        return entry.first->second;
    }

    /// Parameters that no condition tests.
    void CheckParameters()
    {
        for (const ParameterModel& parameter : model.parameters)
        {
            const bool isMessage = parameter.type == PARAM_Message;
            const bool isScalar = parameter.type == PARAM_Bool || parameter.type == PARAM_Integer ||
                                  parameter.type == PARAM_Float;
            if (isMessage)
            {
                CheckMessage(parameter);
            }
            else if (isScalar && tested.count(&parameter) == 0)
            {
                findings.Add(Code::ParameterUntested, TitlePlace(*parameter.value),
                             "no condition tests parameter " + Named(parameter));
            }
        }
    }

    void CheckMessage(const ParameterModel& parameter)
    {
        const std::string fired(ReadText(Find(*parameter.value, JSON_ParameterDefault)));
        const auto known = awaited.find(&parameter);
        if (ResetsEachTick(parameter))
        {
            findings.Add(Code::MessageReset,
                         PlaceOf(*parameter.value, JSON_ParameterResetEachFrame),
                         "'resetEachFrame' of message " + Named(parameter) +
                             " fires it at the end of every tick, because its default is the text "
                             "that it has when it is fired");
        }
        if (known == awaited.end())
        {
            findings.Add(Code::MessageUnawaited, TitlePlace(*parameter.value),
                         "no condition waits for message " + Named(parameter));
        }
        else if (fired.empty())
        {
            const bool isWritten = Find(*parameter.value, JSON_ParameterDefault) != nullptr;
            // An empty text is written where the host itself sets one of several.
            if (isWritten && known->second.size() > 1)
            {
                return;
            }
            findings.Add(Code::MessageEmpty, PlaceOf(*parameter.value, JSON_ParameterDefault),
                         "message " + Named(parameter) +
                             (isWritten ? " has an empty default" : " has no default") +
                             ", so it is fired as an empty text and no condition can match it",
                         known->second.size() == 1
                             ? "write \"default\": \"" + *known->second.begin() + "\""
                             : "write one of the texts that the conditions wait for");
        }
        else if (known->second.count(fired) == 0)
        {
            findings.Add(Code::MessageUnawaited, PlaceOf(*parameter.value, JSON_ParameterDefault),
                         "message " + Named(parameter) + " is fired as '" + fired +
                             "', and no condition waits for that",
                         "the conditions wait for '" + *known->second.begin() + "'");
        }
    }

    const DocumentModel& model;
    Findings& findings;
    ValueSets sets;
    std::unordered_map<const NodeModel*, Guard> guards;
    std::unordered_map<const NodeModel*, Cover> covers;
    std::unordered_set<const ParameterModel*> tested;
    std::unordered_map<const ParameterModel*, std::set<std::string>> awaited;
    std::unordered_set<const NodeModel*> leftAtOnce;
};

} // namespace

void CheckTransitions(const DocumentModel& model, Findings& findings)
{
    TransitionRules(model, findings).Run();
}

} // namespace vell::check
