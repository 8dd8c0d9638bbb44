// VELL: data-driven hierarchical state machines.
// states/SubstateState.cpp: starting, resuming and leaving a nested level.
#include <vell/SubstateState.h>

#include "definitions/EnterDef.h"
#include "definitions/ExitDef.h"
#include "definitions/SubstateDef.h"
#include "foundation/Checks.h"
#include "states/MachineServices.h"
#include "states/SMStateInternals.h"

namespace vell
{

SMState* SubstateState::Create(unsigned int stateId, HSMAlloc* alloc)
{
    SubstateState* state = nullptr;
    do
    {
        ERROR_BREAK(alloc);
        state = Internals::Place<SubstateState>(stateId, alloc);
        ERROR_BREAK(state);
    } while (false);
    return state;
}

SubstateState::~SubstateState()
{
    subDef = nullptr;
    previousChildID = 0;
}

int SubstateState::Init(BaseDef* newDef)
{
    int result = 0;
    do
    {
        ERROR_BREAK(newDef);
        ERROR_BREAK(SMState::Init(newDef));
        subDef = dynamic_cast<SubstateDef*>(newDef);
        ERROR_BREAK(subDef);
        ERROR_BREAK(InitEnterExit(newDef));
        result = 1;
    } while (false);
    return result;
}

int SubstateState::InitEnterExit(BaseDef* newDef)
{
    int result = 0;
    do
    {
        ERROR_BREAK(newDef);
        ERROR_BREAK(hsm);
        exitDef = dynamic_cast<ExitDef*>(MachineServices::FindDef(*hsm, GetExitID()));
        ERROR_BREAK(exitDef);
        enterDef = dynamic_cast<EnterDef*>(MachineServices::FindDef(*hsm, GetEnterID()));
        ERROR_BREAK(enterDef);
        enterStateID = enterDef->targetId;
        ERROR_BREAK(enterStateID);
        result = 1;
    } while (false);
    return result;
}

unsigned int SubstateState::GetEnterID() const
{
    unsigned int result = previousChildID;
    do
    {
        ERROR_BREAK(subDef);
        if (result == 0)
        {
            result = subDef->enterId;
        }
    } while (false);
    return result;
}

unsigned int SubstateState::GetExitID() const
{
    unsigned int result = 0;
    do
    {
        ERROR_BREAK(subDef);
        result = subDef->exitId;
    } while (false);
    return result;
}

int SubstateState::Update(HSM* machine, float dt)
{
    int result = 0;
    do
    {
        ERROR_BREAK(machine);
        if (currentChild != nullptr)
        {
            SMState::Update(machine, dt);
            result = 1;
            break;
        }
        SMState* child = previousChild == nullptr
                             ? MachineServices::PushState(*machine, enterStateID)
                             : MachineServices::PushState(*machine, previousChild);
        ERROR_BREAK(child);
        // Required: the child has recorded itself on entering; after a first start the previous
        // child is therefore the child itself.
        previousChild = currentChild;
        currentChild = child;
        previousChildID = currentChildID;
        currentChildID = child->GetID();
        result = 1;
    } while (false);
    return result;
}

int SubstateState::Enter()
{
    int result = 0;
    do
    {
        ERROR_BREAK(SMState::Enter());
        result = 1;
    } while (false);
    return result;
}

int SubstateState::Exit()
{
    // Required: copied whether or not a child was active, so a level that is left before its first
    // update forgets the child it would have resumed.
    previousChild = currentChild;
    currentChild = nullptr;
    previousChildID = currentChildID;
    currentChildID = 0;

    int result = 0;
    do
    {
        ERROR_BREAK(SMState::Exit());
        result = 1;
    } while (false);
    return result;
}

unsigned int SubstateState::ProcessTransitions(HSM* machine, UpdateResult* result)
{
    unsigned int target = 0;
    do
    {
        ERROR_BREAK(result);
        target = SMState::ProcessTransitions(machine, result);
    } while (false);
    return target;
}

} // namespace vell
