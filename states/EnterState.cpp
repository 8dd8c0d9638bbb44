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
    EnterState* state = nullptr;
    do
    {
        ERROR_BREAK(alloc);
        state = Internals::Place<EnterState>(stateId, alloc);
        ERROR_BREAK(state);
    } while (false);
    return state;
}

int EnterState::Init(BaseDef* newDef)
{
    int result = 0;
    do
    {
        ERROR_BREAK(newDef);
        ERROR_BREAK(SMState::Init(newDef));
        typedDef = dynamic_cast<EnterDef*>(newDef);
        ERROR_BREAK(typedDef);
        result = 1;
    } while (false);
    return result;
}

EnterState::~EnterState()
{
    typedDef = nullptr;
}

int EnterState::Enter()
{
    int result = 0;
    do
    {
        ERROR_BREAK(SMState::Enter());
        result = 1;
    } while (false);
    return result;
}

int EnterState::Exit()
{
    int result = 0;
    do
    {
        ERROR_BREAK(SMState::Exit());
        result = 1;
    } while (false);
    return result;
}

} // namespace vell
