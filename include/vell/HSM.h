// VELL: data-driven hierarchical state machines.
// include/vell/HSM.h: the machine.
#pragma once

#include <vell/Events.h>
#include <vell/HSMAlloc.h>
#include <vell/IHSM.h>

#include <rapidjson/document.h>

#include <map>
#include <memory>
#include <vector>

namespace vell
{

class NodeDefTable;
class ParameterTable;
struct UpdateResult;

/// The machine that the factories create. A host that adds kinds of states derives from it: such a
/// class uses the constructor without arguments, sets `filePath` or `jsonText`, and calls `Create`,
/// which then calls its own `RegisterBuilders`.
class VELL_API HSM : public IHSM
{
public:
    struct VELL_LOCAL Internals; ///< the library's own

    /// Creates a machine without a document; `Create` is not called.
    HSM();
    /// Creates a machine from the document in a file. `filePath` is not copied. `Create` reads it
    /// inside this constructor; it must stay valid if the host calls `Create` again.
    /// `auxiliaryName` is never read.
    HSM(const char* filePath, const char* auxiliaryName);
    /// Creates a machine from a document in a string, which is read inside this constructor.
    explicit HSM(const char* jsonText);
    HSM(const HSM&) = delete;
    HSM& operator=(const HSM&) = delete;

    // The order of these is part of the interface.

    ~HSM() override;
    int Init() override;
    int Uninit() override;
    int SetContextInfo(const Tessel::KVTable& context) override;
    int Create() override;
    int Destroy() override;
    void Update(float timeStep) override;
    void Start() override;
    IParameterTable* GetParameterTable() override;
    unsigned int FindParameterByName(const char* name) override;
    Tessel::KVTable GetKVTable() const override;
    SMState* GetCurrentState() override;
    const char* GetMDLAsset() override;
    const char* GetSkelAsset() override;
    const char* GetGUID() override;
    __STATE_MACHINE_TYPES__ GetHSMType() const override;
    IBaseDef* BeginDef(unsigned int mask) override;
    IBaseDef* NextDef(unsigned int mask) override;
    IBaseDef* FindDef(const char* name) override;
    IBaseDef* FindDef(unsigned int id) override;
    int SubscribeTransitionChange(IBroadcastListener* listener) override;
    int UnsubscribeTransitionChange(IBroadcastListener* listener) override;
    int SubscribeStateChange(IBroadcastListener* listener) override;
    int UnsubscribeStateChange(IBroadcastListener* listener) override;
    int SubscribeEvents(IBroadcastListener* listener) override;
    int UnsubscribeEvents(IBroadcastListener* listener) override;
    int RegisterAction(Action* action) override;
    Action* FindAction(unsigned int id) override;
    int RegisterNodeDef(__DURM_BUILDERS__ builder, NodeDefFactory factory) override;

protected:
    int RegisterState(__DURM_BUILDERS__ builder, StateFactory factory) override;

public:
    void SetStateSwitchCallback(StateSwitchCallback callback) override;
    /// Adds `trigger` to the transition named `name`. Returns 1, or 0 with a log line.
    virtual int AssignTrigger(const char* name, Trigger trigger);
    /// Registers one execute action, created by `factory`, on every definition of the state class.
    /// Returns how many.
    virtual int AssignDefaultAction(ActionFactory factory);

protected:
    /// Leaves the top state and enters `id` instead; both happen twice. Returns null.
    virtual Action* ChangeState(unsigned int id);
    /// Registers the standard six state factories. A subclass adds its own after calling this one.
    virtual void RegisterBuilders();
    /// Empties the state-builder registry of the process.
    virtual void UnRegisterBuilders();

public:
    // What a host may call in addition to the interface.

    /// Enters `state` and pushes it. Returns it, or null with log lines when it refused to be
    /// entered; `Enter` was then called twice.
    SMState* PushState(SMState* state);
    /// Activates, enters and pushes the state of node `id`. Returns it, or null with log lines.
    SMState* PushState(unsigned int id);
    /// Leaves the top state and pops it. Returns it, or null.
    SMState* PopState();
    /// Ends the blip, or pops the top state when none is running. Returns 1, or 0 with a log line.
    int RevertToPreviousState();
    /// Ends the blip and empties the main stack too. Returns 1, or 0 when no blip is running.
    int RevertToStartState();
    /// Tells whether a blip is running.
    bool IsBlipState();
    /// Sends `event` to the event listeners. Returns how many were called.
    int FireEvent(__HSMEventType__ type, const __PlayAnimEvent__* event);
    /// Binds the conditions of all transitions to their parameters. `Init` calls it. A host calls
    /// it again after creating parameters that conditions refer to.
    void BindParamCond();
    /// Fires a message: sets the text parameter `name` to its default. Does nothing for any other
    /// name.
    void BroadcastMessage(const char* name);
    /// Gives the current text of a text parameter, valid until the parameter changes, and returns
    /// 1; otherwise 0.
    int GetParameterMessage(unsigned int id, const char** out);
    /// Sets the current text of a text parameter and returns 1; otherwise 0. Null is an empty text.
    int SetParameterMessage(unsigned int id, const char* text);
    /// Gives the text of a text attribute of the current state, valid until `Uninit` and showing
    /// later changes, and returns 1; otherwise 0.
    int GetAttributeValue(const char* name, const char** out);
    /// Sets the text of an attribute of the current state and returns 1, even if the attribute is
    /// of another type and does not change; 0 when there is no such attribute.
    int SetAttribValue(const char* name, const char* text);
    /// Sets nothing: logs the attribute's type and returns 0.
    int SetAttribValue(const char* name, void* value);
    /// Tests `table` for null. Returns 1, or 0 with a log line.
    int InitCond(NodeDefTable* table);

protected:
    // Loading. `Create` and `Init` call these; a subclass may call them again.

    /// Reads the `memory` value of the head, 0x100000 when there is none. The arena has a hundred
    /// times as many bytes. Returns 0 with a log line when `head` is not an object.
    int GetMemoryRequirements(const GenericValue& head);
    /// Gives the machine type's name in the head, or null; null with a log line when `head` is not
    /// an object. The text belongs to the document.
    const char* GetHSMType(const GenericValue& head);
    /// Creates the parameters that `root` lists. Returns 1, even when it has no such member and no
    /// table is created, or 0 with log lines.
    int InitParameterTable(const GenericValue& root, HSMAlloc* arena);
    /// Creates the definitions of an array of nodes. Returns 1, or 0 with log lines; then all nodes
    /// are dropped.
    int InitNodeDefTable(const GenericValue& nodes, HSMAlloc* arena);
    /// Uninitialises the parameters, or the definitions. Returns 1. The library calls these only
    /// after a failed load.
    int UninitParameterTable(HSMAlloc* arena);
    int UninitNodeDefTable(HSMAlloc* arena);
    /// Creates the nodes of all layers of the machine's own document; `root` is only asked which
    /// members exist. Returns 1, or 0 with log lines.
    int ImportLayers(const GenericValue& root, HSMAlloc* arena);
    /// Creates the nodes of one layer. Returns 1, or 0 with log lines.
    int ImportStates(const GenericValue& layer, HSMAlloc* arena);

    // The tick.

    /// Tests the transitions of `state`; it does not update the state. When one fires, `result`
    /// says which one and what to pop. Returns 3 when one fires, 2 when none does, and 0 with a log
    /// line for a null argument.
    int UpdateState(SMState* state, UpdateResult* result, float timeStep);
    /// Pops the current stack down to and including the index `result->popLevel`, then activates
    /// and pushes the target and tells the listeners. With a target of 0 it only pops. Returns 1,
    /// or 0 with a log line when the record is null or the target cannot be activated; the popped
    /// states stay popped.
    int UpdateStateStack(UpdateResult* result);
    /// Activates `id` and, as long as it is a substate, appends its id to `ids` and continues with
    /// its parent. Nothing is entered or pushed. The library does not call it.
    void StartState(unsigned int id, std::vector<unsigned int>& ids);

    // Activation.

    /// Gives the state of node `id`, which the first call creates, and calls the state-switch
    /// callback with `switchArgument`. Returns null with log lines on failure.
    SMState* ActivateState(unsigned int id, float switchArgument);
    /// Gives `state` the transitions that its definition lists, sorted. Returns 1.
    int ActivateTransitions(SMState* state);
    /// Gives the state of node `id` if it was activated before, else null.
    SMState* FindState(unsigned int id);

    // The tree. Each function returns 1, or 0 where its comment says so.

    /// Creates the whole tree, once. Returns 0 with a log line when the tree exists or a step
    /// fails.
    int CreateKVTable();
    /// Closes the root table, if there is one.
    int DestroyKVTable();
    /// The steps of `CreateKVTable`: the file name, "contextInfo", and attaching the two tables.
    /// All but the second return 0 without a root table.
    int InitKVTable_Self();
    int InitKVTable_ContextTable();
    int InitKVTable_ParameterTable();
    int InitKVTable_NodeDefTable();
    /// Gives the array that mirrors the current stack, or a null handle. Returns 0 and leaves `out`
    /// unchanged when the current stack is neither of the two.
    int GetCurrentStackTable(Tessel::KVTable* out);
    /// Appends the id of `state` to that array. Returns 0 when there is none.
    int UpdateKVTable_OnPushState(SMState* state);
    /// Removes the last id from that array. Returns 0 when there is none.
    int UpdateKVTable_OnPopState();
    /// The steps of `SetContextInfo`: each stack, then the last state change, which listeners are
    /// told of. An unknown id ends a stack with a log line, but 1 is returned.
    int SetContextInfo_StackStates(const Tessel::KVTable& table);
    int SetContextInfo_StackBlip(const Tessel::KVTable& table);
    int SetContextInfo_StateSwitching(const Tessel::KVTable& context);

    using ListenerList = std::vector<IBroadcastListener*>;

    // What a tick reads comes first, in as few cache lines as possible.
private:
    std::unique_ptr<Internals> internals; ///< the library's own

protected:
    bool applyingContext = false;                  ///< Update does nothing while it is true
    SMState* globalState = nullptr;                ///< created by the first Start
    std::vector<SMState*>* currentStack = nullptr; ///< one of the two; null until Start
    ParameterTable* parameterTable = nullptr;      ///< in the arena; null without JSON_Parameters
    std::vector<SMState*> stateStack;              ///< the main stack, bottom first

    std::vector<SMState*> blipStack;          ///< the stack of a blip, bottom first
    Tessel::KVTable kvTable;                  ///< root of the tree; null until Init
    NodeDefTable* nodeDefTable = nullptr;     ///< in the arena; null when Create failed
    GenericDocument document;                 ///< definitions point into its strings
    const char* filePath = nullptr;           ///< the host's
    const char* auxiliaryName = nullptr;      ///< the host's; never read
    const char* jsonText = nullptr;           ///< the host's
    unsigned int startStateID = 0;            ///< the node that Start pushes
    __STATE_MACHINE_TYPES__ machineType = {}; ///< from the head
    SMState* previousState = nullptr;         ///< state last left by a transition
    std::map<unsigned int, Action*> actions;  ///< not owned
    std::map<unsigned int, SMState*> states;  ///< every state ever activated; in the arena
    HSMAlloc alloc;                           ///< the arena
    ListenerList stateChangeListeners;        ///< not owned
    ListenerList transitionChangeListeners;   ///< not owned; never called
    ListenerList eventListeners;              ///< not owned
    bool blipActive = false;                  ///< a blip runs
    int blipStackLevel = 0;                   ///< top index at the last blip; never read
    int blipPriority = 1;                     ///< lowest priority that starts a blip
    StateSwitchCallback stateSwitchCallback = nullptr;

private:
    VELL_LOCAL HSM(std::unique_ptr<Internals> newInternals, const char* filePath,
                   const char* auxiliaryName, const char* jsonText, __STATE_MACHINE_TYPES__ type);

    VELL_LOCAL int Subscribe(ListenerList& list, IBroadcastListener* listener);
    VELL_LOCAL int Unsubscribe(ListenerList& list, IBroadcastListener* listener);
    VELL_LOCAL int Notify(StateChangeEvent change);
    VELL_LOCAL unsigned int ParseDocument();
    VELL_LOCAL void ForgetArena();
    VELL_LOCAL void TestGlobalState(UpdateResult* result, float timeStep);
    VELL_LOCAL void StartBlip(UpdateResult* result);
    VELL_LOCAL StateChangeEvent ReportStateChange(SMState* previous, unsigned int nextId);
};

} // namespace vell
