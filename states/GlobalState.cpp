// VELL: data-driven hierarchical state machines.
// states/GlobalState.cpp: the definition of the global node.
#include "states/GlobalState.h"

#include "definitions/GlobalDef.h"
#include "foundation/Checks.h"
#include "states/SMStateInternals.h"

namespace vell
{

SMState* GlobalState::Create(unsigned int stateId, HSMAlloc* alloc)
{
    ERROR_RETURN(alloc, nullptr);
    GlobalState* state = Internals::Place<GlobalState>(stateId, alloc);
    ERROR_RETURN(state, nullptr);
    return state;
}

int GlobalState::Init(BaseDef* newDef)
{
    ERROR_RETURN(newDef, 0);
    ERROR_RETURN(SMState::Init(newDef), 0);
    typedDef = dynamic_cast<GlobalDef*>(newDef);
    ERROR_RETURN(typedDef, 0);
    return 1;
}

int GlobalState::Uninit()
{
    typedDef = nullptr;
    return 1;
}

} // namespace vell
