// VELL: data-driven hierarchical state machines.
// tests/twin/TwinMachine.h: a machine that passes over idle states, or its twin that asks them all.
#pragma once

#include <vell/ConditionDef.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>
#include <vell/vell.h>

#include <string>

namespace twin
{

/// A machine whose protected part is open. The idle shortcut knows the library's own classes of
/// states only: the twin's states are of classes that derive from those and change nothing, so the
/// twin asks every state in every tick.
class TwinMachine : public vell::HSM
{
public:
    TwinMachine(std::string documentText, bool usesShortcut);
    ~TwinMachine() override;

    /// The twin then looks at every parameter, and says which has not been reset.
    void Update(float timeStep) override;
    /// To be called when a host's write follows one of the machine's: what is reset may then be
    /// written again in the same tick.
    void ExpectNoResets();

    using HSM::alloc;
    using HSM::applyingContext;
    using HSM::blipActive;
    using HSM::blipPriority;
    using HSM::blipStack;
    using HSM::blipStackLevel;
    using HSM::ChangeState;
    using HSM::currentStack;
    using HSM::globalState;
    using HSM::parameterTable;
    using HSM::previousState;
    using HSM::startStateID;
    using HSM::states;
    using HSM::stateStack;

protected:
    void RegisterBuilders() override;

private:
    void SayWhatIsNotReset();
    bool IsPulledElsewhere(vell::ParameterDef* parameter);

    std::string text;
    bool hasShortcut;
    bool expectsResets = true;
};

/// A host's own class of states, which both machines have for some plain nodes. It says that it is
/// updated and may change what fired.
class HostState : public vell::SMState
{
public:
    static vell::SMState* Create(unsigned int stateId, vell::HSMAlloc* alloc);

    int Update(vell::HSM* machine, float dt) override;
    unsigned int ProcessTransitions(vell::HSM* machine, vell::UpdateResult* result) override;

    unsigned int changedTarget = 0; ///< instead of the transition's; 0 for none
};

/// A host's own class of definitions, for some plain nodes. It says that it is asked for actions.
class HostDef : public vell::BaseDef
{
public:
    vell::Action* GetActions() override;
};

/// Makes plain nodes, some of them of the host's class.
vell::BaseDef* CreatePlainDef(const vell::GenericValue& node, vell::HSMAlloc* alloc);

/// A host's own condition: holds every so often, and says that it is asked.
class HostCondition : public vell::ConditionDef
{
public:
    explicit HostCondition(unsigned int conditionNumber);
    bool Evaluate(vell::HSM* hsm) override;
    bool ParameterBind() override;

private:
    unsigned int number;
    unsigned int calls = 0;
};

} // namespace twin
