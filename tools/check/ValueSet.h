// VELL: data-driven hierarchical state machines.
// tools/check/ValueSet.h: for which values of its parameter a condition holds.
#pragma once

#include "tools/check/DocumentModel.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace vell::check
{

/// All values from `low` to `high`. Integers are themselves, false and true are 0 and 1, floats are
/// numbered in their order, and the texts of messages as they come.
struct Interval
{
    std::int64_t low;
    std::int64_t high;
};

/// A set of values, as intervals that neither overlap nor touch.
class ValueSet
{
public:
    void Add(const Interval& interval);
    bool Covers(const Interval& interval) const;
    bool IsEmpty() const
    {
        return intervals.empty();
    }
    /// Removes what `other` has.
    void Remove(const ValueSet& other);
    bool Overlaps(const ValueSet& other) const;
    /// Calls `use(Interval)` for each interval, in order.
    template <class Use>
    void ForEach(Use use) const
    {
        for (const auto& entry : intervals)
        {
            use(Interval{entry.first, entry.second});
        }
    }

private:
    std::map<std::int64_t, std::int64_t> intervals; ///< low to high
};

/// For which values a condition holds.
struct HoldingSet
{
    const ConditionModel* condition = nullptr;
    std::vector<Interval> values; ///< at most two; none when it never holds
    bool isKnown = false;         ///< false when the condition is wrong in a way told elsewhere

    /// True when it holds for every value of its parameter.
    bool HoldsAlways() const;
};

/// Finds for which values conditions hold. The texts of messages are numbered by it, so sets of one
/// parameter can be compared when they come from one of these.
class ValueSets
{
public:
    HoldingSet Find(const ConditionModel& condition);
    /// Gives every value of the parameter type; nothing contains all texts.
    static bool GetAll(int parameterType, Interval* all);
    /// Gives the interval of one value of the parameter, its default: what `resetEachFrame` sets.
    bool FindDefault(const ParameterModel& parameter, Interval* value);

private:
    std::int64_t NumberOf(std::string_view text);

    std::unordered_map<std::string, std::int64_t> texts;
};

/// The values for which some transitions hold, for each parameter.
class Cover
{
public:
    void Add(const HoldingSet& set);
    /// Tells whether one of the transitions holds whenever the condition does.
    bool Covers(const HoldingSet& set) const;
    /// Tells whether they hold whatever the parameters are.
    bool HoldsAlways() const
    {
        return holdsAlways;
    }
    const std::map<const ParameterModel*, ValueSet>& Sets() const
    {
        return sets;
    }

private:
    std::map<const ParameterModel*, ValueSet> sets;
    bool holdsAlways = false;
};

} // namespace vell::check
