// VELL: data-driven hierarchical state machines.
// tools/vell/Explain.h: why each transition of a state fired or did not.
#pragma once

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

/// Gives what made `transition` hold: the first condition, with the value it saw, or a trigger.
std::string HeldText(const TransitionDef& transition, IParameterTable* parameters);

/// Gives the verdict in words, such as "not reached, an earlier one holds".
std::string VerdictText(const TransitionReading& reading);

/// Gives the conditions in words: `speed > 1.5 (saw 1.2), jump == "go" (saw "")`.
std::string ConditionsText(const std::vector<ConditionReading>& conditions);

} // namespace vell::tool
