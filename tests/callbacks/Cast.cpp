// VELL: data-driven hierarchical state machines.
// tests/callbacks/Cast.cpp: the host's classes and callbacks.
#include "tests/callbacks/Cast.h"

#include <array>
#include <cstring>
#include <deque>
#include <utility>

namespace vell::callbacks
{
namespace
{

Watcher currentWatcher = nullptr;
Cast* currentCast = nullptr;

Hand HandOf(SMState* state)
{
    Hand hand;
    hand.state = state;
    hand.def = state == nullptr ? nullptr : state->GetDef();
    return hand;
}

Hand HandOf(BaseDef* def)
{
    Hand hand;
    hand.def = def;
    return hand;
}

/// Gives the state of a definition. By operations that tell nobody.
SMState* FindStateOf(BaseDef* def)
{
    HostMachine* machine = currentCast == nullptr ? nullptr : currentCast->machine;
    return machine == nullptr || def == nullptr ? nullptr
                                                : machine->FindState(def->BaseDef::GetID());
}

/// Gives the state whose name follows `tag` in a log line, or null.
SMState* FindStateNamedIn(const char* line, const char* tag)
{
    const char* name = std::strstr(line, tag);
    HostMachine* machine = currentCast == nullptr ? nullptr : currentCast->machine;
    if (name == nullptr || machine == nullptr)
    {
        return nullptr;
    }
    name += std::strlen(tag);
    for (const auto& entry : machine->states)
    {
        BaseDef* def = entry.second == nullptr ? nullptr : entry.second->GetDef();
        const char* stateName = def == nullptr ? nullptr : def->BaseDef::GetName();
        if (stateName != nullptr && std::strncmp(name, stateName, std::strlen(stateName)) == 0)
        {
            return entry.second;
        }
    }
    return nullptr;
}

/// What a listener's record points at.
struct TableEar
{
    const char* callback;
    ParameterDef* parameter;
};

int HearTable(void* object, Tessel::opResult, Tessel::KVTable table, const char* key)
{
    const auto* ear = static_cast<const TableEar*>(object);
    Hand hand;
    hand.parameter = ear->parameter;
    hand.table = table;
    hand.key = key;
    Reach(ear->callback, hand);
    return 1;
}

/// The lines of which the log callback tells.
struct ToldLine
{
    const char* part;
    const char* callback;
};

const std::array<ToldLine, 11> kToldLines = {{
    {"[Enter] ", "log callback on \"[Enter]\""},
    {"[Exit] ", "log callback on \"[Exit]\""},
    {"Activated State: ", "log callback on \"Activated State\""},
    {"Transition satisfied: ", "log callback on \"Transition satisfied\""},
    {"Revert to Previous State", "log callback on \"Revert to Previous State\""},
    {"State Blip: ", "log callback on \"State Blip\""},
    {"Created new BaseDef: ", "log callback on \"Created new BaseDef\""},
    {"Assigned a Default Action", "log callback on \"Assigned a Default Action\""},
    {"ExitState.cpp", "log callback on an exit node's line"},
    {"Parameter definition is NULL", "log callback on a parameter that is not there"},
    {"ERROR_BREAK(", "log callback on a failed check"},
}};

} // namespace

void SetWatcher(Watcher watcher)
{
    currentWatcher = watcher;
}

void Reach(const std::string& callback, Hand hand)
{
    if (currentWatcher == nullptr || currentCast == nullptr)
    {
        return;
    }
    if (hand.machine == nullptr)
    {
        hand.machine = currentCast->machine;
    }
    if (hand.machine != nullptr)
    {
        currentWatcher(callback, hand);
    }
}

HostAction::HostAction(std::string place) : where(std::move(place))
{
    LivingActions().insert(this);
}

HostAction::~HostAction()
{
    LivingActions().erase(this);
    if (where.empty())
    {
        return;
    }
    Hand hand = HandOf(owner);
    hand.action = this;
    const std::string list = where.substr(0, where.find(" action"));
    Reach(isRemoved ? "destructor of a removed action" : "destructor of an action: " + list, hand);
}

int HostAction::Perform(__ActType__, float)
{
    if (where.empty())
    {
        return 1;
    }
    Hand hand = HandOf(owner);
    hand.action = this;
    hand.state = FindStateOf(owner);
    Reach(where, hand);
    return 1;
}

void HostAction::SetOwner(BaseDef* newOwner)
{
    owner = newOwner;
    Hand hand = HandOf(owner);
    hand.action = this;
    Reach("SetOwner of an action", hand);
}

std::set<HostAction*>& LivingActions()
{
    static std::set<HostAction*> living;
    return living;
}

int HostListener::OnBroadcastEvent(int event, const void*)
{
    Hand hand;
    hand.listener = this;
    const char* callback = "event listener on the host's event";
    if (event == HSMEventStateChange)
    {
        callback = "state change listener";
    }
    else if (event == HSMEventPlayAnimation)
    {
        callback = "event listener on a clip";
    }
    Reach(callback, hand);
    return 0;
}

void HostParameter::SetValue(float newValue)
{
    Hand hand;
    hand.parameter = this;
    Reach("SetValue of a host's parameter", hand);
    ParameterFloatDef::SetValue(newValue);
}

int HostParameter::OnBroadcastEvent(int event, const void* record)
{
    Hand hand;
    hand.parameter = this;
    hand.listener = this;
    Reach("OnBroadcastEvent of a host's parameter", hand);
    return event == HSMEventPlayAnimation ? 0 : ParameterFloatDef::OnBroadcastEvent(event, record);
}

HostState::HostState()
{
    Reach("host state's constructor", HandOf(this));
}

SMState* HostState::Create(unsigned int, HSMAlloc* alloc)
{
    Reach("state factory");
    return alloc->New<HostState>();
}

int HostState::Init(BaseDef* newDef)
{
    Reach("host state's Init", HandOf(this));
    return SMState::Init(newDef);
}

int HostState::HandleInput(HSM* machine)
{
    Reach("host state's HandleInput", HandOf(this));
    return SMState::HandleInput(machine);
}

int HostState::Update(HSM* machine, float dt)
{
    Reach("host state's Update", HandOf(this));
    return SMState::Update(machine, dt);
}

int HostState::Enter()
{
    Reach("host state's Enter", HandOf(this));
    return SMState::Enter();
}

int HostState::Execute(double dt)
{
    Reach("host state's Execute", HandOf(this));
    return SMState::Execute(dt);
}

int HostState::Exit()
{
    Reach("host state's Exit", HandOf(this));
    return SMState::Exit();
}

unsigned int HostState::ProcessTransitions(HSM* machine, UpdateResult* result)
{
    Reach("host state's ProcessTransitions", HandOf(this));
    return SMState::ProcessTransitions(machine, result);
}

HostDef::HostDef()
{
    Reach("host definition's constructor", HandOf(this));
}

BaseDef* HostDef::Create(const GenericValue&, HSMAlloc* alloc)
{
    Reach("definition factory");
    HostDef* def = alloc->New<HostDef>();
    if (def != nullptr)
    {
        def->SetFlags(DefTypesState);
    }
    return def;
}

const char* HostDef::GetName()
{
    Reach("host definition's GetName", HandOf(this));
    return BaseDef::GetName();
}

unsigned int HostDef::GetID()
{
    Reach("host definition's GetID", HandOf(this));
    return BaseDef::GetID();
}

unsigned int HostDef::GetParentID()
{
    Reach("host definition's GetParentID", HandOf(this));
    return BaseDef::GetParentID();
}

eHSMDefTypes HostDef::GetType()
{
    Reach("host definition's GetType", HandOf(this));
    return BaseDef::GetType();
}

const char* HostDef::GetScriptName()
{
    Reach("host definition's GetScriptName", HandOf(this));
    return BaseDef::GetScriptName();
}

int HostDef::RegisterExecute(Action* action)
{
    Reach("host definition's RegisterExecute", HandOf(this));
    return BaseDef::RegisterExecute(action);
}

Action* HostDef::GetActions()
{
    Reach("host definition's GetActions", HandOf(this));
    return BaseDef::GetActions();
}

Action* HostDef::GetEnterActions()
{
    Reach("host definition's GetEnterActions", HandOf(this));
    return BaseDef::GetEnterActions();
}

Action* HostDef::GetExitActions()
{
    Reach("host definition's GetExitActions", HandOf(this));
    return BaseDef::GetExitActions();
}

unsigned int HostDef::GetFlags() const
{
    Reach("host definition's GetFlags", HandOf(const_cast<HostDef*>(this)));
    return BaseDef::GetFlags();
}

int HostDef::Init(const GenericValue& node, HSMAlloc* arena)
{
    Reach("host definition's Init", HandOf(this));
    return BaseDef::Init(node, arena);
}

void HostDef::Uninit()
{
    Reach("host definition's Uninit", HandOf(this));
    BaseDef::Uninit();
}

int HostDef::InitKVTable()
{
    Reach("host definition's InitKVTable", HandOf(this));
    return BaseDef::InitKVTable();
}

bool HostCondition::Evaluate(HSM*)
{
    Reach("host condition's Evaluate", HandOf(this));
    return false;
}

bool HostCondition::ParameterBind()
{
    Reach("host condition's ParameterBind", HandOf(this));
    return true;
}

HostMachine::HostMachine(const char* documentText)
{
    if (currentCast != nullptr && currentCast->machine == nullptr)
    {
        currentCast->machine = this;
    }
    jsonText = documentText;
    HSM::Create();
}

HostMachine::~HostMachine()
{
    if (currentCast != nullptr && currentCast->machine == this)
    {
        currentCast->machine = nullptr;
    }
}

void HostMachine::RegisterBuilders()
{
    HSM::RegisterBuilders();
    RegisterState(kHostBuilder, &HostState::Create);
    Hand hand;
    hand.machine = this;
    Reach("RegisterBuilders of a host's machine", hand);
}

Cast::Cast()
{
    currentCast = this;
    SetLogCallBackBase(&HearLog);
    parameter.SetName("host's parameter");
    parameter.InitKVTable();
    registered.id = 1;
    further.id = 2;
}

Cast::~Cast()
{
    SetWatcher(nullptr);
    SetLogCallBackBase(nullptr);
    currentCast = nullptr;
    UninitOwn();
    // What an operation took off a list by a public field is the host's again.
    while (!LivingActions().empty())
    {
        delete *LivingActions().begin();
    }
}

void Cast::UninitOwn()
{
    condition.Uninit();
    condition = HostCondition();
    parameter.Uninit();
}

Cast* CurrentCast()
{
    return currentCast;
}

bool StateTrigger(IHSM*, SMState*)
{
    Reach("trigger of a state");
    return false;
}

bool GlobalTrigger(IHSM*, SMState*)
{
    Reach("trigger of the global state");
    return false;
}

void HearSwitch(HSM* machine, SMState*, SMState* next, float)
{
    Hand hand = HandOf(next);
    const char* callback = "state-switch callback in a transition";
    if (machine->IsBlipState())
    {
        callback = "state-switch callback in a blip";
    }
    else if (machine->GetCurrentState() == nullptr)
    {
        callback = "state-switch callback at the start";
    }
    Reach(callback, hand);
}

Action* MakeDefaultAction(const char*)
{
    Reach("action factory");
    return new HostAction("execute action by default");
}

void HearLog(int, const char* text)
{
    for (const ToldLine& line : kToldLines)
    {
        if (std::strstr(text, line.part) != nullptr)
        {
            Reach(line.callback, HandOf(FindStateNamedIn(text, line.part)));
            return;
        }
    }
}

void ListenToTable(Tessel::KVTable table, const char* key, const char* callback,
                   ParameterDef* parameter)
{
    // They are never moved, and outlive every table.
    static std::deque<TableEar> ears;
    Tessel::KVListener* record =
        key == nullptr ? table->GetTableListener() : table->GetValueListener(key);
    if (record != nullptr)
    {
        ears.push_back(TableEar{callback, parameter});
        *record = Tessel::KVListener{&ears.back(), &HearTable};
    }
}

} // namespace vell::callbacks
