// VELL: data-driven hierarchical state machines.
// tools/vell/Explain.h: why each transition of a state fired or did not.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace vell
{
class IParameterTable;
class SMState;
class TransitionDef;
} // namespace vell

namespace vell::tool
{

/// One condition and what it saw.
struct ConditionReading
{
    std::string text; ///< such as `speed > 1.5`
    std::string saw;  ///< such as `1.2`; empty when it is not bound to a parameter
    bool holds = false;
};

enum class Verdict
{
    Fires,
    Refused,    ///< holds, and is below the priority that starts a blip
    Disabled,   ///< is never tested
    NotHolding, ///< was tested, and nothing holds
    NoTarget,   ///< holds, and leads nowhere: nothing fires, and later ones are not tested
    NotReached  ///< an earlier one holds
};

/// One transition of a state that was tested.
struct TransitionReading
{
    TransitionDef* transition = nullptr;
    Verdict verdict = Verdict::NotHolding;
    std::vector<ConditionReading> conditions;
    int blipPriority = 0; ///< of the refused: what it would have had to reach
};

/// Reads the conditions of `transition`, without calling triggers.
std::vector<ConditionReading> ReadConditions(const TransitionDef& transition,
                                             IParameterTable* parameters);

/// Reads the transitions of `state` in the order in which they are tested. `fired` is the one that
/// holds and has a target, or null; `isRefused` says that its priority was below `blipPriority`.
std::vector<TransitionReading> ExplainState(const SMState& state, const TransitionDef* fired,
                                            bool isRefused, int blipPriority,
                                            IParameterTable* parameters);

/// What to explain.
struct ExplainOptions
{
    bool isOn = false;
    bool isAll = false;     ///< in every tick, even what is as it was in the tick before
    std::string name;       ///< of the one state or transition to explain, or its id; empty for all
    std::uint64_t from = 0; ///< the first tick
    std::uint64_t to = std::numeric_limits<std::uint64_t>::max(); ///< the last tick
};

/// Leaves out what a reader has seen: a reading that is the same as in the tick before.
class ExplainFilter
{
public:
    explicit ExplainFilter(const ExplainOptions& options);

    /// Removes from `readings`, which are those of `state`, what is not to be shown. Returns
    /// whether there is anything to show: a state without transitions is shown when it is new.
    bool Select(std::uint64_t tick, const SMState& state, std::vector<TransitionReading>& readings);

private:
    struct Reading
    {
        std::uint64_t tick = 0;
        std::vector<std::string> lines; ///< one for each transition
    };

    bool IsNamed(const SMState& state) const;
    bool IsNamed(const TransitionReading& reading) const;

    ExplainOptions options;
    std::map<const SMState*, Reading> last;
};

/// Gives what made `transition` hold: the first condition, with the value it saw, or a trigger.
std::string HeldText(const TransitionDef& transition, IParameterTable* parameters);

/// Gives the verdict in words, such as "not reached, an earlier one holds".
std::string VerdictText(const TransitionReading& reading);

/// Gives the conditions in words: `speed > 1.5 (saw 1.2), jump == "go" (saw "")`.
std::string ConditionsText(const std::vector<ConditionReading>& conditions);

} // namespace vell::tool
