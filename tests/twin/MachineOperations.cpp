// VELL: data-driven hierarchical state machines.
// tests/twin/MachineOperations.cpp: what a host does with a machine, its fields and its tree.
#include "tests/twin/OperationKinds.h"

namespace twin
{
namespace
{

constexpr std::size_t kMaxStack = 16;

bool IsFull(const Side& side)
{
    return side.machine.stateStack.size() + side.machine.blipStack.size() >= kMaxStack;
}

void Tick(Side& side, const Operation& operation)
{
    const unsigned int count = operation.picks[0] % 4 + 1;
    Say("> Update, " + std::to_string(count) + " times");
    for (unsigned int i = 0; i < count; ++i)
    {
        side.machine.Update(operation.time);
    }
}

void Start(Side& side, const Operation&)
{
    if (!IsFull(side))
    {
        Say("> Start");
        side.machine.Start();
    }
}

void PushId(Side& side, const Operation& operation)
{
    if (!IsFull(side))
    {
        const unsigned int id = side.PickStateId(operation.picks[0]);
        Say("> PushState " + std::to_string(id));
        side.machine.PushState(id);
    }
}

void PushState(Side& side, const Operation& operation)
{
    if (!IsFull(side))
    {
        vell::SMState* state = side.PickState(operation.picks[0]);
        Say("> PushState of " + side.Name(state));
        side.machine.PushState(state);
    }
}

void ChangeStack(Side& side, const Operation& operation)
{
    static const char* const names[] = {"PopState", "RevertToPreviousState", "RevertToStartState",
                                        "ChangeState"};
    const unsigned int call = operation.picks[0] % 4;
    Say(std::string("> ") + names[call]);
    switch (call)
    {
    case 0:
        side.machine.PopState();
        break;
    case 1:
        side.machine.RevertToPreviousState();
        break;
    case 2:
        side.machine.RevertToStartState();
        break;
    default:
        side.machine.ChangeState(side.PickStateId(operation.picks[1]));
        break;
    }
}

void SetContextInfo(Side& side, const Operation& operation)
{
    const Tessel::KVTable context = Tessel::CreateTable("context");
    const Tessel::KVTable main = context->AddTable("stackStates", 1);
    const Tessel::KVTable blip = context->AddTable("stackBlip", 1);
    for (unsigned int i = 0; i < operation.picks[0] % 4; ++i)
    {
        main->PushUInt(side.PickStateId(operation.picks[1] + i * 7), 1);
    }
    for (unsigned int i = 0; i < operation.picks[2] % 3; ++i)
    {
        blip->PushUInt(side.PickStateId(operation.picks[3] + i * 5), 1);
    }
    context->SetUInt("nextState", operation.picks[1] % 20, 1);
    Say("> SetContextInfo");
    side.machine.SetContextInfo(context);
    Tessel::CloseTable(context);
}

void Subscribe(Side& side, const Operation& operation)
{
    TwinListener* listener = &side.listeners[operation.picks[0] % kListeners];
    const unsigned int call = operation.picks[1] % 6;
    Say("> subscription " + std::to_string(call));
    switch (call)
    {
    case 0:
        side.machine.UnsubscribeStateChange(listener);
        break;
    case 1:
        side.machine.UnsubscribeEvents(listener);
        break;
    case 2:
    case 3:
        side.machine.SubscribeEvents(listener);
        break;
    default:
        side.machine.SubscribeStateChange(listener);
        break;
    }
}

void SetCallback(Side& side, const Operation& operation)
{
    const bool isOn = operation.picks[0] % 4 != 0;
    Say(isOn ? "> SetStateSwitchCallback" : "> SetStateSwitchCallback to null");
    side.machine.SetStateSwitchCallback(isOn ? OnSwitch : nullptr);
}

void FireEvent(Side& side, const Operation&)
{
    const vell::__PlayAnimEvent__ event = {"fired", true, 1.0f};
    Say("> FireEvent");
    side.machine.FireEvent(vell::HSMEventPlayAnimation, &event);
}

/// Puts an action into the look-up by its id, which it gets first.
void RegisterInLookUp(Side& side, const Operation& operation)
{
    TwinAction* action =
        side.actions.empty() ? nullptr : side.actions[operation.picks[0] % side.actions.size()];
    if (action != nullptr)
    {
        action->id = operation.picks[1] % 5;
        Say("> RegisterAction of action " + std::to_string(action->number));
        side.machine.RegisterAction(action);
        Say("FindAction gives " +
            std::string(side.machine.FindAction(action->id) == action ? "it" : "another"));
    }
}

/// Lets an operation wait for a call of the host.
void Wait(Side& side, const Operation& operation)
{
    if (operation.inner.empty())
    {
        return;
    }
    const auto caller = static_cast<Caller>(operation.picks[0] % kCallers);
    const Place place = AllOperations()[operation.inner.front().kind].place;
    if (place >= (caller == Caller::Log ? Place::Everywhere : Place::Callbacks))
    {
        Say("> the next call " + std::to_string(operation.picks[0] % kCallers) + " does something");
        side.waiting.emplace_back(caller, operation.inner.front());
    }
}

void WriteStack(Side& side, const Operation& operation)
{
    auto& stack = operation.picks[0] % 3 == 0 ? side.machine.blipStack : side.machine.stateStack;
    const unsigned int change = operation.picks[1] % 6;
    vell::SMState* state =
        operation.picks[2] % 7 == 0 ? nullptr : side.PickState(operation.picks[2]);
    Say("> change " + std::to_string(change) + " of a stack with " + side.Name(state));
    if (change == 0 && !IsFull(side))
    {
        stack.push_back(state);
        return;
    }
    if (change == 1 && !IsFull(side))
    {
        stack.insert(stack.begin(), state);
        return;
    }
    if (stack.empty())
    {
        return;
    }
    const auto place =
        stack.begin() + static_cast<std::ptrdiff_t>(operation.picks[3] % stack.size());
    switch (change)
    {
    case 2:
        stack.erase(place);
        break;
    case 3:
        stack.clear();
        break;
    case 4:
        side.machine.stateStack.swap(side.machine.blipStack);
        break;
    default:
        *place = state;
        break;
    }
}

void WriteMachineState(Side& side, const Operation& operation)
{
    TwinMachine& machine = side.machine;
    const unsigned int field = operation.picks[0] % 4;
    vell::SMState* state =
        operation.picks[1] % 5 == 0 ? nullptr : side.PickState(operation.picks[1]);
    Say("> field " + std::to_string(field) + " of the machine = " + side.Name(state));
    switch (field)
    {
    case 0:
    case 1:
        machine.globalState = state;
        break;
    case 2:
        machine.previousState = state;
        break;
    default:
        machine.currentStack = operation.picks[2] % 5 == 0   ? nullptr
                               : operation.picks[2] % 2 == 0 ? &machine.stateStack
                                                             : &machine.blipStack;
        break;
    }
}

void WriteMachineFlag(Side& side, const Operation& operation)
{
    TwinMachine& machine = side.machine;
    const unsigned int field = operation.picks[0] % 6;
    const bool isOn = operation.picks[1] % 2 == 0;
    Say("> flag " + std::to_string(field) + " of the machine = " + (isOn ? "true" : "false"));
    switch (field)
    {
    case 0:
        machine.applyingContext = isOn && operation.picks[2] % 3 == 0;
        break;
    case 1:
        machine.blipActive = isOn;
        break;
    case 2:
        machine.blipPriority = static_cast<int>(operation.picks[1] % 7);
        break;
    case 3:
        machine.blipStackLevel = static_cast<int>(operation.picks[1] % 4);
        break;
    case 4:
        machine.startStateID = side.PickStateId(operation.picks[1]);
        break;
    default:
        machine.parameterTable = isOn ? side.ownParameterTable : nullptr;
        break;
    }
}

/// Forgets an activated state, so that the next one of its node is a new one.
void ForgetState(Side& side, const Operation& operation)
{
    auto& states = side.machine.states;
    if (!states.empty())
    {
        auto entry = states.begin();
        std::advance(entry, static_cast<std::ptrdiff_t>(operation.picks[0] % states.size()));
        Say("> forget " + side.Name(entry->second));
        states.erase(entry);
    }
}

void WriteArena(Side& side, const Operation& operation)
{
    vell::HSMAlloc& alloc = side.machine.alloc;
    Say("> the arena is full, or not any more");
    if (operation.picks[0] % 2 == 0 && alloc.capacity != alloc.used)
    {
        alloc.capacity = alloc.used;
    }
    else
    {
        alloc.capacity = side.arenaCapacity;
    }
}

void WriteTree(Side& side, const Operation& operation)
{
    vell::ParameterDef* parameter = side.PickParameter(operation.picks[0]);
    if (parameter == nullptr)
    {
        return;
    }
    const Tessel::KVTable table = parameter->GetKVTable();
    const auto& reals = operation.value.reals;
    const Tessel::Float3 three = {reals[0], reals[1], reals[2]};
    Say("> a tool's write of " + side.Name(parameter));
    const int type = operation.picks[1] % 8 == 0 ? static_cast<int>(operation.picks[2] % 4)
                     : dynamic_cast<vell::ParameterMessageDef*>(parameter) != nullptr ? 2
                     : dynamic_cast<vell::ParameterFloatDef*>(parameter) != nullptr   ? 1
                                                                                      : 0;
    switch (type)
    {
    case 0:
        table->SetInt("value", operation.value.whole, 1);
        break;
    case 1:
        table->SetFloat("value", reals[0], 1);
        break;
    case 2:
        table->SetString("value", operation.value.text.c_str(), 1);
        break;
    default:
        table->SetFloat3("value", &three, 1);
        break;
    }
}

void WriteContext(Side& side, const Operation& operation)
{
    static const char* const keys[] = {"nextState", "previousState", "transitionTriggered",
                                       "stackStates", "stackBlip"};
    const Tessel::KVTable context = side.machine.GetKVTable()->GetTable("contextInfo");
    const unsigned int key = operation.picks[0] % 5;
    Say(std::string("> a tool's write of ") + keys[key]);
    if (key < 3)
    {
        context->SetUInt(keys[key], operation.picks[1] % 30, 1);
        return;
    }
    const Tessel::KVTable stack = context->GetTable(keys[key]);
    operation.picks[1] % 2 == 0 ? stack->PushUInt(operation.picks[2] % 30, 1)
                                : stack->RemoveAt(operation.picks[2] % 3, 1);
}

} // namespace

OperationKinds MachineOperations()
{
    return {{"Tick", 420, Place::Outside, Tick},
            {"Start", 2, Place::Outside, Start},
            {"PushId", 6, Place::Actions, PushId},
            {"PushState", 4, Place::Actions, PushState},
            {"ChangeStack", 8, Place::Actions, ChangeStack},
            {"SetContextInfo", 5, Place::Outside, SetContextInfo},
            {"Subscribe", 8, Place::Callbacks, Subscribe},
            {"SetCallback", 4, Place::Outside, SetCallback},
            {"FireEvent", 2, Place::Callbacks, FireEvent},
            {"RegisterInLookUp", 2, Place::Callbacks, RegisterInLookUp},
            {"Wait", 15, Place::Outside, Wait}};
}

OperationKinds FieldOperations()
{
    return {{"WriteStack", 8, Place::Outside, WriteStack},
            {"WriteMachineState", 6, Place::Outside, WriteMachineState},
            {"WriteMachineFlag", 6, Place::Outside, WriteMachineFlag},
            {"ForgetState", 3, Place::Outside, ForgetState},
            {"WriteArena", 2, Place::Outside, WriteArena}};
}

OperationKinds TreeOperations()
{
    return {{"WriteTree", 20, Place::Everywhere, WriteTree},
            {"WriteContext", 6, Place::Everywhere, WriteContext}};
}

const OperationKinds& AllOperations()
{
    static const OperationKinds all = []
    {
        OperationKinds kinds = MachineOperations();
        for (const OperationKinds& more :
             {ParameterOperations(), ConditionOperations(), TransitionOperations(),
              StateOperations(), DefinitionOperations(), FieldOperations(), TreeOperations()})
        {
            kinds.insert(kinds.end(), more.begin(), more.end());
        }
        return kinds;
    }();
    return all;
}

} // namespace twin
