// VELL: data-driven hierarchical state machines.
// tools/vell/Explain.cpp: the reading of transitions, and its words.
#include "tools/vell/Explain.h"

#include <vell/ConditionDef.h>
#include <vell/SMState.h>
#include <vell/TransitionDef.h>

#include "tools/vell/ObservedMachine.h"
#include "tools/vell/ParameterText.h"

#include <algorithm>
#include <utility>

namespace vell::tool
{
namespace
{

bool AnyHolds(const std::vector<ConditionReading>& conditions)
{
    return std::any_of(conditions.begin(), conditions.end(),
                       [](const ConditionReading& reading)
                       {
                           return reading.holds;
                       });
}

Verdict Judge(const TransitionReading& reading, const TransitionDef* fired, bool isRefused)
{
    if (reading.transition == fired)
    {
        return isRefused ? Verdict::Refused : Verdict::Fires;
    }
    if (reading.transition->disabled)
    {
        return Verdict::Disabled;
    }
    return reading.transition->targetID == 0 && AnyHolds(reading.conditions) ? Verdict::NoTarget
                                                                             : Verdict::NotHolding;
}

std::string Text(const ConditionReading& reading)
{
    return reading.text +
           (reading.saw.empty() ? " (its parameter does not exist)" : " (saw " + reading.saw + ")");
}

} // namespace

std::vector<ConditionReading> ReadConditions(const TransitionDef& transition,
                                             IParameterTable* parameters)
{
    std::vector<ConditionReading> readings;
    for (ConditionDef* condition : transition.conditions)
    {
        readings.push_back({ConditionText(*condition, parameters), SeenText(*condition),
                            condition->Evaluate(nullptr)});
    }
    return readings;
}

std::vector<TransitionReading> ExplainState(const SMState& state, const TransitionDef* fired,
                                            bool isRefused, int blipPriority,
                                            IParameterTable* parameters)
{
    std::vector<TransitionReading> readings;
    bool isReached = true;
    for (int i = 0; i < state.GetNumTransitions(); ++i)
    {
        TransitionReading reading;
        reading.transition = state.GetTransitionAt(i);
        if (reading.transition == nullptr)
        {
            continue;
        }
        reading.conditions = ReadConditions(*reading.transition, parameters);
        reading.blipPriority = blipPriority;
        reading.verdict = isReached ? Judge(reading, fired, isRefused) : Verdict::NotReached;
        isReached = isReached && (reading.verdict == Verdict::Disabled ||
                                  reading.verdict == Verdict::NotHolding);
        readings.push_back(reading);
    }
    return readings;
}

ExplainFilter::ExplainFilter(const ExplainOptions& newOptions) : options(newOptions)
{
}

bool ExplainFilter::Select(std::uint64_t tick, const SMState& state,
                           std::vector<TransitionReading>& readings)
{
    if (!options.isOn || tick < options.from || tick > options.to)
    {
        return false;
    }
    Reading now{tick, {}};
    for (const TransitionReading& reading : readings)
    {
        now.lines.push_back(VerdictText(reading) + ConditionsText(reading.conditions));
    }
    const auto entry = last.find(&state);
    const bool isNew = options.isAll || entry == last.end() || entry->second.tick + 1 < tick;
    std::vector<TransitionReading> shown;
    for (std::size_t i = 0; i < readings.size(); ++i)
    {
        const bool isChanged =
            isNew || i >= entry->second.lines.size() || entry->second.lines[i] != now.lines[i];
        if (isChanged && (IsNamed(state) || IsNamed(readings[i])))
        {
            shown.push_back(readings[i]);
        }
    }
    const bool isEmptyAndNew = readings.empty() && isNew && IsNamed(state);
    last[&state] = std::move(now);
    readings = std::move(shown);
    return isEmptyAndNew || !readings.empty();
}

bool ExplainFilter::IsNamed(const SMState& state) const
{
    return options.name.empty() || NameOf(state) == options.name ||
           std::to_string(state.GetID()) == options.name;
}

bool ExplainFilter::IsNamed(const TransitionReading& reading) const
{
    return NameOf(*reading.transition) == options.name ||
           std::to_string(reading.transition->GetID()) == options.name;
}

std::string HeldText(const TransitionDef& transition, IParameterTable* parameters)
{
    for (const ConditionReading& reading : ReadConditions(transition, parameters))
    {
        if (reading.holds)
        {
            return Text(reading);
        }
    }
    return "a trigger";
}

std::string VerdictText(const TransitionReading& reading)
{
    switch (reading.verdict)
    {
    case Verdict::Fires:
        return "fires";
    case Verdict::Refused:
        return "refused, a blip needs at least priority " + std::to_string(reading.blipPriority);
    case Verdict::Disabled:
        return "disabled";
    case Verdict::NotHolding:
        return reading.conditions.empty() ? "has no conditions, only a trigger can fire it"
                                          : "no condition holds";
    case Verdict::NoTarget:
        return "holds but has no target";
    case Verdict::NotReached:
        return "not reached, an earlier one holds";
    }
    return "";
}

std::string ConditionsText(const std::vector<ConditionReading>& conditions)
{
    std::string text;
    for (const ConditionReading& reading : conditions)
    {
        text += (text.empty() ? "" : ", ") + Text(reading);
    }
    return text;
}

} // namespace vell::tool
