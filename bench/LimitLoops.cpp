// VELL: data-driven hierarchical state machines.
// bench/LimitLoops.cpp: the loops of the hand-written machines.
#include "bench/Limits.h"

#include <cmath>

// Apart from where the machines are made, so that the compiler knows neither the operators nor the
// classes of the conditions.
namespace vell::bench
{

bool SwitchMachine::Holds(const Condition& condition)
{
    const float value = *condition.value;
    switch (condition.evaluation)
    {
    case 1:
        return std::fabs(condition.target - value) < 0.01f;
    case 2:
        return value != condition.target;
    case 3:
        return value > condition.target;
    case 4:
        return value >= condition.target;
    case 5:
        return value < condition.target;
    case 6:
        return value <= condition.target;
    default:
        return false;
    }
}

void SwitchMachine::Update(float timeStep)
{
    elapsed += timeStep;
    for (std::size_t i = states.size(); i-- > 0;)
    {
        for (const Transition& transition : states[i].transitions)
        {
            if (Holds(transition.condition))
            {
                current = transition.target;
                break;
            }
        }
    }
}

void VirtualMachine::Update(float timeStep)
{
    elapsed += timeStep;
    for (int i = kLimitStates; i-- > 0;)
    {
        for (const Transition* transition : states[i]->transitions)
        {
            if (transition->condition->Evaluate())
            {
                current = transition->target;
                break;
            }
        }
    }
}

void VirtualMachine::SetValue(int index, float value)
{
    *values[index] = value;
}

} // namespace vell::bench
