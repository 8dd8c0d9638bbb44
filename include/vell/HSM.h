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

/// The machine that the factories make. A host that adds kinds of states derives from it: such a
/// class is built on the constructor without arguments, sets `filePath` or `jsonText`, and calls
/// `Create`, which then reaches its own `RegisterBuilders`.
class VELL_API HSM : public IHSM
{
public:
    struct VELL_LOCAL Internals; ///< the library's own

    /// Makes a machine without a document; `Create` is not called.
    HSM();
    /// Makes a machine from the document in a file. `filePath` is not copied and has to live until
    /// `Create` has run, which is inside this constructor; `auxiliaryName` is never read.
    HSM(const char* filePath, const char* auxiliaryName);
    /// Makes a machine from the text of a document, which is read inside this constructor.
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
    /// Puts one execute action made by `factory` on every definition of the state class. Returns
    /// how many.
    virtual int AssignDefaultAction(ActionFactory factory);

protected:
    /// Leaves the top state and enters `id` in its place, leaving and entering twice. Returns null.
    virtual Action* ChangeState(unsigned int id);
    /// Registers the standard six state factories. A subclass adds its own after calling this one.
    virtual void RegisterBuilders();
    /// Empties the state-builder registry of the process.
    virtual void UnRegisterBuilders();

public:
    // What a host may call besides the interface.

    /// Enters `state` and puts it on top. Returns it, or null with log lines when it would not be
    /// entered; it was then asked twice.
    SMState* PushState(SMState* state);
    /// Activates, enters and pushes the state of node `id`. Returns it, or null with log lines.
    SMState* PushState(unsigned int id);
    /// Leaves the top state and takes it off. Returns it, or null.
    SMState* PopState();
    /// Ends a blip, or pops the top state when none runs. Returns 1, or 0 with a log line.
    int RevertToPreviousState();
    /// Ends a blip and empties the main stack too. Returns 1, or 0 when no blip runs.
    int RevertToStartState();
    /// Tells whether a blip runs.
    bool IsBlipState();
    /// Sends `event` to the event listeners. Returns how many were called.
    int FireEvent(__HSMEventType__ type, const __PlayAnimEvent__* event);
    /// Binds the conditions of all transitions to their parameters. `Init` calls it; a host calls
    /// it again after making parameters that conditions name.
    void BindParamCond();
    /// Fires a message: the text parameter `name` takes its default. Does nothing for another name.
    void BroadcastMessage(const char* name);
    /// Gives the current text of a text parameter, valid until the parameter changes, and returns
    /// 1; otherwise 0.
    int GetParameterMessage(unsigned int id, const char** out);
    /// Sets the current text of a text parameter and returns 1; otherwise 0. Null is an empty text.
    int SetParameterMessage(unsigned int id, const char* text);
    /// Gives the text of a text attribute of the current state, valid until `Uninit` and showing
    /// later changes, and returns 1; otherwise 0.
    int GetAttributeValue(const char* name, const char** out);
    /// Sets the text of an attribute of the current state and returns 1, also where its type is
    /// another and nothing changes; 0 when there is no such attribute.
    int SetAttribValue(const char* name, const char* text);
    /// Sets nothing: logs the attribute's type and returns 0.
    int SetAttribValue(const char* name, void* value);
    /// Tests `table` for null. Returns 1, or 0 with a log line.
    int InitCond(NodeDefTable* table);

protected:
    // Loading. `Create` and `Init` call these; a subclass may call them again.

    /// Reads the memory figure of the head, 0x100000 when there is none. The arena has a hundred
    /// times as many bytes. Returns 0 with a log line when `head` is not an object.
    int GetMemoryRequirements(const GenericValue& head);
    /// Gives the machine type's name in the head, or null; null with a log line when `head` is not
    /// an object. The text belongs to the document.
    const char* GetHSMType(const GenericValue& head);
    /// Builds the parameters of the member of `root`. Returns 1, also when there is no such member
    /// and no table is made, or 0 with log lines.
    int InitParameterTable(const GenericValue& root, HSMAlloc* arena);
    /// Builds the definitions of an array of nodes. Returns 1, or 0 with log lines and no node
    /// left.
    int InitNodeDefTable(const GenericValue& nodes, HSMAlloc* arena);
    /// Uninitialises the parameters, or the definitions. Returns 1. The library does not call these
    /// but after a failed load.
    int UninitParameterTable(HSMAlloc* arena);
    int UninitNodeDefTable(HSMAlloc* arena);
    /// Builds the nodes of all layers of the machine's own document; `root` tells only which
    /// members there are. Returns 1, or 0 with log lines.
    int ImportLayers(const GenericValue& root, HSMAlloc* arena);
    /// Builds the nodes of one layer. Returns 1, or 0 with log lines.
    int ImportStates(const GenericValue& layer, HSMAlloc* arena);

    // The tick.

    /// Tests the transitions of `state`, which it does not update. When one holds, `result` says
    /// which and what to pop. Returns 3 when one did, 2 when none did, and 0 with a log line for a
    /// null argument.
    int UpdateState(SMState* state, UpdateResult* result, float timeStep);
    /// Pops the current stack down to `result->popLevel`, then activates and pushes the target and
    /// tells the listeners. A target of 0 pops only. Returns 1, or 0 with a log line when the
    /// record is null or the target cannot be activated; what was popped stays popped.
    int UpdateStateStack(UpdateResult* result);
    /// Activates `id` and, as long as it is a level, appends its id to `ids` and goes on with its
    /// parent. Nothing is entered or pushed. The library does not call it.
    void StartState(unsigned int id, std::vector<unsigned int>& ids);

    // Activation.

    /// Gives the state of node `id`, which is made at the first call, and calls the state-switch
    /// callback with `switchArgument`. Null with log lines.
    SMState* ActivateState(unsigned int id, float switchArgument);
    /// Gives `state` the transitions that its definition lists, sorted. Returns 1.
    int ActivateTransitions(SMState* state);
    /// Gives the state of node `id` if it was activated before, else null.
    SMState* FindState(unsigned int id);

    // The tree. Each returns 1, or 0 where it is said.

    /// Creates the whole tree, once. 0 with a log line when there is one or a step fails.
    int CreateKVTable();
    /// Closes the root table, if there is one.
    int DestroyKVTable();
    /// The steps of `CreateKVTable`: the file name, "contextInfo", and the attaching of the two
    /// tables. All but the second return 0 without a root table.
    int InitKVTable_Self();
    int InitKVTable_ContextTable();
    int InitKVTable_ParameterTable();
    int InitKVTable_NodeDefTable();
    /// Gives the array that mirrors the current stack, or a null handle; 0, and `out` as it was,
    /// when the current stack is neither of the two.
    int GetCurrentStackTable(Tessel::KVTable* out);
    /// Appends the id of `state` to that array. 0 when there is none.
    int UpdateKVTable_OnPushState(SMState* state);
    /// Removes the last id from that array. 0 when there is none.
    int UpdateKVTable_OnPopState();
    /// The steps of `SetContextInfo`: each stack, then the last change of states, which the
    /// listeners hear of. An unknown id ends a stack with a log line, and 1 is returned all the
    /// same.
    int SetContextInfo_StackStates(const Tessel::KVTable& table);
    int SetContextInfo_StackBlip(const Tessel::KVTable& table);
    int SetContextInfo_StateSwitching(const Tessel::KVTable& context);

    using ListenerList = std::vector<IBroadcastListener*>;

    // What a tick reads comes first, in as few cache lines as possible.
    bool applyingContext = false;                  ///< Update does nothing while it is true
    SMState* globalState = nullptr;                ///< made by the first Start
    std::vector<SMState*>* currentStack = nullptr; ///< one of the two; null until Start
    std::vector<SMState*> stateStack;              ///< the main stack, bottom first
    ParameterTable* parameterTable = nullptr;      ///< in the arena; null without JSON_Parameters

    std::vector<SMState*> blipStack;          ///< the stack of a blip, bottom first
    Tessel::KVTable kvTable;                  ///< root of the tree; null until Init
    NodeDefTable* nodeDefTable = nullptr;     ///< in the arena; null when Create failed
    GenericDocument document;                 ///< definitions point into its texts
    const char* filePath = nullptr;           ///< the host's
    const char* auxiliaryName = nullptr;      ///< the host's; never read
    const char* jsonText = nullptr;           ///< the host's
    unsigned int startStateID = 0;            ///< node that Start pushes
    __STATE_MACHINE_TYPES__ machineType = {}; ///< from the head
    SMState* previousState = nullptr;         ///< state last left by a transition
    std::map<unsigned int, Action*> actions;  ///< not owned
    std::map<unsigned int, SMState*> states;  ///< every state ever activated; in the arena
    HSMAlloc alloc;                           ///< the arena
    ListenerList stateChangeListeners;        ///< not owned
    ListenerList transitionChangeListeners;   ///< not owned; nobody calls them
    ListenerList eventListeners;              ///< not owned
    bool blipActive = false;                  ///< a blip runs
    int blipStackLevel = 0;                   ///< top index at the last blip; never read
    int blipPriority = 1;                     ///< lowest priority that starts a blip
    StateSwitchCallback stateSwitchCallback = nullptr;

private:
    VELL_LOCAL int Subscribe(ListenerList& list, IBroadcastListener* listener);
    VELL_LOCAL int Unsubscribe(ListenerList& list, IBroadcastListener* listener);
    VELL_LOCAL int Notify();
    VELL_LOCAL unsigned int ParseDocument();
    VELL_LOCAL void ForgetArena();
    VELL_LOCAL void TestGlobalState(UpdateResult* result, float timeStep);
    VELL_LOCAL void StartBlip(UpdateResult* result);
    VELL_LOCAL void ReportStateChange(SMState* previous, unsigned int nextId);
    VELL_LOCAL Tessel::KVTable GetStackTable(const std::vector<SMState*>* stack) const;

    std::unique_ptr<Internals> internals; ///< the library's own
};

} // namespace vell
