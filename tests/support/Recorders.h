// VELL: data-driven hierarchical state machines.
// tests/support/Recorders.h: what notes all that a machine tells.
#pragma once

#include <vell/HSM.h>

#include "tests/support/LogRecorder.h"
#include "tests/support/TestAction.h"
#include "tests/support/TestListener.h"

#include <string>

namespace vell::test
{

// What these note goes into the lines of the LogRecorder that lives, in order with the log.

/// A state-switch callback: notes "switch PREVIOUS -> NEXT ARGUMENT", names of states, "-" for
/// none.
void RecordSwitch(HSM* machine, SMState* previous, SMState* next, float argument);

/// Puts a TestAction labelled with the node's name on all three lists of every definition that
/// can run as a state.
void RecordActions(HSM& machine);

/// Notes "tree KEY = VALUE" for each write of a number in the machine's "contextInfo".
void RecordTree(HSM& machine);

/// Records everything that an initialised machine tells: actions, the callback, "changes: ..." of a
/// state change listener, "events: ..." of an event listener, and the tree. To be made after `Init`
/// and unmade before the machine. A listener of transition changes stands by: nobody calls it, and
/// a line "never: ..." would show that somebody did.
class MachineRecorder
{
public:
    explicit MachineRecorder(HSM& recorded);
    ~MachineRecorder();
    MachineRecorder(const MachineRecorder&) = delete;
    MachineRecorder& operator=(const MachineRecorder&) = delete;

private:
    HSM& machine;
    TestListener changes;
    TestListener events;
    TestListener never;
};

// What a MachineRecorder and the log show of one step of a machine, as `LogRecorder::Take` gives
// it.

/// A transition held.
Lines Fired(const std::string& state, unsigned int transition);
/// A state was left.
Lines Left(const std::string& state);
/// A state was activated; `previous` is the name of the state last left, "-" for none.
Lines Activated(const std::string& state, unsigned int id, const std::string& previous,
                const std::string& argument = "0");
/// A state was entered.
Lines Entered(const std::string& state);
/// A change of states was written to the tree and told to the listener.
Lines Reported(unsigned int transition, unsigned int previous, unsigned int next);
/// An exit node logged that it was entered, updated or left.
std::string ExitNodeLine(const std::string& state);
/// An activation failed.
std::string NotActivated(unsigned int id);

Lines operator+(Lines left, const Lines& right);

} // namespace vell::test
