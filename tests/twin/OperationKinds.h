// VELL: data-driven hierarchical state machines.
// tests/twin/OperationKinds.h: all that a host of the twin test can do.
#pragma once

#include "tests/twin/Side.h"

namespace twin
{

/// From where an operation may be done.
enum class Place
{
    Outside,   ///< between the calls of the machine only
    Actions,   ///< from enter and execute actions too
    Callbacks, ///< from all actions, triggers and listeners too
    Everywhere ///< from the log callback too
};

/// One kind of operation. What it does is a function of its picks and value, so that both machines
/// get the same.
struct OperationKind
{
    const char* name;
    int weight;
    Place place;
    void (*apply)(Side& side, const Operation& operation);
};

using OperationKinds = std::vector<OperationKind>;

// By what they act on.
OperationKinds ParameterOperations();
OperationKinds ConditionOperations();
OperationKinds TransitionOperations();
OperationKinds StateOperations();
OperationKinds DefinitionOperations();
OperationKinds MachineOperations();
OperationKinds FieldOperations();
OperationKinds TreeOperations();

/// All of them. `Tick` comes first, then `Start`.
const OperationKinds& AllOperations();
constexpr std::size_t kTick = 0;
constexpr std::size_t kStart = 1;

} // namespace twin
