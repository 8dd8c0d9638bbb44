// VELL: data-driven hierarchical state machines.
// bench/GameWorks.h: what a game does with a machine in a frame, a given number of times.
#pragma once

#include "bench/Frame.h"

namespace vell::bench
{

// All but `TickSettled` use the walking character of bench/Character.h.

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
template <Extra kExtra>
void Frames(int times);

/// The same by hand.
template <Extra kExtra>
void FramesByHand(int times);

/// Changes the innermost state in each tick, by a parameter.
void Switches(int times);

/// The same by hand.
void SwitchesByHand(int times);

/// Creates, initialises, starts and ends the character, while another one lives.
void Spawns(int times);

/// Only parses its document.
void Parses(int times);

} // namespace vell::bench
