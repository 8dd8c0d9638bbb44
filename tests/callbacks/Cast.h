// VELL: data-driven hierarchical state machines.
// tests/callbacks/Cast.h: the host's classes, each of which tells when the library calls it.
#pragma once

#include <vell/ConditionDef.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>
#include <vell/vell.h>

#include <set>
#include <string>

namespace vell::callbacks
{

class HostAction;
class HostMachine;

/// What a callback has at hand. What it does not know is null; the operations then take what the
/// machine has.
struct Hand
{
    HostMachine* machine = nullptr;
    SMState* state = nullptr;
    BaseDef* def = nullptr;
    HostAction* action = nullptr;
    IBroadcastListener* listener = nullptr;
    ParameterDef* parameter = nullptr;
    Tessel::KVTable table;
    const char* key = nullptr;
};

/// Hears of every callback of the cast.
using Watcher = void (*)(const std::string& callback, const Hand& hand);

/// Sets who hears of callbacks; null for nobody.
void SetWatcher(Watcher watcher);

/// Tells the watcher that `callback` runs. A hand without a machine gets the cast's.
void Reach(const std::string& callback, Hand hand = Hand());

constexpr auto kHostBuilder = static_cast<__DURM_BUILDERS__>(100);

/// An action that tells when it performs, gets its owner and is deleted. `where` says what it
/// is on: "enter action of a plain state"; empty for one that tells nothing.
class HostAction : public Action
{
public:
    explicit HostAction(std::string where);
    ~HostAction() override;
    int Perform(__ActType__ type, float timeStep) override;
    void SetOwner(BaseDef* newOwner) override;

    const std::string where;
    BaseDef* owner = nullptr;
    bool isRemoved = false; ///< RemoveAction deletes it, not its definition
};

/// Every action that is alive. The cast deletes at its end what no definition did.
std::set<HostAction*>& LivingActions();

/// A listener to state changes and events.
class HostListener : public IBroadcastListener
{
public:
    int OnBroadcastEvent(int event, const void* record) override;
};

/// A parameter of the host's own class, which is in no machine's table and hears events.
class HostParameter : public ParameterFloatDef
{
public:
    void SetValue(float newValue) override;
    int OnBroadcastEvent(int event, const void* record) override;
};

/// A state of the host's own class.
class HostState : public SMState
{
public:
    HostState();
    static SMState* Create(unsigned int stateId, HSMAlloc* alloc);

    int Init(BaseDef* newDef) override;
    int HandleInput(HSM* machine) override;
    int Update(HSM* machine, float dt) override;
    int Enter() override;
    int Execute(double dt) override;
    int Exit() override;
    unsigned int ProcessTransitions(HSM* machine, UpdateResult* result) override;
};

/// A definition of the host's own class.
class HostDef : public BaseDef
{
public:
    HostDef();
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    const char* GetName() override;
    unsigned int GetID() override;
    unsigned int GetParentID() override;
    eHSMDefTypes GetType() override;
    const char* GetScriptName() override;
    int RegisterExecute(Action* action) override;
    Action* GetActions() override;
    Action* GetEnterActions() override;
    Action* GetExitActions() override;
    unsigned int GetFlags() const override;
    int Init(const GenericValue& node, HSMAlloc* alloc) override;
    void Uninit() override;
    int InitKVTable() override;
};

/// A condition of the host's own class, which never holds.
class HostCondition : public ConditionDef
{
public:
    bool Evaluate(HSM* machine) override;
    bool ParameterBind() override;
};

/// A machine whose protected operations and fields can be reached.
class HostMachine : public HSM
{
public:
    explicit HostMachine(const char* document);
    ~HostMachine() override;

    using HSM::ActivateState;
    using HSM::ActivateTransitions;
    using HSM::ChangeState;
    using HSM::CreateKVTable;
    using HSM::DestroyKVTable;
    using HSM::FindState;
    using HSM::GetCurrentStackTable;
    using HSM::GetHSMType;
    using HSM::GetMemoryRequirements;
    using HSM::ImportLayers;
    using HSM::ImportStates;
    using HSM::InitKVTable_ContextTable;
    using HSM::InitKVTable_NodeDefTable;
    using HSM::InitKVTable_ParameterTable;
    using HSM::InitKVTable_Self;
    using HSM::InitNodeDefTable;
    using HSM::InitParameterTable;
    using HSM::RegisterState;
    using HSM::SetContextInfo_StackBlip;
    using HSM::SetContextInfo_StackStates;
    using HSM::SetContextInfo_StateSwitching;
    using HSM::StartState;
    using HSM::UninitNodeDefTable;
    using HSM::UninitParameterTable;
    using HSM::UnRegisterBuilders;
    using HSM::UpdateKVTable_OnPopState;
    using HSM::UpdateKVTable_OnPushState;
    using HSM::UpdateState;
    using HSM::UpdateStateStack;

    using HSM::alloc;
    using HSM::applyingContext;
    using HSM::blipActive;
    using HSM::blipPriority;
    using HSM::blipStack;
    using HSM::currentStack;
    using HSM::document;
    using HSM::globalState;
    using HSM::previousState;
    using HSM::states;
    using HSM::stateStack;

    void RegisterBuilders() override;
};

/// Everything of one scene that is not the machine's.
struct Cast
{
    Cast();
    ~Cast();
    Cast(const Cast&) = delete;
    Cast& operator=(const Cast&) = delete;

    /// Uninitialises the host's own definitions, on which an operation may have put actions, and
    /// attributes in the machine's arena. To be called before that goes.
    void UninitOwn();

    HostMachine* machine = nullptr; ///< null before it is built and after it is deleted
    HostListener listener;
    HostListener second;
    HostParameter parameter;
    HostCondition condition;
    Action registered;
    Action further;
};

/// Gives the cast that lives, or null.
Cast* CurrentCast();

// Callbacks without an object.
bool StateTrigger(IHSM* machine, SMState* state);
bool GlobalTrigger(IHSM* machine, SMState* state);
void HearSwitch(HSM* machine, SMState* previous, SMState* next, float argument);
Action* MakeDefaultAction(const char* scriptName);
void HearLog(int level, const char* text);

/// A listener's record for `key` of `table`, or for all of its keys when `key` is null, which tells
/// the watcher `callback`. The parameter is the one whose table it is, or null.
void ListenToTable(Tessel::KVTable table, const char* key, const char* callback,
                   ParameterDef* parameter = nullptr);

} // namespace vell::callbacks
