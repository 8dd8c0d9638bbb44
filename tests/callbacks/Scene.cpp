// VELL: data-driven hierarchical state machines.
// tests/callbacks/Scene.cpp: the document and the steps of the scene.
#include "tests/callbacks/Scene.h"

#include "tests/callbacks/Cast.h"
#include "tests/support/DocumentBuilder.h"

#include <stdexcept>

namespace vell::callbacks
{
namespace
{

using namespace DURMBaseLib;
using namespace vell::test;

constexpr int kEqual = 1;

JsonObject Cued(const std::string& name, unsigned int id, unsigned int source, unsigned int target,
                int cue)
{
    return Transition(name, id, source, target, {IntCondition("cue", kEqual, cue)});
}

JsonObject IdleNode()
{
    return Generic("Idle", kIdle, {kGo, 110, 112})
        .Set(JSON_ScriptName, "idle.script")
        .Set(JSON_Attributes,
             Json::Array(
                 {Attribute("surface", "QString", "stone"), Attribute("steps", "int", -4),
                  Attribute("length", "double", 0.75), Attribute("offset", "QVector2D", "1,-2"),
                  Attribute("pivot", "QVector3D", "1,2,3"),
                  Attribute("tint", "QVector4D", "0,0,1,1"), Attribute("loud", "bool", true)}));
}

std::string DocumentText()
{
    DocumentBuilder document;
    document.Start(kIdle)
        .Parameter(IntParameter("cue", 0))
        .Parameter(BoolParameter("hit", false).Set(JSON_ParameterResetEachFrame, true))
        .Parameter(BoolParameter("lit", false))
        .Parameter(FloatParameter("speed", 0.5))
        .Parameter(VectorParameter(PARAM_Float2, "stick", "3,4"))
        .Parameter(VectorParameter(PARAM_Float3, "wind", "1,2,2"))
        .Parameter(VectorParameter(PARAM_Float4, "tone", "1,2,3,4"))
        .Parameter(MessageParameter("shout", "hey"))
        .Node(IdleNode())
        .Node(Clip("Walk", kWalk, "walk.anim", {101}))
        .Node(Clip("Flinch", kFlinch, "flinch.anim", {107}))
        .Node(Generic("Rest", kRest, {106, 111}))
        .Node(Substate("Combat", kCombat, 21, kOut, {102}))
        .Node(Enter("In", 21, kGuard, kCombat))
        .Node(Exit("Out", kOut, kCombat))
        .Node(Generic("Guard", kGuard, {103}, kCombat))
        .Node(Generic("Scout", kScout, {104}, kCombat))
        .Node(Enter("Lobby", kLobby, kIdle).Set(JSON_Children, Json::Array(Ids{105})))
        .Node(Exit("Over", kOver))
        .Node(Node(kHostBuilder, "Camera", kCamera, {108}))
        .Node(Cued("Go", kGo, kIdle, kWalk, 1))
        .Node(Cued("Fight", 101, kWalk, kCombat, 2))
        .Node(Cued("Swap", 103, kGuard, kScout, 3))
        .Node(Cued("Done", 104, kScout, kOut, 4))
        .Node(Cued("Leave", 102, kCombat, kLobby, 5))
        .Node(Cued("Film", 105, kLobby, kCamera, 6))
        .Node(Cued("Settle", 108, kCamera, kRest, 7))
        .Node(Cued("Again", 106, kRest, kIdle, 8))
        .Node(Cued("Recover", 107, kFlinch, kOver, 9))
        .Node(Transition("Loud", 110, kIdle, kWalk, {MessageCondition("shout", "no")}))
        .Node(Transition("Fast", 111, kRest, kWalk, {FloatCondition("speed", 3, 100.0)}))
        .Node(Transition("Lost", 112, kIdle, kWalk, {BoolCondition("nowhere", true)}))
        .GlobalNode(Node(kHostBuilder, "Lens", kLens))
        .GlobalNode(Global("Anywhere", kGlobal, {500}))
        .GlobalNode(Transition("Hit", 500, kGlobal, kFlinch, {BoolCondition("hit", true)}));
    // Little, because a sanitizer marks every byte of it.
    document.Head().Set(JSON_HeadMemory, 1000);
    return document.Text();
}

template <class T>
T* FindParameter(Cast& cast, const char* name)
{
    IParameterTable* table = cast.machine->GetParameterTable();
    return table == nullptr ? nullptr : dynamic_cast<T*>(table->FindParameter(ParameterId(name)));
}

Tessel::KVTable TableOf(Cast& cast, const char* parameterName)
{
    ParameterDef* parameter = FindParameter<ParameterDef>(cast, parameterName);
    return parameter == nullptr ? Tessel::KVTable() : parameter->GetKVTable();
}

void Tick(Cast& cast)
{
    cast.machine->Update(0.1f);
}

void TickSixTimes(Cast& cast)
{
    for (int i = 0; i < 6; ++i)
    {
        Tick(cast);
    }
}

/// Makes the transition hold that waits for `number`, for one tick, and ticks once more.
template <int number>
void Cue(Cast& cast)
{
    if (auto* cue = FindParameter<IParameterIntDef>(cast, "cue"))
    {
        cue->SetValue(number);
    }
    Tick(cast);
    if (auto* cue = FindParameter<IParameterIntDef>(cast, "cue"))
    {
        cue->SetValue(0);
    }
    Tick(cast);
}

void Hit(Cast& cast)
{
    if (auto* hit = FindParameter<IParameterBoolDef>(cast, "hit"))
    {
        hit->SetValue(true);
    }
    Tick(cast);
    Tick(cast);
}

void Create(Cast&)
{
    // Its constructor tells the cast.
    new HostMachine(SceneDocument());
}

void Init(Cast& cast)
{
    cast.machine->RegisterNodeDef(kHostBuilder, &HostDef::Create);
    cast.machine->Init();
}

void PutActions(Cast& cast)
{
    struct Place
    {
        unsigned int node;
        const char* what;
    };
    const Place places[] = {{kIdle, "a plain state"},       {kWalk, "a clip"},
                            {kFlinch, "a state in a blip"}, {kCombat, "a level"},
                            {kGuard, "a level's child"},    {kLobby, "an enter node"},
                            {kOut, "an exit node"},         {kOver, "an exit node in a blip"},
                            {kGlobal, "the global node"},   {kCamera, "a host's state"}};
    for (const Place& place : places)
    {
        const std::string what = std::string(" action of ") + place.what;
        if (IBaseDef* def = cast.machine->FindDef(place.node))
        {
            // Each has a companion behind it.
            def->RegisterEnter(new HostAction("enter" + what));
            def->RegisterEnter(new HostAction(""));
            def->RegisterExecute(new HostAction("execute" + what));
            def->RegisterExecute(new HostAction(""));
            def->RegisterExit(new HostAction("exit" + what));
            def->RegisterExit(new HostAction(""));
        }
    }
}

/// Performed by nobody: a parameter is no state.
void PutParameterAction(Cast& cast)
{
    if (auto* cue = FindParameter<ParameterDef>(cast, "cue"))
    {
        cue->RegisterExecute(new HostAction("parameter action"));
        cue->RegisterExecute(new HostAction(""));
    }
}

void RemoveAction(Cast& cast)
{
    if (IBaseDef* def = cast.machine->FindDef(kScout))
    {
        auto* removed = new HostAction("execute action to be removed");
        removed->isRemoved = true;
        def->RegisterExecute(removed);
        def->RegisterExecute(new HostAction(""));
        // An operation may have put another one in front.
        for (Action* link = def->GetActions(); link != nullptr && link->next != nullptr;
             link = link->next)
        {
            link->next->prev = link;
        }
        def->RemoveAction(removed);
    }
}

void AddCondition(Cast& cast)
{
    if (auto* go = dynamic_cast<TransitionDef*>(cast.machine->FindDef(kGo)))
    {
        cast.condition.parameterID = ParameterId("cue");
        go->conditions.push_back(&cast.condition);
        cast.machine->BindParamCond();
    }
}

void AssignHooks(Cast& cast)
{
    cast.machine->AssignTrigger("Go", &StateTrigger);
    cast.machine->AssignTrigger("Hit", &GlobalTrigger);
    cast.machine->SetStateSwitchCallback(&HearSwitch);
    cast.machine->RegisterAction(&cast.registered);
}

void AssignDefaults(Cast& cast)
{
    // The one quiet state is left out.
    IBaseDef* rest = cast.machine->FindDef(kRest);
    if (rest != nullptr)
    {
        rest->SetFlags(0);
    }
    cast.machine->AssignDefaultAction(&MakeDefaultAction);
}

void SubscribeListeners(Cast& cast)
{
    cast.machine->SubscribeStateChange(&cast.listener);
    cast.machine->SubscribeStateChange(&cast.second);
    cast.machine->SubscribeEvents(&cast.listener);
    cast.machine->SubscribeEvents(&cast.parameter);
    cast.machine->SubscribeEvents(&cast.second);
}

void ListenToParameter(Cast& cast, const char* name, const char* callback)
{
    if (ParameterDef* parameter = FindParameter<ParameterDef>(cast, name))
    {
        ListenToTable(parameter->GetKVTable(), "value", callback, parameter);
    }
}

void ListenToTables(Cast& cast)
{
    ListenToParameter(cast, "cue", "listener on an integer parameter's value");
    ListenToParameter(cast, "hit", "listener on the value of a parameter that is reset");
    ListenToParameter(cast, "lit", "listener on a bool parameter's value");
    ListenToParameter(cast, "stick", "listener on a vector parameter's value");
    ListenToParameter(cast, "shout", "listener on a message's value");
    ListenToTable(TableOf(cast, "speed"), nullptr, "listener on a parameter's whole table",
                  FindParameter<ParameterDef>(cast, "speed"));
    const Tessel::KVTable root = cast.machine->GetKVTable();
    const Tessel::KVTable context = root->GetTable("contextInfo");
    ListenToTable(context, "nextState", "listener on \"nextState\"");
    ListenToTable(context, "previousState", "listener on \"previousState\"");
    ListenToTable(context, "transitionTriggered", "listener on \"transitionTriggered\"");
    ListenToTable(context->GetTable("stackStates"), nullptr, "listener on \"stackStates\"");
    ListenToTable(root, nullptr, "listener on the root");
    if (IBaseDef* def = cast.machine->FindDef(kIdle))
    {
        AttribBase* surface = def->GetAttrib("surface");
        if (surface != nullptr)
        {
            ListenToTable(surface->GetKVTable(), "value", "listener on an attribute's value");
        }
    }
}

void Start(Cast& cast)
{
    cast.machine->Start();
}

void AskInput(Cast& cast)
{
    if (SMState* state = cast.machine->GetCurrentState())
    {
        state->HandleInput(cast.machine);
    }
}

void WriteValues(Cast& cast)
{
    if (auto* lit = FindParameter<IParameterBoolDef>(cast, "lit"))
    {
        lit->SetValue(!lit->GetValue());
    }
    if (auto* stick = FindParameter<IParameterAnalogDef>(cast, "stick"))
    {
        stick->SetValue(Tessel::Float2{5, 12});
    }
    if (auto* speed = FindParameter<IParameterFloatDef>(cast, "speed"))
    {
        speed->SetValue(2.5f);
    }
    cast.machine->BroadcastMessage("shout");
    Tick(cast);
}

/// What a tool does beside the machine.
void WriteByTool(Cast& cast)
{
    TableOf(cast, "speed")->SetFloat("value", 1.5f, 1);
    TableOf(cast, "shout")->SetString("value", "no", 1);
    const Tessel::KVTable root = cast.machine->GetKVTable();
    root->SetUInt("mark", 1, 1);
    root->GetTable("contextInfo")->GetTable("stackStates")->SetUInt("mark", 1, 1);
    IBaseDef* def = cast.machine->FindDef(kIdle);
    AttribBase* surface = def == nullptr ? nullptr : def->GetAttrib("surface");
    if (surface != nullptr)
    {
        surface->GetKVTable()->SetString("value", "sand", 1);
    }
    Tick(cast);
}

void Fire(Cast& cast)
{
    ParamBroadcast record = {};
    record.subKind = 1;
    cast.machine->FireEvent(static_cast<__HSMEventType__>(1),
                            reinterpret_cast<const __PlayAnimEvent__*>(&record));
    Tick(cast);
}

/// A check that fails, for the log callback.
void FailACheck(Cast& cast)
{
    cast.machine->RegisterAction(nullptr);
}

void Uninit(Cast& cast)
{
    cast.UninitOwn();
    cast.machine->Uninit();
}

void Delete(Cast& cast)
{
    cast.machine->Destroy();
    delete cast.machine;
}

const std::vector<Step> kOpening = {
    {"create", &Create},
    {"init", &Init},
    {"put actions", &PutActions},
    {"put an action on a parameter", &PutParameterAction},
    {"remove an action", &RemoveAction},
    {"add a condition", &AddCondition},
    {"assign hooks", &AssignHooks},
    {"assign default actions", &AssignDefaults},
    {"subscribe", &SubscribeListeners},
    {"listen to tables", &ListenToTables},
    {"start", &Start},
};

const std::vector<Step> kRound = {
    {"stay in a plain state", &TickSixTimes},
    {"go to a clip", &Cue<1>},
    {"go to a level", &Cue<2>},
    {"blip over a level", &Hit},
    {"go to the blip's exit node", &Cue<9>},
    {"go to another child", &Cue<3>},
    {"go to the level's exit node", &Cue<4>},
    {"go to an enter node", &Cue<5>},
    {"go to a host's state", &Cue<6>},
    {"ask for input", &AskInput},
    {"go to a quiet state", &Cue<7>},
    {"stay in a quiet state", &TickSixTimes},
    {"write values", &WriteValues},
    {"write by a tool", &WriteByTool},
    {"fire an event", &Fire},
    {"fail a check", &FailACheck},
    {"stay in a quiet state", &TickSixTimes},
    {"blip", &Hit},
    {"go to the blip's exit node", &Cue<9>},
    {"go back to the start", &Cue<8>},
};

const std::vector<Step> kEnding = {
    {"uninit", &Uninit},
    {"delete", &Delete},
};

} // namespace

const char* SceneDocument()
{
    static const std::string text = DocumentText();
    return text.c_str();
}

const std::vector<Step>& Steps()
{
    static const std::vector<Step> steps = []
    {
        std::vector<Step> all = kOpening;
        for (const std::vector<Step>* part : {&kRound, &kRound, &kEnding})
        {
            all.insert(all.end(), part->begin(), part->end());
        }
        return all;
    }();
    return steps;
}

std::size_t FirstStepOfTheEnd()
{
    return Steps().size() - kEnding.size();
}

void RunSteps(Cast& cast, std::size_t first, std::size_t end)
{
    for (std::size_t i = first; i < end; ++i)
    {
        try
        {
            Steps()[i].run(cast);
        }
        catch (const std::out_of_range&)
        {
            // The one exception of the library's own: a stack that is shorter than its walk.
        }
    }
}

} // namespace vell::callbacks
