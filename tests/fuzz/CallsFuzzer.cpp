// VELL: data-driven hierarchical state machines.
// tests/fuzz/CallsFuzzer.cpp: a host's calls on a good machine, also from inside of its own calls.
#include "tests/callbacks/Cast.h"
#include "tests/callbacks/Operations.h"
#include "tests/callbacks/Scene.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/MachineRun.h"
#include "tests/fuzz/TreeWrites.h"
#include "tests/support/DocumentBuilder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>

namespace vell::fuzz
{
namespace
{

using namespace DURMBaseLib;
using namespace vell::callbacks;
using namespace vell::test;

const std::array<const char*, 6> kParameters = {"lit", "hit", "cue", "speed", "stick", "shout"};
const std::array<unsigned int, 10> kNodes = {kIdle,  kWalk,   kFlinch, kCombat, kOut,
                                             kGuard, kGlobal, kOver,   kCamera, kGo};
const std::array<unsigned int, 8> kStates = {kIdle, kWalk,  kFlinch, kCombat,
                                             kOut,  kGuard, kOver,   kCamera};
constexpr int kDeepest = 3;
constexpr unsigned int kMostActions = 200;

/// Documents whose machine does not load, at several steps.
const std::array<const char*, 4> kBadDocuments = {"", "{", "{}", "[1,2]"};

/// What the machine's callbacks reach: triggers and callbacks carry no pointer of the host's own.
struct Host
{
    HostMachine* machine;
    Bytes* bytes;
    int depth;
    bool initialised;
    bool down;
    std::array<HostListener, 4> listeners;
};

Host* host = nullptr;

/// Sets a field while it lives, also when an operation throws what a tick may throw.
template <class Value>
class While
{
public:
    While(Value& keptField, Value meanwhile) : field(keptField), before(keptField)
    {
        field = meanwhile;
    }
    ~While()
    {
        field = before;
    }
    While(const While&) = delete;
    While& operator=(const While&) = delete;

private:
    Value& field;
    const Value before;
};

void Meddle(const Hand& hand);

Hand HandOfHost()
{
    Hand hand;
    hand.machine = host->machine;
    return hand;
}

Action* NewAction()
{
    return new HostAction("fuzzed action");
}

/// None during `Uninit`: a definition that is released already deletes no action that it gets then.
bool MayAddActions()
{
    return !host->down && LivingActions().size() < kMostActions;
}

bool MeddlingTrigger(IHSM*, SMState* state)
{
    Require(state == nullptr, "a trigger gets no state");
    Meddle(HandOfHost());
    return host->bytes->Below(2) == 1;
}

void MeddlingSwitch(HSM*, SMState*, SMState* next, float)
{
    Require(next != nullptr, "a state is activated");
    Hand hand = HandOfHost();
    hand.state = next;
    Meddle(hand);
}

int MeddlingTableListener(void*, Tessel::opResult, Tessel::KVTable table, const char* key)
{
    Hand hand = HandOfHost();
    hand.table = table;
    hand.key = key;
    Meddle(hand);
    return 0;
}

Action* MakeFuzzedAction(const char*)
{
    return MayAddActions() ? NewAction() : nullptr;
}

/// What the classes of the cast and the log callback tell.
void Hear(const std::string&, const Hand& hand)
{
    if (host != nullptr && host->machine == hand.machine)
    {
        Meddle(hand);
    }
}

void ChangeListeners(Bytes& bytes)
{
    const unsigned int choice = bytes.Byte();
    IBroadcastListener* listener = choice >= 240 ? nullptr : &host->listeners[choice & 3u];
    switch (choice >> 2 & 7u)
    {
    case 0:
        host->machine->SubscribeEvents(listener);
        break;
    case 1:
        host->machine->UnsubscribeEvents(listener);
        break;
    case 2:
        host->machine->SubscribeTransitionChange(listener);
        break;
    case 3:
        host->machine->UnsubscribeTransitionChange(listener);
        break;
    case 4:
    case 5:
        host->machine->UnsubscribeStateChange(listener);
        break;
    default:
        host->machine->SubscribeStateChange(listener);
        break;
    }
}

void WriteParameter(Bytes& bytes)
{
    HostMachine& machine = *host->machine;
    IParameterTable* table = machine.GetParameterTable();
    const char* name = kParameters[bytes.Below(6)];
    ParameterDef* parameter = table == nullptr ? nullptr : table->FindParameter(name);
    if (auto* asBool = dynamic_cast<IParameterBoolDef*>(parameter))
    {
        asBool->SetValue(bytes.Below(2) == 1);
    }
    else if (auto* asInt = dynamic_cast<IParameterIntDef*>(parameter))
    {
        asInt->SetValue(static_cast<int>(bytes.Below(6)) - 1);
    }
    else if (auto* asFloat = dynamic_cast<IParameterFloatDef*>(parameter))
    {
        asFloat->SetValue(bytes.Below(4) == 0 ? bytes.Float() : static_cast<float>(bytes.Below(4)));
    }
    else if (auto* asAnalog = dynamic_cast<IParameterAnalogDef*>(parameter))
    {
        asAnalog->SetValue(Tessel::Float2{bytes.Float(), 1.0f});
    }
    else if (bytes.Below(2) == 0)
    {
        machine.BroadcastMessage(name);
    }
    else
    {
        machine.SetParameterMessage(ParameterId(name), bytes.Text(20).c_str());
    }
}

void SendToParameter(Bytes& bytes)
{
    // A record of zeros is one of every class.
    static const std::array<std::uint64_t, 32> zeros = {};
    IParameterTable* table = host->machine->GetParameterTable();
    IBroadcastListener* listener =
        table == nullptr ? nullptr
                         : table->GetBroadcastListener(ParameterId(kParameters[bytes.Below(6)]));
    if (listener != nullptr)
    {
        const int event = static_cast<int>(bytes.Below(16)) - 1;
        listener->OnBroadcastEvent(event, bytes.Below(2) == 0 ? nullptr : zeros.data());
    }
}

IBaseDef* PickDef(Bytes& bytes)
{
    return host->initialised ? host->machine->FindDef(kNodes[bytes.Below(10)]) : nullptr;
}

void AddAction(Bytes& bytes)
{
    IBaseDef* def = PickDef(bytes);
    if (def == nullptr || !MayAddActions())
    {
        return;
    }
    switch (bytes.Below(4))
    {
    case 0:
        def->RegisterEnter(NewAction());
        break;
    case 1:
        def->RegisterExit(NewAction());
        break;
    case 2:
        def->RegisterExecute(NewAction());
        break;
    default:
        def->RegisterExecute(nullptr);
        break;
    }
}

void RemoveAction(Bytes& bytes)
{
    IBaseDef* def = PickDef(bytes);
    if (def == nullptr)
    {
        return;
    }
    const std::array<Action*, 3> heads = {def->GetActions(), def->GetEnterActions(),
                                          def->GetExitActions()};
    Action* action = heads[bytes.Below(3)];
    if (action != nullptr && action->next != nullptr && bytes.Below(2) == 1)
    {
        // One that is not the head needs its `prev`, which is the host's to set.
        action->next->prev = action;
        action = action->next;
        if (action->next != nullptr)
        {
            action->next->prev = action;
        }
    }
    def->RemoveAction(action);
}

void MakeParameter(Bytes& bytes)
{
    static const std::array<const char*, 5> names = {"x", "y", "go", "", nullptr};
    IParameterTable* table = host->machine->GetParameterTable();
    if (table == nullptr)
    {
        return;
    }
    const char* name = names[bytes.Below(5)];
    IParameterFloatDef* asFloat = nullptr;
    IParameterMessageDef* asMessage = nullptr;
    IParameterBoolDef* asBool = nullptr;
    IParameterIntDef* asInt = nullptr;
    switch (bytes.Below(5))
    {
    case 0:
        table->CreateFloatParameter(name, 1.0f, &asFloat);
        break;
    case 1:
        table->CreateMessageParameter(name, bytes.Below(2) == 0 ? nullptr : "text", &asMessage);
        break;
    case 2:
        table->CreateBoolParameter(name, true, &asBool);
        break;
    case 3:
        table->CreateIntParameter(name, 7, &asInt);
        break;
    default:
        table->CreateFloatParameter(name, 1.0f, nullptr);
        break;
    }
}

void UseAttributes(Bytes& bytes)
{
    static const std::array<const char*, 8> names = {"surface", "steps", "length", "offset",
                                                     "pivot",   "tint",  "loud",   "none"};
    HostMachine& machine = *host->machine;
    const char* name = names[bytes.Below(8)];
    const char* text = nullptr;
    machine.GetAttributeValue(name, &text);
    const std::string value = bytes.Text(30);
    machine.SetAttribValue(name, value.c_str());
    SMState* state = machine.GetCurrentState();
    if (state == nullptr)
    {
        return;
    }
    std::array<float, 8> room = {};
    state->SetAttrib(name, static_cast<int>(bytes.Byte()));
    state->SetAttrib(name, bytes.Float());
    state->SetAttrib(name, bytes.Below(2) == 1);
    state->SetAttrib(name, Tessel::Float4{1, 2, 3, 4});
    if (name != names[0])
    {
        state->GetAttrib(name, static_cast<void*>(room.data()));
    }
    state->GetAttribBase(name);
}

void AskAround(Bytes& bytes)
{
    HostMachine& machine = *host->machine;
    machine.FindParameterByName(bytes.Below(2) == 0 ? nullptr : "go");
    machine.FindAction(bytes.Byte());
    machine.GetMDLAsset();
    machine.GetSkelAsset();
    machine.GetCurrentState();
    machine.IsBlipState();
    const char* text = nullptr;
    machine.GetParameterMessage(ParameterId("shout"), &text);
    machine.GetParameterMessage(ParameterId("go"), nullptr);
    if (!host->down)
    {
        machine.GetGUID();
        machine.FindDef(bytes.Below(2) == 0 ? nullptr : "Walk");
        const unsigned int mask = bytes.Below(4) == 0 ? 0xffffffffu : bytes.Byte();
        int steps = 0;
        for (IBaseDef* def = machine.BeginDef(mask); def != nullptr; def = machine.NextDef(mask))
        {
            Require(++steps < 100, "a walk ends");
        }
        machine.NextDef(mask);
    }
}

void ListenToTree(Bytes& bytes)
{
    const Tessel::KVTable root = host->machine->GetKVTable();
    const Tessel::KVTable context = root->GetTable("contextInfo");
    const Tessel::KVTable parameters = root->GetTable("parameterTable");
    const Tessel::KVTable table = bytes.Below(2) == 0 ? context : parameters;
    static const std::array<const char*, 5> keys = {"nextState", "previousState", "stateStack",
                                                    "value", "other"};
    const char* key = keys[bytes.Below(5)];
    Tessel::KVListener* record =
        bytes.Below(3) == 0 ? table->GetTableListener() : table->GetValueListener(key);
    if (record != nullptr)
    {
        *record = Tessel::KVListener{host, &MeddlingTableListener};
    }
    if (bytes.Below(3) == 0)
    {
        const Tessel::KVListener gone{host, &MeddlingTableListener};
        table->RemoveValueListener(key, &gone);
    }
}

/// One of the operations that run inside of every callback in tests/callbacks/.
void RunOperation(Bytes& bytes, const Hand& hand)
{
    const std::size_t choice = bytes.Byte() << 8 | bytes.Byte();
    const Operation& operation = Operations()[choice % Operations().size()];
    // What is left to the host would be a leak here.
    if (!operation.leaves && FindImpossible("", operation.name) == nullptr && !host->down &&
        MayAddActions())
    {
        Hand own = hand;
        operation.run(own);
    }
}

/// One call that a host may make at any time, also while the machine calls it.
void CallAnywhere(Bytes& bytes, const Hand& hand)
{
    HostMachine& machine = *host->machine;
    switch (bytes.Below(16))
    {
    case 0:
        ChangeListeners(bytes);
        break;
    case 1:
    case 2:
        WriteParameter(bytes);
        break;
    case 3:
        SendToParameter(bytes);
        break;
    case 4:
        AddAction(bytes);
        break;
    case 5:
        RemoveAction(bytes);
        break;
    case 6:
        MakeParameter(bytes);
        break;
    case 7:
        UseAttributes(bytes);
        break;
    case 8:
        AskAround(bytes);
        break;
    case 9:
        machine.FireEvent(static_cast<__HSMEventType__>(bytes.Below(8)), nullptr);
        break;
    case 10:
        machine.RegisterAction(bytes.Below(2) == 0 ? nullptr : &CurrentCast()->registered);
        machine.SetStateSwitchCallback(bytes.Below(2) == 0 ? nullptr : &MeddlingSwitch);
        break;
    case 11:
        machine.BindParamCond();
        break;
    default:
        RunOperation(bytes, hand);
        break;
    }
}

void Meddle(const Hand& hand)
{
    if (host->depth >= kDeepest || host->bytes->Empty())
    {
        return;
    }
    const While<int> depth(host->depth, host->depth + 1);
    CallAnywhere(*host->bytes, hand);
}

BaseDef* MakeNoDefinition(const GenericValue&, HSMAlloc*)
{
    return nullptr;
}

void RegisterBuilder(Bytes& bytes)
{
    const std::array<NodeDefFactory, 3> factories = {nullptr, &MakeNoDefinition, &BaseDef::Create};
    host->machine->RegisterNodeDef(static_cast<__DURM_BUILDERS__>(bytes.Below(30)),
                                   factories[bytes.Below(3)]);
}

void RestoreContext(Bytes& bytes)
{
    HostMachine& machine = *host->machine;
    const Tessel::KVTable root = machine.GetKVTable();
    switch (bytes.Below(3))
    {
    case 0:
        machine.SetContextInfo(Tessel::KVTable());
        break;
    case 1:
        machine.SetContextInfo(root->GetTable("contextInfo"));
        break;
    default:
        machine.SetContextInfo(root);
        break;
    }
}

/// One call that a host makes between ticks alone.
void CallBetweenTicks(Bytes& bytes)
{
    HostMachine& machine = *host->machine;
    switch (bytes.Below(14))
    {
    case 0:
        machine.PushState(kStates[bytes.Below(8)]);
        break;
    case 1:
        machine.PushState(bytes.Below(2) == 0 ? 0u : 999u);
        break;
    case 2:
        machine.PushState(bytes.Below(2) == 0 ? nullptr : machine.GetCurrentState());
        break;
    case 3:
        machine.PopState();
        break;
    case 4:
        machine.RevertToPreviousState();
        break;
    case 5:
        machine.RevertToStartState();
        break;
    case 6:
        machine.Start();
        break;
    case 7:
        RestoreContext(bytes);
        break;
    case 8:
        ListenToTree(bytes);
        break;
    case 9:
        machine.AssignTrigger(bytes.Below(2) == 0 ? "Go" : "Hit",
                              bytes.Below(5) == 0 ? nullptr : &MeddlingTrigger);
        break;
    case 10:
        machine.AssignDefaultAction(bytes.Below(4) == 0 ? nullptr : &MakeFuzzedAction);
        break;
    case 11:
        WriteIntoTree(machine.GetKVTable(), bytes);
        break;
    case 12:
        RegisterBuilder(bytes);
        break;
    default:
        Tick(machine, bytes.Below(4) == 0 ? bytes.Float() : 0.1f);
        break;
    }
}

/// Runs `function`, which std::out_of_range may end: a stack is shorter than its walk, which an
/// operation in a callback may bring about.
template <class Function>
void Survive(Function function)
{
    try
    {
        function();
    }
    catch (const std::out_of_range&)
    {
    }
}

/// One decision of the host between the ticks.
void PlayOnce(Bytes& bytes)
{
    switch (bytes.Below(3))
    {
    case 0:
        CallAnywhere(bytes, HandOfHost());
        break;
    case 1:
        CallBetweenTicks(bytes);
        break;
    default:
        Tick(*host->machine, 0.1f);
        break;
    }
}

void Begin(Bytes& bytes)
{
    for (unsigned int beforeInit = bytes.Below(4); beforeInit != 0; --beforeInit)
    {
        PlayOnce(bytes);
    }
    for (unsigned int inits = bytes.Below(16) == 0 ? bytes.Below(3) : 1; inits != 0; --inits)
    {
        host->initialised = host->machine->Init() != 0;
    }
    if (bytes.Below(8) != 0)
    {
        host->machine->Start();
    }
}

void Play(Bytes& bytes)
{
    host->machine->RegisterNodeDef(kHostBuilder, &HostDef::Create);
    Survive(
        [&bytes]
        {
            Begin(bytes);
        });
    while (!bytes.Empty())
    {
        Survive(
            [&bytes]
            {
                PlayOnce(bytes);
            });
    }
}

/// Gives the actions on the lists of the machine's definitions. One that was put on a definition
/// whose load has failed is on none of them, and stays the host's.
std::set<const Action*> ActionsOf(HostMachine& machine)
{
    std::set<const Action*> actions;
    constexpr unsigned int kAll = 0xffffffffu;
    for (IBaseDef* def = machine.BeginDef(kAll); def != nullptr; def = machine.NextDef(kAll))
    {
        for (const Action* head :
             {def->GetActions(), def->GetEnterActions(), def->GetExitActions()})
        {
            for (const Action* action = head; action != nullptr; action = action->next)
            {
                actions.insert(action);
            }
        }
    }
    return actions;
}

} // namespace
} // namespace vell::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vell::fuzz;
    using vell::callbacks::Cast;
    using vell::callbacks::HostMachine;
    Bytes bytes(data, size);
    const unsigned int choice = bytes.Byte();
    const char* document =
        choice >= 250 ? kBadDocuments[choice % 4] : vell::callbacks::SceneDocument();
    Host player = {};
    player.bytes = &bytes;
    {
        Cast cast;
        const std::unique_ptr<HostMachine> machine(new HostMachine(document));
        player.machine = machine.get();
        host = &player;
        vell::callbacks::SetWatcher(&Hear);
        Play(bytes);
        player.down = true;
        player.depth = kDeepest;
        cast.UninitOwn();
        const std::set<const vell::Action*> owned = ActionsOf(*machine);
        machine->Uninit();
        if (size % 2 == 1)
        {
            machine->Uninit();
        }
        machine->Destroy();
        for (vell::callbacks::HostAction* action : vell::callbacks::LivingActions())
        {
            Require(owned.count(action) == 0, "the definitions delete their actions");
        }
        host = nullptr;
    }
    Require(Tessel::GetOpenTableCount() == 0, "a deleted machine leaves no table");
    return 0;
}
