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

template <int kTransitions>
void VirtualMachine<kTransitions>::Update(float timeStep)
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

template <int kTransitions>
void VirtualMachine<kTransitions>::SetValue(int index, float value)
{
    *values[index] = value;
}

template void VirtualMachine<kCharacterTransitions>::Update(float);
template void VirtualMachine<kLimitTransitions>::Update(float);
template void VirtualMachine<2 * kLimitTransitions>::Update(float);
template void VirtualMachine<4 * kLimitTransitions>::Update(float);
template void VirtualMachine<8 * kLimitTransitions>::Update(float);
template void VirtualMachine<kCharacterTransitions>::SetValue(int, float);
template void VirtualMachine<kLimitTransitions>::SetValue(int, float);

ChangingLimit::ChangingLimit(unsigned char* block) : walk(block), hooks(&GetLimitHooks())
{
}

void ChangingLimit::Update(float timeStep)
{
    walk.Update(timeStep);
    if (walk.current != active)
    {
        Change();
    }
}

void ChangingLimit::Change()
{
    hooks->actions[active]->Call(0.0f);
    active = walk.current;
    hooks->listener->Call(0.2f);
    hooks->onSwitch(0.2f);
    hooks->actions[active]->Call(0.0f);
}

} // namespace vell::bench
