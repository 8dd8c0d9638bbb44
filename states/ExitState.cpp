// VELL: data-driven hierarchical state machines.
// states/ExitState.cpp: ending of a blip.
#include "states/ExitState.h"

#include "definitions/ExitDef.h"
#include "foundation/Checks.h"
#include "states/MachineServices.h"
#include "states/SMStateInternals.h"

namespace vell
{

SMState* ExitState::Create(unsigned int stateId, HSMAlloc* alloc)
{
    ERROR_RETURN(alloc, nullptr);
    ExitState* state = Internals::Place<ExitState>(stateId, alloc);
    ERROR_RETURN(state, nullptr);
    return state;
}

int ExitState::Init(BaseDef* newDef)
{
    ERROR_RETURN(newDef, 0);
    ERROR_RETURN(SMState::Init(newDef), 0);
    typedDef = dynamic_cast<ExitDef*>(newDef);
    ERROR_RETURN(typedDef, 0);
    return 1;
}

int ExitState::Enter()
{
    LogStream(LogInfo) << DefName() << VELL_PLACE << EndLine;
    return SMState::Enter();
}

int ExitState::Update(HSM* machine, float dt)
{
    LogStream(LogInfo) << DefName() << VELL_PLACE << EndLine;
    return SMState::Update(machine, dt);
}

int ExitState::Execute(double)
{
    ERROR_RETURN(def, 0);
    // Required: no execute action runs on an exit node.
    HSM* const machine = hsm; // the log's callback may take the state away from it
    if (machine != nullptr && MachineServices::IsBlipState(*machine))
    {
        LogStream(LogInfo) << "Revert to Previous State" << EndLine;
        MachineServices::RevertToPreviousState(*machine);
    }
    return 1;
}

int ExitState::Exit()
{
    ERROR_RETURN(def, 0);
    // Required: no exit action runs on an exit node, and there is no "[Exit] " line.
    LogStream(LogInfo) << DefName() << VELL_PLACE << EndLine;
    return 1;
}

const char* ExitState::DefName() const
{
    return def == nullptr ? nullptr : def->GetName();
}

} // namespace vell
