// VELL: data-driven hierarchical state machines.
// bench/Limits.cpp: hand-written machines that do what an idle tick does and nothing else.
#include "bench/Limits.h"

#include <new>

namespace vell::bench
{
namespace
{

constexpr int kGreater = 3;

class GreaterCondition final : public LimitCondition
{
public:
    explicit GreaterCondition(const float* newValue) : value(newValue)
    {
    }
    bool Evaluate() const override
    {
        return *value > target;
    }

private:
    const float* value;
    float target = 1.0f;
};

} // namespace

SwitchMachine::SwitchMachine() : states(kLimitStates)
{
    const float* value = values;
    for (State& state : states)
    {
        for (Transition& transition : state.transitions)
        {
            transition = Transition{Condition{kGreater, value++, 1.0f}, 1};
        }
    }
}

template <class T, class... Arguments>
T* VirtualMachine::Make(Arguments... arguments)
{
    if (!isBlock)
    {
        return new T{arguments...};
    }
    T* made = new (next) T{arguments...};
    next += (sizeof(T) + 7) / 8 * 8;
    return made;
}

VirtualMachine::VirtualMachine(unsigned char* block) : next(block), isBlock(block != nullptr)
{
    for (int i = 0; i < kLimitStates; ++i)
    {
        states[i] = Make<State>();
        for (int j = 0; j < kLimitTransitions; ++j)
        {
            float*& value = values[i * kLimitTransitions + j];
            value = Make<float>(0.0f);
            LimitCondition* condition = Make<GreaterCondition>(static_cast<const float*>(value));
            states[i]->transitions[j] = Make<Transition>(condition, 1u);
        }
    }
}

VirtualMachine::~VirtualMachine()
{
    if (isBlock)
    {
        return;
    }
    for (State* state : states)
    {
        for (Transition* transition : state->transitions)
        {
            delete transition->condition;
            delete transition;
        }
        delete state;
    }
    for (float* value : values)
    {
        delete value;
    }
}

std::size_t VirtualMachine::BlockSize()
{
    constexpr std::size_t kConditions = kLimitStates * kLimitTransitions;
    return kLimitStates * sizeof(State) +
           kConditions * (8 + sizeof(GreaterCondition) + sizeof(Transition));
}

} // namespace vell::bench
