// VELL: data-driven hierarchical state machines.
// bench/Limits.h: hand-written machines that do what an idle tick does and nothing else.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace vell::bench
{

inline constexpr int kLimitStates = 3;
inline constexpr int kLimitTransitions = 4;

/// Plain records in one block: an operator switch that reads through a pointer.
class SwitchMachine
{
public:
    SwitchMachine();
    SwitchMachine(const SwitchMachine&) = delete;
    SwitchMachine& operator=(const SwitchMachine&) = delete;

    void Update(float timeStep);

    unsigned int current = 0; ///< the target of the last transition that held
    float elapsed = 0.0f;

private:
    struct Condition
    {
        int evaluation;
        const float* value;
        float target;
    };
    struct Transition
    {
        Condition condition;
        unsigned int target;
    };
    struct State
    {
        Transition transitions[kLimitTransitions];
    };

    static bool Holds(const Condition& condition);

    std::vector<State> states;
    float values[kLimitStates * kLimitTransitions] = {};
};

/// A condition that is asked by a virtual call.
class LimitCondition
{
public:
    virtual ~LimitCondition() = default;
    virtual bool Evaluate() const = 0;
};

/// The same loop with one virtual call a condition, every object allocated alone or all in one
/// block in the order of the loop.
class VirtualMachine
{
public:
    /// Creates a machine in `block`, which has space for it, or scattered over the heap when null.
    explicit VirtualMachine(unsigned char* block);
    ~VirtualMachine();
    VirtualMachine(const VirtualMachine&) = delete;
    VirtualMachine& operator=(const VirtualMachine&) = delete;

    static std::size_t BlockSize();
    void Update(float timeStep);
    /// Stores the value of condition `index`.
    void SetValue(int index, float value);

    unsigned int current = 0;
    float elapsed = 0.0f;

private:
    struct Transition
    {
        LimitCondition* condition;
        unsigned int target;
    };
    struct State
    {
        Transition* transitions[kLimitTransitions];
    };

    template <class T, class... Arguments>
    T* Make(Arguments... arguments);

    unsigned char* next;
    bool isBlock;
    State* states[kLimitStates];
    float* values[kLimitStates * kLimitTransitions];
};

} // namespace vell::bench
