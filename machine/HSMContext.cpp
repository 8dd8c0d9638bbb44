// VELL: data-driven hierarchical state machines.
// machine/HSMContext.cpp: putting a machine into a recorded context.
#include <vell/HSM.h>

#include "foundation/Checks.h"
#include "foundation/TreeKeys.h"
#include "introspection/MachineTree.h"
#include "machine/HSMInternals.h"

namespace vell
{
namespace
{

/// Keeps a machine from ticking for as long as it lives.
class Suspension
{
public:
    explicit Suspension(bool& machineFlag) : flag(machineFlag)
    {
        flag = true;
    }
    ~Suspension()
    {
        flag = false;
    }
    Suspension(const Suspension&) = delete;
    Suspension& operator=(const Suspension&) = delete;

private:
    bool& flag;
};

Tessel::KVTable GetChild(Tessel::KVTable table, const char* key)
{
    return table ? table->GetTable(key) : Tessel::KVTable();
}

unsigned int GetIdAt(Tessel::KVTable array, unsigned int index)
{
    Tessel::KVValue* value = array->GetValueAt(index);
    return value == nullptr ? 0 : value->GetUIntValue();
}

} // namespace

int HSM::SetContextInfo(const Tessel::KVTable& context)
{
    const Suspension suspension(applyingContext);
    // Required: the blip, the active stack and the parameters stay as they are.
    ERROR_RETURN(SetContextInfo_StackStates(GetChild(context, kMainStackKey)), 0);
    ERROR_RETURN(SetContextInfo_StackBlip(GetChild(context, kBlipStackKey)), 0);
    ERROR_RETURN(SetContextInfo_StateSwitching(context), 0);
    return 1;
}

int HSM::SetContextInfo_StackStates(const Tessel::KVTable& table)
{
    // Required: the machine's own array in the tree stays as it was. A later pop removes the last
    // element of that stale array.
    stateStack.clear();
    const unsigned int count = table ? table->GetCount() : 0;
    for (unsigned int i = 0; i < count; ++i)
    {
        // Required: the state-switch callback is called for each state.
        SMState* state = ActivateState(GetIdAt(table, i), 0.0f);
        // Required: an unknown id ends the restore, and only the log shows it.
        ERROR_BREAK(state);
        // Required: no state is left, and none is entered.
        stateStack.push_back(state);
    }
    return 1;
}

int HSM::SetContextInfo_StackBlip(const Tessel::KVTable& table)
{
    blipStack.clear();
    const unsigned int count = table ? table->GetCount() : 0;
    for (unsigned int i = 0; i < count; ++i)
    {
        SMState* state = ActivateState(GetIdAt(table, i), 0.0f);
        // An unknown id ends this stack too.
        ERROR_BREAK(state);
        blipStack.push_back(state);
    }
    return 1;
}

int HSM::SetContextInfo_StateSwitching(const Tessel::KVTable& context)
{
    MachineTree tree(kvTable, internals->context);
    tree.RestoreChange(context);
    Notify(tree.ReadChange());
    return 1;
}

} // namespace vell
