// VELL: data-driven hierarchical state machines.
// states/EnterState.cpp: entering and leaving of an enter node.
#include "states/EnterState.h"

#include "definitions/EnterDef.h"
#include "foundation/Checks.h"
#include "states/SMStateInternals.h"

namespace vell
{

SMState* EnterState::Create(unsigned int stateId, HSMAlloc* alloc)
{
    ERROR_RETURN(alloc, nullptr);
    EnterState* state = Internals::Place<EnterState>(stateId, alloc);
    ERROR_RETURN(state, nullptr);
    return state;
}

int EnterState::Init(BaseDef* newDef)
{
    ERROR_RETURN(newDef, 0);
    ERROR_RETURN(SMState::Init(newDef), 0);
    typedDef = dynamic_cast<EnterDef*>(newDef);
    ERROR_RETURN(typedDef, 0);
    return 1;
}

EnterState::~EnterState()
{
    typedDef = nullptr;
}

int EnterState::Enter()
{
    ERROR_RETURN(SMState::Enter(), 0);
    return 1;
}

int EnterState::Exit()
{
    ERROR_RETURN(SMState::Exit(), 0);
    return 1;
}

} // namespace vell
