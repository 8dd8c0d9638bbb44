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
    ExitState* state = nullptr;
    do
    {
        ERROR_BREAK(alloc);
        state = Internals::Place<ExitState>(stateId, alloc);
        ERROR_BREAK(state);
    } while (false);
    return state;
}

int ExitState::Init(BaseDef* newDef)
{
    int result = 0;
    do
    {
        ERROR_BREAK(newDef);
        ERROR_BREAK(SMState::Init(newDef));
        typedDef = dynamic_cast<ExitDef*>(newDef);
        ERROR_BREAK(typedDef);
        result = 1;
    } while (false);
    return result;
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
    int result = 0;
    do
    {
        ERROR_BREAK(def);
        // Required: no execute action runs on an exit node.
        HSM* const machine = hsm; // the log's callback may take the state away from it
        if (machine != nullptr && MachineServices::IsBlipState(*machine))
        {
            LogStream(LogInfo) << "Revert to Previous State" << EndLine;
            MachineServices::RevertToPreviousState(*machine);
        }
        result = 1;
    } while (false);
    return result;
}

int ExitState::Exit()
{
    int result = 0;
    do
    {
        ERROR_BREAK(def);
        // Required: no exit action runs on an exit node, and there is no "[Exit] " line.
        LogStream(LogInfo) << DefName() << VELL_PLACE << EndLine;
        result = 1;
    } while (false);
    return result;
}

const char* ExitState::DefName() const
{
    return def == nullptr ? nullptr : def->GetName();
}

} // namespace vell
