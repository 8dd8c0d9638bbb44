// VELL: data-driven hierarchical state machines.
// bench/Frame.h: a frame of a game, for a machine of ours, a hand-written one or a peer's.
#pragma once

namespace vell::bench
{

inline constexpr float kTimeStep = 0.016f;

/// What a frame has beside five inputs and a tick.
enum class Extra
{
    Nothing,
    Actions,  ///< an execute action on each active state
    Trigger,  ///< a trigger on a transition of the active state, which never holds
    Reset,    ///< a parameter that resets each frame, which is set in each
    Listener, ///< on a parameter that changes in each frame
};

/// Gives `first` and `second` in turn.
inline float InTurn(int frame, float first, float second)
{
    return frame % 2 == 0 ? first : second;
}

/// Stores five values, two of which change from frame to frame. No condition holds.
template <class Machine>
void SetFrameValues(Machine& machine, int frame)
{
    machine.SetValue(0, InTurn(frame, 0.5f, 0.75f));
    machine.SetValue(1, InTurn(frame, 0.25f, 0.5f));
    machine.SetValue(2, 0.0f);
    machine.SetValue(3, 0.0f);
    machine.SetValue(4, 0.0f);
}

/// Lets one of the first two conditions hold, in turn.
template <class Machine>
void SetSwitchValues(Machine& machine, int frame)
{
    machine.SetValue(0, InTurn(frame, 0.0f, 2.0f));
    machine.SetValue(1, InTurn(frame, 2.0f, 0.0f));
}

/// Sets the inputs and ticks.
template <Extra kExtra, class Machine>
void RunFrame(Machine& machine, int frame)
{
    machine.SetInputs(frame);
    if constexpr (kExtra == Extra::Reset)
    {
        machine.SetResetting();
    }
    machine.Update(kTimeStep);
}

/// Makes a transition of the innermost state hold, and ticks.
template <class Machine>
void RunSwitch(Machine& machine, int frame)
{
    machine.SetSwitching(frame);
    machine.Update(kTimeStep);
}

} // namespace vell::bench
