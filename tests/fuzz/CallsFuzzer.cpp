// VELL: data-driven hierarchical state machines.
// tests/fuzz/CallsFuzzer.cpp: a host's calls on a good machine, also from inside of its own calls.
#include <vell/vell.h>

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/MachineRun.h"
#include "tests/fuzz/TreeWrites.h"
#include "tests/support/DocumentBuilder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace vell::fuzz
{
namespace
{

using namespace DURMBaseLib;
using namespace vell::test;

const std::array<const char*, 6> kParameters = {"go", "hit", "count", "speed", "stick", "shout"};
const std::array<unsigned int, 10> kNodes = {10, 11, 12, 20, 21, 22, 23, 50, 70, 100};
const std::array<unsigned int, 7> kStates = {10, 11, 12, 20, 22, 23, 70};
constexpr int kDeepest = 3;
constexpr unsigned int kMostActions = 200;

/// A start state with an attribute of each class, a level, a global node whose blip ends, and
/// transitions on parameters of each class.
std::string GoodDocument()
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(BoolParameter("go", false))
        .Parameter(BoolParameter("hit", false).Set(JSON_ParameterResetEachFrame, true))
        .Parameter(IntParameter("count", 0))
        .Parameter(FloatParameter("speed", 0.5))
        .Parameter(VectorParameter(PARAM_Float2, "stick", "3,4"))
        .Parameter(MessageParameter("shout", "hey").Set(JSON_ParameterResetEachFrame, true))
        .Node(Generic("Idle", 10, {100, 101, 102})
                  .Set(JSON_ScriptName, "idle.script")
                  .Set(JSON_Attributes, Json::Array({Attribute("surface", "QString", "stone"),
                                                     Attribute("steps", "int", -4),
                                                     Attribute("length", "double", 0.75),
                                                     Attribute("offset", "QVector2D", "1,-2"),
                                                     Attribute("pivot", "QVector3D", "1,2,3"),
                                                     Attribute("tint", "QVector4D", "0,0,1,1"),
                                                     Attribute("loud", "bool", true)})))
        .Node(Clip("Walk", 11, "walk.anim", {103}))
        .Node(Clip("Flinch", 12, "flinch.anim", {105}))
        .Node(Exit("Over", 70))
        .Node(Transition("Go", 100, 10, 11, {BoolCondition("go", true)}))
        .Node(Transition("Fight", 101, 10, 20, {IntCondition("count", 3, 2)}))
        .Node(Transition("Shout", 102, 10, 11, {MessageCondition("shout", "hey")}))
        .Node(Transition("Back", 103, 11, 10, {FloatCondition("speed", 5, 0.0)}))
        .Node(Transition("Recover", 105, 12, 70, {FloatCondition("speed", 3, 1.0)}))
        .Node(Substate("Combat", 20, 21, 22))
        .Node(Enter("In", 21, 23, 20))
        .Node(Exit("Out", 22, 20))
        .Node(Generic("Guard", 23, {104}, 20))
        .Node(Transition("Leave", 104, 23, 22, {BoolCondition("go", true)}))
        .GlobalNode(Global("Anywhere", 50, {500}))
        .GlobalNode(Transition("Hit", 500, 50, 12, {BoolCondition("hit", true)}));
    // Little, because a sanitizer marks every byte of it.
    document.Head().Set(JSON_HeadMemory, 300);
    return document.Text();
}

/// Documents whose machine does not load, at several steps.
const std::array<const char*, 4> kBadDocuments = {"", "{", "{}", "[1,2]"};

class FuzzListener : public IBroadcastListener
{
public:
    int OnBroadcastEvent(int event, const void* record) override;
};

class FuzzAction : public Action
{
public:
    FuzzAction();
    ~FuzzAction() override;
    int Perform(__ActType__ type, float timeStep) override;
};

/// What the machine's callbacks reach: triggers and callbacks carry no pointer of the host's own.
struct Host
{
    HSM* machine;
    Bytes* bytes;
    int depth;
    unsigned int actionsAlive;
    bool initialised;
    bool down;
    std::array<FuzzListener, 4> listeners;
    Action registered;
};

Host* host = nullptr;

void Meddle();

FuzzAction::FuzzAction()
{
    ++host->actionsAlive;
}

FuzzAction::~FuzzAction()
{
    --host->actionsAlive;
}

int FuzzAction::Perform(__ActType__, float)
{
    Meddle();
    return 1;
}

int FuzzListener::OnBroadcastEvent(int, const void*)
{
    Meddle();
    return 0;
}

bool MeddlingTrigger(IHSM*, SMState* state)
{
    Require(state == nullptr, "a trigger gets no state");
    Meddle();
    return host->bytes->Below(2) == 1;
}

void MeddlingSwitch(HSM*, SMState*, SMState* next, float)
{
    Require(next != nullptr, "a state is activated");
    Meddle();
}

int MeddlingTableListener(void*, Tessel::opResult, Tessel::KVTable, const char*)
{
    Meddle();
    return 0;
}

Action* MakeDefaultAction(const char*)
{
    return host->actionsAlive < kMostActions ? new FuzzAction : nullptr;
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
    HSM& machine = *host->machine;
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
    if (def == nullptr || host->actionsAlive >= kMostActions)
    {
        return;
    }
    switch (bytes.Below(4))
    {
    case 0:
        def->RegisterEnter(new FuzzAction);
        break;
    case 1:
        def->RegisterExit(new FuzzAction);
        break;
    case 2:
        def->RegisterExecute(new FuzzAction);
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
    HSM& machine = *host->machine;
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
    HSM& machine = *host->machine;
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

/// One call that a host may make at any time, also while the machine calls it.
void CallAnywhere(Bytes& bytes)
{
    HSM& machine = *host->machine;
    switch (bytes.Below(12))
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
        machine.RegisterAction(bytes.Below(2) == 0 ? nullptr : &host->registered);
        machine.SetStateSwitchCallback(bytes.Below(2) == 0 ? nullptr : &MeddlingSwitch);
        break;
    default:
        machine.BindParamCond();
        break;
    }
}

void Meddle()
{
    if (host->depth >= kDeepest || host->bytes->Empty())
    {
        return;
    }
    ++host->depth;
    CallAnywhere(*host->bytes);
    --host->depth;
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
    HSM& machine = *host->machine;
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
    HSM& machine = *host->machine;
    switch (bytes.Below(14))
    {
    case 0:
        machine.PushState(kStates[bytes.Below(7)]);
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
        machine.AssignDefaultAction(bytes.Below(4) == 0 ? nullptr : &MakeDefaultAction);
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

void Play(Bytes& bytes)
{
    const unsigned int beforeInit = bytes.Below(4);
    for (unsigned int i = 0; i < beforeInit; ++i)
    {
        CallBetweenTicks(bytes);
    }
    for (unsigned int inits = bytes.Below(16) == 0 ? bytes.Below(3) : 1; inits != 0; --inits)
    {
        host->initialised = host->machine->Init() != 0;
    }
    if (bytes.Below(8) != 0)
    {
        host->machine->Start();
    }
    while (!bytes.Empty())
    {
        const unsigned int choice = bytes.Below(3);
        if (choice == 0)
        {
            CallAnywhere(bytes);
        }
        else if (choice == 1)
        {
            CallBetweenTicks(bytes);
        }
        else
        {
            Tick(*host->machine, 0.1f);
        }
    }
}

} // namespace
} // namespace vell::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vell::fuzz;
    static const std::string goodDocument = GoodDocument();
    Bytes bytes(data, size);
    const unsigned int choice = bytes.Byte();
    const char* document = choice >= 250 ? kBadDocuments[choice % 4] : goodDocument.c_str();
    Host player = {};
    player.bytes = &bytes;
    host = &player;
    {
        const std::unique_ptr<vell::HSM> machine(new vell::HSM(document));
        player.machine = machine.get();
        Play(bytes);
        player.down = true;
        player.depth = kDeepest;
        machine->Uninit();
        if (size % 2 == 1)
        {
            machine->Uninit();
        }
        machine->Destroy();
    }
    Require(player.actionsAlive == 0, "the definitions delete their actions");
    Require(Tessel::GetOpenTableCount() == 0, "a deleted machine leaves no table");
    host = nullptr;
    return 0;
}
