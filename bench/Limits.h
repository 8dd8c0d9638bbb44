// VELL: data-driven hierarchical state machines.
// bench/Limits.h: hand-written machines that do what an idle tick does and nothing else.
#pragma once

#include "bench/Frame.h"

#include <cstddef>
#include <vector>

namespace vell::bench
{

inline constexpr int kLimitStates = 3;
inline constexpr int kLimitTransitions = 4;     ///< of a state
inline constexpr int kCharacterTransitions = 2; ///< of a state, in samples/character.json

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

/// The same loop with one virtual call per condition, all objects in one block in the order of the
/// loop, or each allocated alone. A transition has one condition, which holds above 1.
template <int kTransitions>
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
    unsigned int Current() const
    {
        return current;
    }
    /// Stores the value of condition `index`.
    void SetValue(int index, float value);

    unsigned int current = 0; ///< 1 + the index in its state of the last transition that held
    float elapsed = 0.0f;

private:
    struct Transition
    {
        LimitCondition* condition;
        unsigned int target;
    };
    struct State
    {
        Transition* transitions[kTransitions];
    };

    template <class T, class... Arguments>
    T* Make(Arguments... arguments);

    unsigned char* next;
    bool isBlock;
    State* states[kLimitStates];
    float* values[kLimitStates * kTransitions];
};

using CharacterWalk = VirtualMachine<kCharacterTransitions>;

/// What a hand-written machine calls of its host's, virtually.
class LimitHook
{
public:
    virtual ~LimitHook() = default;
    virtual void Call(float value) = 0;
};

/// The host's, for all hand-written characters.
struct LimitHooks
{
    LimitHook* actions[kLimitStates]; ///< one for each state; also what is entered and left
    LimitHook* listener;
    bool (*trigger)(); ///< never holds
    void (*onSwitch)(float argument);
};

const LimitHooks& GetLimitHooks();

/// A frame of samples/character.json by hand: as many states and conditions as are active in it.
template <Extra kExtra>
class CharacterLimit
{
public:
    explicit CharacterLimit(unsigned char* block) : walk(block), hooks(&GetLimitHooks())
    {
    }

    static std::size_t BlockSize()
    {
        return CharacterWalk::BlockSize();
    }

    void SetInputs(int frame)
    {
        SetFrameValues(walk, frame);
        if constexpr (kExtra == Extra::Listener)
        {
            hooks->listener->Call(static_cast<float>(frame));
        }
    }

    void SetResetting()
    {
        walk.SetValue(kResetting, 1.0f);
    }

    void Update(float timeStep)
    {
        if constexpr (kExtra == Extra::Actions)
        {
            for (LimitHook* action : hooks->actions)
            {
                action->Call(timeStep);
            }
        }
        walk.Update(timeStep);
        if constexpr (kExtra == Extra::Trigger)
        {
            walk.current = hooks->trigger() ? 1 : walk.current;
        }
        if constexpr (kExtra == Extra::Reset)
        {
            walk.SetValue(kResetting, 0.0f);
        }
    }

    unsigned int Current() const
    {
        return walk.current;
    }

private:
    static constexpr int kResetting = 5;

    CharacterWalk walk;
    const LimitHooks* hooks;
};

/// Changes its innermost state in each tick, and tells a listener and a callback.
class ChangingLimit
{
public:
    explicit ChangingLimit(unsigned char* block);

    static std::size_t BlockSize()
    {
        return CharacterWalk::BlockSize();
    }

    void SetSwitching(int frame)
    {
        SetSwitchValues(walk, frame);
    }

    void Update(float timeStep);

    unsigned int Current() const
    {
        return walk.current;
    }

private:
    void Change();

    CharacterWalk walk;
    const LimitHooks* hooks;
    unsigned int active = 1;
};

/// A hand-written machine whose objects are in one block.
template <class Limit>
struct LimitInBlock
{
    std::vector<unsigned char> block = std::vector<unsigned char>(Limit::BlockSize());
    Limit machine = Limit(block.data());
};

} // namespace vell::bench
