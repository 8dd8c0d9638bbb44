// VELL: data-driven hierarchical state machines.
// tests/callbacks/Operations.h: what a host can do to a machine, one entry an operation.
#pragma once

#include "tests/callbacks/Cast.h"

#include <string>
#include <vector>

namespace vell::callbacks
{

/// One operation, with its arguments. `run` returns false when the hand and the machine have
/// nothing to run it on, and then did nothing.
struct Operation
{
    const char* name;
    bool (*run)(Hand& hand);
    bool leaves = false; ///< it takes actions or tables from those who delete and close them
};

constexpr bool kLeaves = true;

/// All operations. Each name is there once.
const std::vector<Operation>& Operations();

/// A pair of a callback and an operation that cannot work, whatever the library does.
struct ImpossiblePair
{
    const char* callback;  ///< null for every callback
    const char* operation; ///< null for every operation
    const char* reason;
};

const std::vector<ImpossiblePair>& ImpossiblePairs();

/// Gives the entry that the pair falls under, or null.
const ImpossiblePair* FindImpossible(const std::string& callback, const std::string& operation);

// The parts that `Operations` puts together.
std::vector<Operation> MachineOperations();
std::vector<Operation> ProtectedMachineOperations();
std::vector<Operation> StateOperations();
std::vector<Operation> DefinitionOperations();
std::vector<Operation> TransitionOperations();
std::vector<Operation> ActionOperations();
std::vector<Operation> ParameterOperations();
std::vector<Operation> AttributeOperations();
std::vector<Operation> TableOperations();

// What an operation is run on. Each may give null.

/// The callback's own state, or the current one, or the first one that was activated.
SMState* OwnState(const Hand& hand);
/// A state that is not the own one.
SMState* OtherState(const Hand& hand);
/// The callback's own definition, or that of the own state, or the first one.
BaseDef* OwnDef(const Hand& hand);
/// A definition of a state that is not the own one.
BaseDef* OtherDef(const Hand& hand);
/// The state of the scene's one level.
SubstateState* FindLevel(const Hand& hand);
/// The transition `name`, and the first condition of "Go".
TransitionDef* FindTransition(const Hand& hand, const char* name);
ConditionDef* FindCondition(const Hand& hand);
/// The callback's own parameter, or "cue".
ParameterDef* OwnParameter(const Hand& hand);
/// The parameter `name`.
ParameterDef* FindParameter(const Hand& hand, const char* name);
/// The attribute `name` of the scene's first state.
AttribBase* FindAttribute(const Hand& hand, const char* name);
/// The table "contextInfo".
Tessel::KVTable ContextTable(const Hand& hand);
/// The table that the callback hears, or the own parameter's.
Tessel::KVTable OwnTable(const Hand& hand);
/// The nodes of the document's one layer, and the one with the id `id`; a null value when there is
/// none.
const GenericValue& NodeValues(const Hand& hand);
const GenericValue& NodeValue(const Hand& hand, unsigned int id);

} // namespace vell::callbacks

// What `run` of an operation is, on each kind of object. The operation reaches the object by the
// name that is in front of `find`, and the callback's hand as `hand`.
#define VELL_ON(Found, found, find, ...)                                                           \
    [](Hand& hand) -> bool                                                                         \
    {                                                                                              \
        Found* const foundObject = find;                                                           \
        if (foundObject == nullptr)                                                                \
        {                                                                                          \
            return false;                                                                          \
        }                                                                                          \
        Found& found = *foundObject;                                                               \
        __VA_ARGS__;                                                                               \
        return true;                                                                               \
    }
#define VELL_ON_MACHINE(...) VELL_ON(HostMachine, machine, hand.machine, __VA_ARGS__)
#define VELL_ON_STATE(...) VELL_ON(SMState, state, OwnState(hand), __VA_ARGS__)
#define VELL_ON_OTHER_STATE(...) VELL_ON(SMState, state, OtherState(hand), __VA_ARGS__)
#define VELL_ON_DEF(...) VELL_ON(BaseDef, def, OwnDef(hand), __VA_ARGS__)
#define VELL_ON_OTHER_DEF(...) VELL_ON(BaseDef, def, OtherDef(hand), __VA_ARGS__)
#define VELL_ON_TRANSITION(...) VELL_ON(TransitionDef, def, FindTransition(hand, "Go"), __VA_ARGS__)
#define VELL_ON_CONDITION(...) VELL_ON(ConditionDef, condition, FindCondition(hand), __VA_ARGS__)
#define VELL_ON_LEVEL(...) VELL_ON(SubstateState, level, FindLevel(hand), __VA_ARGS__)
#define VELL_ON_ACTION(...) VELL_ON(HostAction, action, hand.action, __VA_ARGS__)
#define VELL_ON_PARAMETERS(...)                                                                    \
    VELL_ON(IParameterTable, table, hand.machine->GetParameterTable(), __VA_ARGS__)
#define VELL_ON_PARAMETER(...) VELL_ON(ParameterDef, parameter, OwnParameter(hand), __VA_ARGS__)
#define VELL_ON_NAMED(Found, name, ...)                                                            \
    VELL_ON(Found, parameter, dynamic_cast<Found*>(FindParameter(hand, name)), __VA_ARGS__)
#define VELL_ON_ATTRIBUTE(name, ...)                                                               \
    VELL_ON(AttribBase, attribute, FindAttribute(hand, name), __VA_ARGS__)

// The same for a table, which goes by its handle.
#define VELL_ON_HANDLE(find, ...)                                                                  \
    [](Hand& hand) -> bool                                                                         \
    {                                                                                              \
        const Tessel::KVTable table = find;                                                        \
        if (!table)                                                                                \
        {                                                                                          \
            return false;                                                                          \
        }                                                                                          \
        __VA_ARGS__;                                                                               \
        return true;                                                                               \
    }
#define VELL_ON_TABLE(...) VELL_ON_HANDLE(OwnTable(hand), __VA_ARGS__)
#define VELL_ON_CONTEXT(...) VELL_ON_HANDLE(ContextTable(hand), __VA_ARGS__)
#define VELL_ON_ROOT(...) VELL_ON_HANDLE(hand.machine->GetKVTable(), __VA_ARGS__)
