// VELL: data-driven hierarchical state machines.
// bench/Documents.h: generated machine documents of any size.
#pragma once

#include <string>

namespace vell::bench
{

/// What is on the stack of a machine that is ticked, and what is around it.
struct TickShape
{
    int levels = 3;                 ///< states on the stack, four transitions each
    int conditionsInTransition = 1; ///< none holds while the parameters are 0
    int nodes = 0;                  ///< filled up to this many with states that nobody enters
};

/// A machine whose ticks change no state.
std::string IdleDocument(const TickShape& shape);

/// The id of the state that is innermost in an idle machine of `levels`.
unsigned int InnermostId(int levels);

/// As `IdleDocument`, but the innermost level holds two states that take turns, one change a tick.
/// The parameter `kStill`, set to anything but 0, holds them where they are.
std::string SwitchingDocument(int levels);

/// A machine of one state that a global transition interrupts while the parameter `kInterrupt`
/// is above 0, with an exit node that ends the interruption.
std::string BlipDocument();

/// A machine of `states` plain states with three transitions each, one condition each.
std::string LoadDocument(int states);

inline constexpr const char* kStill = "still";
inline constexpr const char* kInterrupt = "interrupt";

} // namespace vell::bench
