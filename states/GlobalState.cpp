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
    GlobalState* state = nullptr;
    do
    {
        ERROR_BREAK(alloc);
        state = Internals::Place<GlobalState>(stateId, alloc);
        ERROR_BREAK(state);
    } while (false);
    return state;
}

int GlobalState::Init(BaseDef* newDef)
{
    int result = 0;
    do
    {
        ERROR_BREAK(newDef);
        ERROR_BREAK(SMState::Init(newDef));
        typedDef = dynamic_cast<GlobalDef*>(newDef);
        ERROR_BREAK(typedDef);
        result = 1;
    } while (false);
    return result;
}

int GlobalState::Uninit()
{
    typedDef = nullptr;
    return 1;
}

} // namespace vell
