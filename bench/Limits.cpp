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

class CountingHook final : public LimitHook
{
public:
    void Call(float value) override
    {
        total += value;
    }

private:
    float total = 0.0f;
};

bool Never()
{
    return false;
}

float switched = 0.0f;

void CountSwitch(float argument)
{
    switched += argument;
}

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

template <int kTransitions>
template <class T, class... Arguments>
T* VirtualMachine<kTransitions>::Make(Arguments... arguments)
{
    if (!isBlock)
    {
        return new T{arguments...};
    }
    T* made = new (next) T{arguments...};
    next += (sizeof(T) + 7) / 8 * 8;
    return made;
}

template <int kTransitions>
VirtualMachine<kTransitions>::VirtualMachine(unsigned char* block)
    : next(block), isBlock(block != nullptr)
{
    for (int i = 0; i < kLimitStates; ++i)
    {
        states[i] = Make<State>();
        for (int j = 0; j < kTransitions; ++j)
        {
            float*& value = values[i * kTransitions + j];
            value = Make<float>(0.0f);
            LimitCondition* condition = Make<GreaterCondition>(static_cast<const float*>(value));
            states[i]->transitions[j] = Make<Transition>(condition, 1u + static_cast<unsigned>(j));
        }
    }
}

template <int kTransitions>
VirtualMachine<kTransitions>::~VirtualMachine()
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

template <int kTransitions>
std::size_t VirtualMachine<kTransitions>::BlockSize()
{
    constexpr std::size_t kConditions = kLimitStates * kTransitions;
    return kLimitStates * sizeof(State) +
           kConditions * (8 + sizeof(GreaterCondition) + sizeof(Transition));
}

template class VirtualMachine<kCharacterTransitions>;
template class VirtualMachine<kLimitTransitions>;
template class VirtualMachine<2 * kLimitTransitions>;
template class VirtualMachine<4 * kLimitTransitions>;
template class VirtualMachine<8 * kLimitTransitions>;

const LimitHooks& GetLimitHooks()
{
    static CountingHook actions[kLimitStates];
    static CountingHook listener;
    static const LimitHooks hooks{
        {&actions[0], &actions[1], &actions[2]}, &listener, Never, CountSwitch};
    return hooks;
}

} // namespace vell::bench
