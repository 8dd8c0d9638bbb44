// VELL: data-driven hierarchical state machines.
// tools/check/ValueSet.cpp: conditions as intervals.
#include "tools/check/ValueSet.h"

#include <vell/ConditionDef.h>

#include "document/NumberText.h"
#include "transitions/Comparison.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;

/// Numbers the floats in their order; the two zeros have one number.
std::int64_t NumberOfFloat(float value)
{
    std::int32_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits >= 0 ? std::int64_t{bits} : -std::int64_t{bits & 0x7fffffff};
}

float FloatOfNumber(std::int64_t number)
{
    const auto bits = static_cast<std::uint32_t>(number < 0 ? -number | 0x80000000 : number);
    float value = 0.0f;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Gives the last of the floats from `inside` towards `limit` that counts as equal to `target`.
/// `inside` does, and `limit` does not.
std::int64_t FindLastEqual(float target, std::int64_t inside, std::int64_t limit)
{
    while (std::abs(limit - inside) > 1)
    {
        const std::int64_t middle = inside + (limit - inside) / 2;
        (IsEqual(FloatOfNumber(middle), target) ? inside : limit) = middle;
    }
    return inside;
}

/// Gives the floats that count as equal to `target`.
std::vector<Interval> EqualFloats(float target)
{
    if (!IsEqual(target, target))
    {
        return {};
    }
    const std::int64_t number = NumberOfFloat(target);
    return {{FindLastEqual(target, number, NumberOfFloat(-kInfinity)),
             FindLastEqual(target, number, NumberOfFloat(kInfinity))}};
}

/// Gives the values of `all` for which an operator other than equality and range holds.
std::vector<Interval> Compared(int evaluation, std::int64_t target, const Interval& all)
{
    std::vector<Interval> parts;
    switch (evaluation)
    {
    case EvaluateEqual:
        parts = {{target, target}};
        break;
    case EvaluateNotEqual:
        parts = {{all.low, target - 1}, {target + 1, all.high}};
        break;
    case EvaluateGreater:
        parts = {{target + 1, all.high}};
        break;
    case EvaluateGreaterOrEqual:
        parts = {{target, all.high}};
        break;
    case EvaluateLess:
        parts = {{all.low, target - 1}};
        break;
    case EvaluateLessOrEqual:
        parts = {{all.low, target}};
        break;
    default:
        break;
    }
    std::vector<Interval> values;
    for (const Interval& part : parts)
    {
        if (part.low <= part.high)
        {
            values.push_back(part);
        }
    }
    return values;
}

/// Reads the two bounds of a range, the lower first.
bool ReadBounds(const source::Value& operand, double* low, double* high)
{
    double bounds[2];
    const std::string text(ReadText(&operand));
    if (!operand.IsString() || !ReadNumbers(text.c_str(), bounds, 2))
    {
        return false;
    }
    *low = std::min(bounds[0], bounds[1]);
    *high = std::max(bounds[0], bounds[1]);
    return !std::isnan(bounds[0]) && !std::isnan(bounds[1]);
}

bool FindIntegers(const ConditionModel& condition, std::vector<Interval>* values)
{
    double low = 0.0;
    double high = 0.0;
    if (condition.evaluation == EvaluateInRange)
    {
        if (!ReadBounds(*condition.operand, &low, &high))
        {
            return false;
        }
        *values = {{TruncateToInt(low), TruncateToInt(high)}};
        return true;
    }
    const auto target = static_cast<std::int32_t>(condition.operand->ReadUInt());
    *values = Compared(condition.evaluation, target, {INT_MIN, INT_MAX});
    return condition.operand->IsInteger();
}

bool FindFloats(const ConditionModel& condition, std::vector<Interval>* values)
{
    double low = 0.0;
    double high = 0.0;
    if (condition.evaluation == EvaluateInRange)
    {
        if (!ReadBounds(*condition.operand, &low, &high))
        {
            return false;
        }
        *values = {
            {NumberOfFloat(static_cast<float>(low)), NumberOfFloat(static_cast<float>(high))}};
        return true;
    }
    const auto target = static_cast<float>(condition.operand->number);
    Interval all{};
    ValueSets::GetAll(PARAM_Float, &all);
    *values = condition.evaluation == EvaluateEqual
                  ? EqualFloats(target)
                  : Compared(condition.evaluation, NumberOfFloat(target), all);
    return condition.operand->IsNumber();
}

} // namespace

void ValueSet::Add(const Interval& interval)
{
    std::int64_t low = interval.low;
    std::int64_t high = interval.high;
    auto next = intervals.upper_bound(low);
    if (next != intervals.begin())
    {
        const auto before = std::prev(next);
        if (before->second >= low - 1)
        {
            low = before->first;
            high = std::max(high, before->second);
            intervals.erase(before);
        }
    }
    while (next != intervals.end() && next->first <= high + 1)
    {
        high = std::max(high, next->second);
        next = intervals.erase(next);
    }
    intervals.emplace(low, high);
}

bool ValueSet::Covers(const Interval& interval) const
{
    const auto next = intervals.upper_bound(interval.low);
    return next != intervals.begin() && std::prev(next)->second >= interval.high;
}

void ValueSet::Remove(const ValueSet& other)
{
    std::map<std::int64_t, std::int64_t> left;
    for (const auto& entry : intervals)
    {
        std::int64_t low = entry.first;
        auto cut = other.intervals.upper_bound(low);
        if (cut != other.intervals.begin())
        {
            low = std::max(low, std::prev(cut)->second + 1);
        }
        for (; cut != other.intervals.end() && cut->first <= entry.second; ++cut)
        {
            if (low < cut->first)
            {
                left.emplace(low, cut->first - 1);
            }
            low = std::max(low, cut->second + 1);
        }
        if (low <= entry.second)
        {
            left.emplace(low, entry.second);
        }
    }
    intervals.swap(left);
}

bool ValueSet::Overlaps(const ValueSet& other) const
{
    for (const auto& entry : intervals)
    {
        const auto next = other.intervals.upper_bound(entry.second);
        if (next != other.intervals.begin() && std::prev(next)->second >= entry.first)
        {
            return true;
        }
    }
    return false;
}

bool HoldingSet::HoldsAlways() const
{
    Interval all{};
    return values.size() == 1 && ValueSets::GetAll(condition->parameter->type, &all) &&
           values[0].low <= all.low && values[0].high >= all.high;
}

HoldingSet ValueSets::Find(const ConditionModel& condition)
{
    HoldingSet set;
    set.condition = &condition;
    const bool isTypeRight =
        condition.parameter != nullptr && condition.parameter->type == condition.type;
    if (!isTypeRight || condition.operand == nullptr || condition.evaluation == 0)
    {
        return set;
    }
    const source::Value& operand = *condition.operand;
    switch (condition.type)
    {
    case PARAM_Bool:
    {
        const std::int64_t target = operand.boolean ? 1 : 0;
        set.values = {{target, target}};
        set.isKnown = operand.IsBool();
        break;
    }
    case PARAM_Integer:
        set.isKnown = FindIntegers(condition, &set.values);
        break;
    case PARAM_Float:
        set.isKnown = FindFloats(condition, &set.values);
        break;
    case PARAM_Message:
    {
        const std::int64_t number = NumberOf(ReadText(&operand));
        set.values = {{number, number}};
        set.isKnown = !ReadText(&operand).empty();
        break;
    }
    default:
        break;
    }
    return set;
}

bool ValueSets::GetAll(int parameterType, Interval* all)
{
    switch (parameterType)
    {
    case PARAM_Bool:
        *all = {0, 1};
        return true;
    case PARAM_Integer:
        *all = {INT_MIN, INT_MAX};
        return true;
    case PARAM_Float:
        *all = {NumberOfFloat(-kInfinity), NumberOfFloat(kInfinity)};
        return true;
    default:
        return false;
    }
}

bool ValueSets::FindDefault(const ParameterModel& parameter, Interval* value)
{
    const source::Value* written = check::Find(*parameter.value, JSON_ParameterDefault);
    std::int64_t number = 0;
    switch (parameter.type)
    {
    case PARAM_Bool:
        number = written != nullptr && written->boolean ? 1 : 0;
        break;
    case PARAM_Integer:
        number = written == nullptr ? 0 : static_cast<std::int32_t>(written->ReadUInt());
        break;
    case PARAM_Float:
        number = written == nullptr ? 0 : NumberOfFloat(static_cast<float>(written->number));
        break;
    case PARAM_Message:
        number = NumberOf(ReadText(written));
        break;
    default:
        return false;
    }
    *value = {number, number};
    return true;
}

std::int64_t ValueSets::NumberOf(std::string_view text)
{
    // Twice the number, so that two texts never touch.
    const auto next = static_cast<std::int64_t>(2 * texts.size());
    return texts.emplace(std::string(text), next).first->second;
}

void Cover::Add(const HoldingSet& set)
{
    if (!set.isKnown || set.values.empty())
    {
        return;
    }
    ValueSet& known = sets[set.condition->parameter];
    for (const Interval& interval : set.values)
    {
        known.Add(interval);
    }
    Interval all{};
    const bool isFinite = ValueSets::GetAll(set.condition->parameter->type, &all);
    holdsAlways = holdsAlways || (isFinite && known.Covers(all));
}

bool Cover::Covers(const HoldingSet& set) const
{
    if (holdsAlways)
    {
        return true;
    }
    const auto known = set.isKnown ? sets.find(set.condition->parameter) : sets.end();
    if (known == sets.end())
    {
        return false;
    }
    return std::all_of(set.values.begin(), set.values.end(),
                       [&known](const Interval& interval)
                       {
                           return known->second.Covers(interval);
                       });
}

} // namespace vell::check
