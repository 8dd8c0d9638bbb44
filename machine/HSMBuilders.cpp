// VELL: data-driven hierarchical state machines.
// machine/HSMBuilders.cpp: which class runs a node.
#include <vell/HSM.h>
#include <vell/SubstateState.h>

#include "definitions/NodeDefTable.h"
#include "foundation/Checks.h"
#include "machine/StateBuilders.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"

namespace vell
{
namespace
{

using StateBuilderMap = std::map<__DURM_BUILDERS__, StateFactory>;

/// Never destroyed, so that a machine may still be deleted while static objects are.
StateBuilderMap& StateBuilders()
{
    static auto* builders = new StateBuilderMap;
    return *builders;
}

} // namespace

void StoreStateBuilder(__DURM_BUILDERS__ builder, StateFactory factory)
{
    // Required: the factory replaces the one before for all machines of the process.
    StateBuilders()[builder] = factory;
}

StateFactory FindStateBuilder(__DURM_BUILDERS__ builder)
{
    const auto entry = StateBuilders().find(builder);
    return entry == StateBuilders().end() ? nullptr : entry->second;
}

void ClearStateBuilders()
{
    StateBuilders().clear();
}

void HSM::RegisterBuilders()
{
    do
    {
        ERROR_BREAK(RegisterState(DURMBaseLib::BUILDER_Generic, SMState::Create));
        ERROR_BREAK(RegisterState(DURMBaseLib::BUILDER_Enter, EnterState::Create));
        ERROR_BREAK(RegisterState(DURMBaseLib::BUILDER_Exit, ExitState::Create));
        ERROR_BREAK(RegisterState(DURMBaseLib::BUILDER_Global, GlobalState::Create));
        ERROR_BREAK(RegisterState(DURMBaseLib::BUILDER_Substate, SubstateState::Create));
        ERROR_BREAK(RegisterState(DURMBaseLib::BUILDER_AnimClip, SMState::Create));
        return;
    } while (false);
    LogStream(LogError) << "Error registering builders" << EndLine;
}

int HSM::RegisterState(__DURM_BUILDERS__ builder, StateFactory factory)
{
    StoreStateBuilder(builder, factory);
    return 1;
}

void HSM::UnRegisterBuilders()
{
    // Required: the registry serves the whole process. Other machines cannot make new states until
    // one is created again.
    ClearStateBuilders();
}

int HSM::RegisterNodeDef(__DURM_BUILDERS__ builder, NodeDefFactory factory)
{
    ERROR_RETURN(nodeDefTable, 0);
    ERROR_RETURN(nodeDefTable->RegisterNodeDef(builder, factory), 0);
    return 1;
}

} // namespace vell
