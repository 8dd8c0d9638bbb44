// VELL: data-driven hierarchical state machines.
// tests/twin/TwinMachine.cpp: the classes of the twin without the shortcut, and a host's own.
#include "tests/twin/TwinMachine.h"

#include <durm/DURMBaseLib.h>

#include "definitions/GenericDef.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"
#include "tests/twin/Side.h"

#include <set>

namespace twin
{
namespace
{

/// The arenas of the machines without the shortcut. The registry of state factories is one for the
/// process, so a factory tells by the arena for which machine it works.
std::set<const vell::HSMAlloc*>& PlainArenas()
{
    static std::set<const vell::HSMAlloc*> arenas;
    return arenas;
}

/// A state that the shortcut does not know, and that is otherwise a `State`.
template <class State>
class Asked : public State
{
public:
    static vell::SMState* Create(unsigned int stateId, vell::HSMAlloc* alloc)
    {
        auto* state = alloc->New<Asked>();
        if (state != nullptr)
        {
            state->id = stateId;
        }
        return state;
    }
};

template <class State>
vell::SMState* CreateState(unsigned int id, vell::HSMAlloc* alloc)
{
    vell::SMState* state = nullptr;
    if (PlainArenas().count(alloc) != 0)
    {
        state = Asked<State>::Create(id, alloc);
    }
    // The library's own says why there is none.
    return state != nullptr ? state : State::Create(id, alloc);
}

vell::SMState* CreatePlainState(unsigned int id, vell::HSMAlloc* alloc)
{
    return id % 9 == 4 ? HostState::Create(id, alloc) : CreateState<vell::SMState>(id, alloc);
}

template <class Parameter>
bool IsChanged(vell::ParameterDef* def)
{
    auto* parameter = dynamic_cast<Parameter*>(def);
    return parameter != nullptr && !(parameter->GetValue() == parameter->GetDefaultValue());
}

template <class Parameter>
bool HasOtherDefault(vell::ParameterDef* left, vell::ParameterDef* right)
{
    auto* one = dynamic_cast<Parameter*>(left);
    auto* other = dynamic_cast<Parameter*>(right);
    return one != nullptr && other != nullptr &&
           !(one->GetDefaultValue() == other->GetDefaultValue());
}

} // namespace

TwinMachine::TwinMachine(std::string documentText, bool usesShortcut)
    : text(std::move(documentText)), hasShortcut(usesShortcut)
{
    if (!hasShortcut)
    {
        PlainArenas().insert(&alloc);
    }
    jsonText = text.c_str();
    Create();
}

TwinMachine::~TwinMachine()
{
    PlainArenas().erase(&alloc);
}

void TwinMachine::RegisterBuilders()
{
    HSM::RegisterBuilders();
    RegisterState(DURMBaseLib::BUILDER_Generic, CreatePlainState);
    RegisterState(DURMBaseLib::BUILDER_AnimClip, CreateState<vell::SMState>);
    RegisterState(DURMBaseLib::BUILDER_Enter, CreateState<vell::EnterState>);
    RegisterState(DURMBaseLib::BUILDER_Exit, CreateState<vell::ExitState>);
    RegisterState(DURMBaseLib::BUILDER_Global, CreateState<vell::GlobalState>);
    RegisterState(DURMBaseLib::BUILDER_Substate, CreateState<vell::SubstateState>);
}

void TwinMachine::Update(float timeStep)
{
    const bool isSuspended = applyingContext;
    expectsResets = true;
    HSM::Update(timeStep);
    if (!hasShortcut && !isSuspended && parameterTable != nullptr && expectsResets)
    {
        SayWhatIsNotReset();
    }
}

void TwinMachine::ExpectNoResets()
{
    expectsResets = false;
}

void TwinMachine::SayWhatIsNotReset()
{
    vell::IParameterTable* table = GetParameterTable();
    for (int i = 0; i < table->GetParameterCount(); ++i)
    {
        const unsigned int id = table->GetParameterIDByIndex(static_cast<unsigned int>(i));
        vell::ParameterDef* def = table->FindParameter(id);
        // One of another type has a vector, which nothing tests.
        const bool isChanged =
            IsChanged<vell::ParameterBoolDef>(def) || IsChanged<vell::ParameterIntegerDef>(def) ||
            IsChanged<vell::ParameterFloatDef>(def) || IsChanged<vell::ParameterMessageDef>(def);
        if (isChanged && def->IsResetEachFrame() && !IsPulledElsewhere(def))
        {
            Say("not reset: parameter " + std::to_string(i));
        }
    }
}

/// Tells whether the host has assigned one parameter to another and given one of them a new default
/// since: they share a table, and the reset of one writes what the other then takes over.
bool TwinMachine::IsPulledElsewhere(vell::ParameterDef* parameter)
{
    vell::IParameterTable* table = GetParameterTable();
    for (int i = 0; i < table->GetParameterCount(); ++i)
    {
        const unsigned int id = table->GetParameterIDByIndex(static_cast<unsigned int>(i));
        vell::ParameterDef* other = table->FindParameter(id);
        if (other != parameter && other->GetKVTable() == parameter->GetKVTable() &&
            (HasOtherDefault<vell::ParameterBoolDef>(parameter, other) ||
             HasOtherDefault<vell::ParameterIntegerDef>(parameter, other) ||
             HasOtherDefault<vell::ParameterFloatDef>(parameter, other) ||
             HasOtherDefault<vell::ParameterMessageDef>(parameter, other)))
        {
            return true;
        }
    }
    return false;
}

vell::SMState* HostState::Create(unsigned int stateId, vell::HSMAlloc* alloc)
{
    auto* state = alloc->New<HostState>();
    if (state != nullptr)
    {
        state->id = stateId;
    }
    return state;
}

int HostState::Update(vell::HSM* machine, float dt)
{
    Say("host state updated");
    return SMState::Update(machine, dt);
}

unsigned int HostState::ProcessTransitions(vell::HSM* machine, vell::UpdateResult* result)
{
    const unsigned int target = SMState::ProcessTransitions(machine, result);
    if (target == 0 || changedTarget == 0)
    {
        return target;
    }
    result->targetID = changedTarget;
    ++result->priority;
    result->switchArgument = 2.0f;
    return result->targetID;
}

vell::Action* HostDef::GetActions()
{
    Say("host definition asked");
    return BaseDef::GetActions();
}

vell::BaseDef* CreatePlainDef(const vell::GenericValue& node, vell::HSMAlloc* alloc)
{
    const char* const idName = DURMBaseLib::GetJsonName(DURMBaseLib::JSON_ID);
    if (node[idName].GetUint() % 7 != 3)
    {
        return vell::GenericDef::Create(node, alloc);
    }
    auto* def = alloc->New<HostDef>();
    if (def != nullptr)
    {
        def->SetType(vell::DefTypeGeneric);
        def->SetFlags(vell::DefTypesState);
    }
    return def;
}

HostCondition::HostCondition(unsigned int conditionNumber) : number(conditionNumber)
{
}

bool HostCondition::Evaluate(vell::HSM*)
{
    Say("host condition " + std::to_string(number));
    return ++calls % (2 + number % 5) == 0;
}

bool HostCondition::ParameterBind()
{
    return true;
}

} // namespace twin
