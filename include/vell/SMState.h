// VELL: data-driven hierarchical state machines.
// include/vell/SMState.h: the run-time object of a node.
#pragma once

#include <tessel/Tessel.h>
#include <vell/ArenaLink.h>
#include <vell/Export.h>
#include <vell/NotCopied.h>
#include <vell/Types.h>

#include <vector>

namespace vell
{

class Action;
class AttribBase;
class BaseDef;
class HSM;
class HSMAlloc;
class SubstateState;
class TransitionDef;
struct Revision;
struct UpdateResult;

/// A state: performs its definition's actions and tests its transitions in every tick while it is
/// on a stack. It is created when its node is first activated and lives as long as the machine. A
/// host that adds a kind of state derives from it, writes a factory that places the object with
/// HSMAlloc::New, and registers it from a subclass of HSM (HSM::RegisterState).
class VELL_API SMState
{
public:
    struct VELL_LOCAL Internals; ///< the library's own

    SMState();
    SMState(const SMState& other);
    SMState& operator=(const SMState& other);

    /// The factory of a plain state. Null with a log line when `alloc` is null or full.
    static SMState* Create(unsigned int id, HSMAlloc* alloc);

    // The order of these is part of the interface.

    virtual ~SMState();
    /// Takes the definition. Returns 1, or 0 with a log line for null.
    virtual int Init(BaseDef* newDef);
    /// Returns 1.
    virtual int Uninit();
    /// Tests that the exit connector is an existing definition. Returns 1, or 0 with a log line.
    /// The library does not call it.
    virtual int HandleInput(HSM* machine);
    /// One tick of the state, `dt` in the host's unit of time. Returns 1, or 0 when `Execute`
    /// failed; it then ran twice.
    virtual int Update(HSM* machine, float dt);
    /// Performs the enter actions, tells the parent, logs, and sends the event of a clip. Returns
    /// 1, or 0 with a log line when there is no definition.
    virtual int Enter();
    /// Performs the execute actions. Returns 1, or 0 with a log line when there is no definition.
    virtual int Execute(double dt);
    /// Logs and performs the exit actions. Returns 1, or 0 with a log line when there is no
    /// definition.
    virtual int Exit();
    /// Returns the state itself.
    virtual SMState* GetStates();
    /// Finds the first transition, in ascending priority, that holds, and fills `result`. Returns
    /// its target's id, or 0.
    virtual unsigned int ProcessTransitions(HSM* machine, UpdateResult* result);

    BaseDef* GetDef() const;
    void SetDef(BaseDef* newDef);
    /// Gives the substate around this state, or null.
    SubstateState* GetParent() const;
    void SetParent(SubstateState* newParent);
    HSM* GetHSM() const;
    void SetHSM(HSM* machine);
    /// Null: only the actions of the definition are performed.
    Action* GetEntryAction() const;
    Action* GetExitAction() const;
    /// Gives the definition's id, or 0 with a log line when there is no definition.
    unsigned int GetID() const;
    /// Gives the definition's parent id, or 0 with a log line when there is no definition.
    unsigned int GetParentID() const;
    /// Gives the definition's exit connector, or 0.
    unsigned int GetExitConnector() const;

    /// Appends `transition`. It may be null and is then skipped.
    void PushTransition(TransitionDef* transition);
    /// Sorts by priority, smallest first. Equal ones keep their order.
    void SortTransitions();
    int GetNumTransitions() const;
    /// Gives the transition, or null with a log line when `index` is at or past the count.
    TransitionDef* GetTransitionAt(int index) const;

    /// Gives the attribute of the definition, or null.
    AttribBase* GetAttribBase(const char* name) const;
    /// Sets the attribute and returns 1, even if it is of another type and does not change; 0 when
    /// there is no such attribute.
    int SetAttrib(const char* name, const char* value);
    int SetAttrib(const char* name, int value);
    int SetAttrib(const char* name, float value);
    int SetAttrib(const char* name, bool value);
    int SetAttrib(const char* name, const Tessel::Float4& value);
    int SetAttrib(const char* name, const Tessel::Float3& value);
    int SetAttrib(const char* name, const Tessel::Float2& value);
    /// Sets nothing: logs the attribute's type and returns 0.
    int SetAttrib(const char* name, void* value);
    /// Gives the text of a text attribute, valid until IHSM::Uninit and showing later changes, and
    /// returns 1; otherwise 0.
    int GetAttrib(const char* name, const char** out) const;
    /// Writes the value of a bool (1 byte), integer or float attribute (4 bytes) to `out`. Returns
    /// 1, even when there is no such attribute or it is a text, and nothing is written; 0 for the
    /// vector types.
    int GetAttrib(const char* name, void* out) const;

    friend Tessel::KVTable ReleaseStorage(SMState& state, ArenaLink::AtEnd)
    {
        std::vector<TransitionDef*>().swap(state.transitions);
        return Tessel::KVTable();
    }
    friend ArenaLink& GetArenaLink(SMState& object)
    {
        return object.arenaLink;
    }

protected:
    /// Performs the list from `first` and returns 1.
    int PerformActions(__ActType__ type, float dt, Action* first);

    BaseDef* def = nullptr; ///< not owned
    unsigned int id = 0;    ///< as given to the factory; never read
    /// In the order of evaluation; not owned. Change it only by PushTransition and SortTransitions.
    std::vector<TransitionDef*> transitions;
    Action* entryAction = nullptr;   ///< never set
    Action* exitAction = nullptr;    ///< never set
    SubstateState* parent = nullptr; ///< set on activation
    HSM* hsm = nullptr;              ///< set on activation

private:
    friend class EnterState;
    friend class ExitState;
    friend class GlobalState;
    friend class SubstateState;

    VELL_LOCAL void TellParent();
    VELL_LOCAL void RequestAnimation(BaseDef* entered);

    ArenaLink arenaLink;          ///< the library's
    NotCopied<Revision> revision; ///< the library's; null until a machine activates the state
};

} // namespace vell
