// VELL: data-driven hierarchical state machines.
// tests/callbacks/MachineOperations.cpp: the operations of a machine.
#include "tests/callbacks/Operations.h"
#include "tests/callbacks/Scene.h"

namespace vell::callbacks
{
namespace
{

constexpr unsigned int kUnknown = 999;
const char* const kLongText = "a text of more than twenty letters";

bool AlwaysFalse(IHSM*, SMState*)
{
    return false;
}

Action* MakeAction(const char*)
{
    return new HostAction("");
}

Action* MakeNoAction(const char*)
{
    return nullptr;
}

void HearNothing(HSM*, SMState*, SMState*, float)
{
}

BaseDef* MakeNoDefinition(const GenericValue&, HSMAlloc*)
{
    return nullptr;
}

HostListener* Listener(const Hand& hand)
{
    auto* own = dynamic_cast<HostListener*>(hand.listener);
    return own != nullptr ? own : &CurrentCast()->listener;
}

unsigned int ShoutId(HostMachine& machine)
{
    return machine.FindParameterByName("shout");
}

void AskAssets(HostMachine& machine)
{
    machine.GetMDLAsset();
    machine.GetSkelAsset();
    machine.GetGUID();
    machine.GetHSMType();
}

void WalkDefs(HostMachine& machine)
{
    while (machine.NextDef(0xffffffffu) != nullptr)
    {
    }
}

// Many, so that the lists are moved.

void SubscribeManyToStates(HostMachine& machine)
{
    static HostListener further[100];
    for (HostListener& listener : further)
    {
        machine.SubscribeStateChange(&listener);
    }
}

void SubscribeManyToEvents(HostMachine& machine)
{
    static HostListener further[100];
    for (HostListener& listener : further)
    {
        machine.SubscribeEvents(&listener);
    }
}

void AssignManyTriggers(HostMachine& machine)
{
    for (int i = 0; i < 100; ++i)
    {
        machine.AssignTrigger("Go", &AlwaysFalse);
        machine.AssignTrigger("Hit", &AlwaysFalse);
    }
}

void PushTen(HostMachine& machine)
{
    for (int i = 0; i < 10; ++i)
    {
        machine.PushState(kRest);
    }
}

void PopEverything(HostMachine& machine)
{
    for (int i = 0; i < 10 && machine.GetCurrentState() != nullptr; ++i)
    {
        machine.PopState();
    }
}

void EmptyStack(HostMachine& machine, unsigned int target)
{
    UpdateResult result = UpdateResult::Blank();
    result.targetID = target;
    machine.UpdateStateStack(&result);
}

/// A table of the shape of "contextInfo": two states, and one that is not there.
void RestoreRecord(HostMachine& machine)
{
    const Tessel::KVTable record = Tessel::CreateTable("contextInfo");
    const Tessel::KVTable stack = record->AddTable("stackStates", 1);
    stack->PushUInt(kRest, 1);
    stack->PushUInt(kWalk, 1);
    record->AddTable("stackBlip", 1)->PushUInt(kUnknown, 1);
    record->SetUInt("nextState", kWalk, 1);
    machine.SetContextInfo(record);
    Tessel::CloseTable(record);
}

void Fire(HostMachine& machine)
{
    ParamBroadcast record = {};
    machine.FireEvent(static_cast<__HSMEventType__>(9),
                      reinterpret_cast<const __PlayAnimEvent__*>(&record));
}

/// Builds, runs and deletes a machine beside the one whose callback runs.
bool RunAnotherMachine(Hand&)
{
    HSM other("{}");
    other.Init();
    other.Start();
    other.Update(0.1f);
    other.Uninit();
    other.Destroy();
    return true;
}

} // namespace

std::vector<Operation> MachineOperations()
{
    // clang-format off: one entry a line
    return {
        {"Init", VELL_ON_MACHINE(machine.Init())},
        {"Uninit", VELL_ON_MACHINE(machine.Uninit())},
        {"Create", VELL_ON_MACHINE(machine.Create())},
        {"Destroy", VELL_ON_MACHINE(machine.Destroy())},
        {"delete the machine", VELL_ON_MACHINE(delete &machine)},
        {"Update", VELL_ON_MACHINE(machine.Update(0.1f))},
        {"Start", VELL_ON_MACHINE(machine.Start())},
        {"run another machine", &RunAnotherMachine},
        {"SetContextInfo(null)", VELL_ON_MACHINE(machine.SetContextInfo(Tessel::KVTable()))},
        {"SetContextInfo(own)", VELL_ON_MACHINE(machine.SetContextInfo(ContextTable(hand)))},
        {"SetContextInfo(record)", VELL_ON_MACHINE(RestoreRecord(machine))},
        {"FindParameterByName(null)", VELL_ON_MACHINE(machine.FindParameterByName(nullptr))},
        {"FindParameterByName", VELL_ON_MACHINE(machine.FindParameterByName("cue"))},
        {"GetMDLAsset, GetSkelAsset, GetGUID, GetHSMType", VELL_ON_MACHINE(AskAssets(machine))},
        {"GetCurrentState", VELL_ON_MACHINE(machine.GetCurrentState())},
        {"BeginDef", VELL_ON_MACHINE(machine.BeginDef(DefTypesTransition))},
        {"NextDef to the end", VELL_ON_MACHINE(WalkDefs(machine))},
        {"FindDef(null)", VELL_ON_MACHINE(machine.FindDef(static_cast<const char*>(nullptr)))},
        {"FindDef(name)", VELL_ON_MACHINE(machine.FindDef("Walk"))},
        {"FindDef(unknown)", VELL_ON_MACHINE(machine.FindDef(kUnknown))},
        {"SubscribeTransitionChange",
         VELL_ON_MACHINE(machine.SubscribeTransitionChange(Listener(hand)))},
        {"UnsubscribeTransitionChange",
         VELL_ON_MACHINE(machine.UnsubscribeTransitionChange(Listener(hand)))},
        {"SubscribeStateChange(null)", VELL_ON_MACHINE(machine.SubscribeStateChange(nullptr))},
        {"SubscribeStateChange(new)", VELL_ON_MACHINE(SubscribeManyToStates(machine))},
        {"UnsubscribeStateChange(null)", VELL_ON_MACHINE(machine.UnsubscribeStateChange(nullptr))},
        {"UnsubscribeStateChange(own)",
         VELL_ON_MACHINE(machine.UnsubscribeStateChange(Listener(hand)))},
        {"UnsubscribeStateChange(other)",
         VELL_ON_MACHINE(machine.UnsubscribeStateChange(&CurrentCast()->second))},
        {"SubscribeEvents(null)", VELL_ON_MACHINE(machine.SubscribeEvents(nullptr))},
        {"SubscribeEvents(new)", VELL_ON_MACHINE(SubscribeManyToEvents(machine))},
        {"UnsubscribeEvents(own)", VELL_ON_MACHINE(machine.UnsubscribeEvents(Listener(hand)))},
        {"UnsubscribeEvents(other)",
         VELL_ON_MACHINE(machine.UnsubscribeEvents(&CurrentCast()->parameter))},
        {"RegisterAction(null)", VELL_ON_MACHINE(machine.RegisterAction(nullptr))},
        {"RegisterAction", VELL_ON_MACHINE(machine.RegisterAction(&CurrentCast()->further))},
        {"RegisterNodeDef(null)", VELL_ON_MACHINE(machine.RegisterNodeDef(kHostBuilder, nullptr))},
        {"RegisterNodeDef",
         VELL_ON_MACHINE(machine.RegisterNodeDef(DURMBaseLib::BUILDER_Generic, &MakeNoDefinition))},
        {"SetStateSwitchCallback(null)", VELL_ON_MACHINE(machine.SetStateSwitchCallback(nullptr))},
        {"SetStateSwitchCallback", VELL_ON_MACHINE(machine.SetStateSwitchCallback(&HearNothing))},
        {"AssignTrigger(null)", VELL_ON_MACHINE(machine.AssignTrigger(nullptr, &AlwaysFalse))},
        {"AssignTrigger(none)", VELL_ON_MACHINE(machine.AssignTrigger("Go", nullptr))},
        {"AssignTrigger", VELL_ON_MACHINE(AssignManyTriggers(machine))},
        {"AssignDefaultAction(null)", VELL_ON_MACHINE(machine.AssignDefaultAction(nullptr))},
        {"AssignDefaultAction", VELL_ON_MACHINE(machine.AssignDefaultAction(&MakeAction))},
        {"AssignDefaultAction(of nulls)",
         VELL_ON_MACHINE(machine.AssignDefaultAction(&MakeNoAction))},
        {"PushState(null)", VELL_ON_MACHINE(machine.PushState(static_cast<SMState*>(nullptr)))},
        {"PushState(own)", VELL_ON_STATE(hand.machine->PushState(&state))},
        {"PushState(other)", VELL_ON_OTHER_STATE(hand.machine->PushState(&state))},
        {"PushState(id)", VELL_ON_MACHINE(machine.PushState(kRest))},
        {"PushState(a level's id)", VELL_ON_MACHINE(machine.PushState(kCombat))},
        {"PushState(an exit node's id)", VELL_ON_MACHINE(machine.PushState(kOver))},
        {"PushState(a host state's id)", VELL_ON_MACHINE(machine.PushState(kCamera))},
        {"PushState(0)", VELL_ON_MACHINE(machine.PushState(0u))},
        {"PushState(unknown)", VELL_ON_MACHINE(machine.PushState(kUnknown))},
        {"push ten states", VELL_ON_MACHINE(PushTen(machine))},
        {"PopState", VELL_ON_MACHINE(machine.PopState())},
        {"PopState until the stack is empty", VELL_ON_MACHINE(PopEverything(machine))},
        {"RevertToPreviousState", VELL_ON_MACHINE(machine.RevertToPreviousState())},
        {"RevertToStartState", VELL_ON_MACHINE(machine.RevertToStartState())},
        {"FireEvent", VELL_ON_MACHINE(Fire(machine))},
        {"FireEvent(null)", VELL_ON_MACHINE(machine.FireEvent(HSMEventPlayAnimation, nullptr))},
        {"BindParamCond", VELL_ON_MACHINE(machine.BindParamCond())},
        {"BroadcastMessage(null)", VELL_ON_MACHINE(machine.BroadcastMessage(nullptr))},
        {"BroadcastMessage", VELL_ON_MACHINE(machine.BroadcastMessage("shout"))},
        {"GetParameterMessage",
         VELL_ON_MACHINE(const char* text = nullptr;
                         machine.GetParameterMessage(ShoutId(machine), &text))},
        {"SetParameterMessage(null)",
         VELL_ON_MACHINE(machine.SetParameterMessage(ShoutId(machine), nullptr))},
        {"SetParameterMessage",
         VELL_ON_MACHINE(machine.SetParameterMessage(ShoutId(machine), kLongText))},
        {"GetAttributeValue",
         VELL_ON_MACHINE(const char* text = nullptr; machine.GetAttributeValue("surface", &text))},
        {"SetAttribValue", VELL_ON_MACHINE(machine.SetAttribValue("surface", kLongText))},
        {"SetAttribValue(void*)",
         VELL_ON_MACHINE(machine.SetAttribValue("surface", static_cast<void*>(&machine)))},
        {"InitCond(null)", VELL_ON_MACHINE(machine.InitCond(nullptr))},
        {"SetLogCallBack(null)",
         [](Hand&)
         {
             return SetLogCallBackBase(nullptr), true;
         }},
        {"LogImpl",
         [](Hand&)
         {
             return LogImpl(6, "[Enter] the host's\n"), true;
         }},
    };
    // clang-format on
}

std::vector<Operation> ProtectedMachineOperations()
{
    // clang-format off: one entry a line
    return {
        {"RegisterState", VELL_ON_MACHINE(machine.RegisterState(kHostBuilder, &SMState::Create))},
        {"UnRegisterBuilders", VELL_ON_MACHINE(machine.UnRegisterBuilders())},
        {"RegisterBuilders", VELL_ON_MACHINE(machine.RegisterBuilders())},
        {"ChangeState(0)", VELL_ON_MACHINE(machine.ChangeState(0))},
        {"ChangeState(own)", VELL_ON_DEF(hand.machine->ChangeState(def.GetID()))},
        {"ChangeState(other)", VELL_ON_OTHER_DEF(hand.machine->ChangeState(def.GetID()))},
        {"ActivateState", VELL_ON_MACHINE(machine.ActivateState(kScout, 1.0f))},
        {"ActivateState(unknown)", VELL_ON_MACHINE(machine.ActivateState(kUnknown, 1.0f))},
        {"ActivateTransitions(own)", VELL_ON_STATE(hand.machine->ActivateTransitions(&state))},
        {"StartState",
         VELL_ON_MACHINE(std::vector<unsigned int> ids; machine.StartState(kCombat, ids))},
        {"UpdateState(null)", VELL_ON_MACHINE(machine.UpdateState(nullptr, nullptr, 0.1f))},
        {"UpdateState(own)",
         VELL_ON_STATE(UpdateResult result; hand.machine->UpdateState(&state, &result, 0.1f))},
        {"UpdateStateStack(null)", VELL_ON_MACHINE(machine.UpdateStateStack(nullptr))},
        {"UpdateStateStack(blank)", VELL_ON_MACHINE(EmptyStack(machine, 0))},
        {"UpdateStateStack(target)", VELL_ON_MACHINE(EmptyStack(machine, kRest))},
        {"CreateKVTable", VELL_ON_MACHINE(machine.CreateKVTable())},
        {"DestroyKVTable", VELL_ON_MACHINE(machine.DestroyKVTable())},
        {"InitKVTable_Self", VELL_ON_MACHINE(machine.InitKVTable_Self())},
        {"InitKVTable_ContextTable", VELL_ON_MACHINE(machine.InitKVTable_ContextTable())},
        {"InitKVTable_ParameterTable", VELL_ON_MACHINE(machine.InitKVTable_ParameterTable())},
        {"InitKVTable_NodeDefTable", VELL_ON_MACHINE(machine.InitKVTable_NodeDefTable())},
        {"GetCurrentStackTable",
         VELL_ON_MACHINE(Tessel::KVTable table; machine.GetCurrentStackTable(&table))},
        {"UpdateKVTable_OnPushState(own)",
         VELL_ON_STATE(hand.machine->UpdateKVTable_OnPushState(&state))},
        {"UpdateKVTable_OnPopState", VELL_ON_MACHINE(machine.UpdateKVTable_OnPopState())},
        {"SetContextInfo_StackStates(null)",
         VELL_ON_MACHINE(machine.SetContextInfo_StackStates(Tessel::KVTable()))},
        {"SetContextInfo_StackBlip",

         VELL_ON_MACHINE(
             machine.SetContextInfo_StackBlip(ContextTable(hand)->GetTable("stackStates")))},
        {"SetContextInfo_StateSwitching",
         VELL_ON_MACHINE(machine.SetContextInfo_StateSwitching(ContextTable(hand)))},
        {"GetMemoryRequirements", VELL_ON_MACHINE(machine.GetMemoryRequirements(machine.document))},
        {"ImportLayers", VELL_ON_MACHINE(machine.ImportLayers(machine.document, &machine.alloc))},
        {"InitParameterTable",
         VELL_ON_MACHINE(machine.InitParameterTable(machine.document, &machine.alloc))},
        {"UninitParameterTable", VELL_ON_MACHINE(machine.UninitParameterTable(&machine.alloc))},
        {"InitNodeDefTable",
         VELL_ON_MACHINE(machine.InitNodeDefTable(NodeValues(hand), &machine.alloc))},
        {"UninitNodeDefTable", VELL_ON_MACHINE(machine.UninitNodeDefTable(&machine.alloc)),
         kLeaves},
        {"AllocRaw", VELL_ON_MACHINE(machine.alloc.AllocRaw(13))},
        {"New<SMState>", VELL_ON_MACHINE(machine.alloc.New<SMState>())},
        {"stateStack.clear()", VELL_ON_MACHINE(machine.stateStack.clear())},
        {"blipStack.push_back(own)", VELL_ON_MACHINE(machine.blipStack.push_back(OwnState(hand)))},
        {"stateStack.push_back(null)", VELL_ON_MACHINE(machine.stateStack.push_back(nullptr))},
        {"blipActive = true", VELL_ON_MACHINE(machine.blipActive = true)},
        {"currentStack = &blipStack", VELL_ON_MACHINE(machine.currentStack = &machine.blipStack)},
        {"currentStack = null", VELL_ON_MACHINE(machine.currentStack = nullptr)},
        {"globalState = null", VELL_ON_MACHINE(machine.globalState = nullptr)},
        {"previousState = null", VELL_ON_MACHINE(machine.previousState = nullptr)},
        {"applyingContext = true", VELL_ON_MACHINE(machine.applyingContext = true)},
    };
    // clang-format on
}

} // namespace vell::callbacks
