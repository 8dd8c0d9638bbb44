// VELL: data-driven hierarchical state machines.
// bench/GameWorks.h: what a game does with a machine in a frame, a given number of times.
#pragma once

namespace vell::bench
{

// All but `FrameLimit` and `TickSettled` use samples/character.json, which walks: three states are
// on the stack, counting the global one. Three of its bool parameters reset each frame.

/// Ticks, without a write.
void TickSample(int times);

/// Ticks samples/locomotion.json, which has one state on the stack and no parameter that resets.
void TickSettled(int times);

/// Ticks with a trigger on one of the transitions of the active state, which never holds.
void TickTriggered(int times);

/// Sets one of the parameters that reset each frame, and ticks.
void TickResetting(int times);

/// Sets a float by a kept pointer, without a tick. Nobody listens.
void SetHotFloat(int times);

/// Five parameters set by kept pointers, two of which change, and a tick: a frame.
void Frame(int times);

/// The same by hand: five values stored, and each condition asked by a virtual call.
void FrameLimit(int times);

} // namespace vell::bench
