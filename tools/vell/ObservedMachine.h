// VELL: data-driven hierarchical state machines.
// tools/vell/ObservedMachine.h: a machine that tells what happens inside its ticks.
#pragma once

#include <vell/HSM.h>
#include <vell/SMState.h>

#include <string>
#include <vector>

namespace vell::tool
{

/// Is told what happens, in order. It must not change anything it is told of.
class MachineObserver
{
public:
    virtual ~MachineObserver() = default;

    /// `state` was entered. It is pushed next, unless its node cannot run.
    virtual void OnEntered(const SMState& state) = 0;
    virtual void OnLeft(const SMState& state) = 0;
    /// The transitions of `state` were tested; `fired` is the one that holds, or null. `isRefused`
    /// says that it is a global transition, too weak to start a blip.
    virtual void OnTested(const SMState& state, const TransitionDef* fired, bool isRefused) = 0;
    /// A blip of `priority` starts; `isDisplacing` when it replaces another.
    virtual void OnBlipStarted(int priority, bool isDisplacing) = 0;
    virtual void OnBlipEnded() = 0;
    /// `target` should be entered, but there is no such node or it cannot run.
    virtual void OnTargetMissed(unsigned int target) = 0;
    /// A substate could not push its child.
    virtual void OnUpdateFailed(const SMState& state) = 0;
};

/// A machine whose states report to an observer. The states are of classes that behave like the
/// standard ones and report, so that even a state that is entered and left within one tick is seen.
class ObservedMachine : public HSM
{
public:
    ObservedMachine() = default;
    /// Uninitialises the machine if it was loaded.
    ~ObservedMachine() override;

    /// Loads the document in a file. Returns an empty text, or an error message, with line and
    /// column for invalid JSON. `Complaints` then has the lines of the library's log.
    std::string Load(const std::string& path);
    /// The same, of a document whose text was read.
    /// `isMade` says that the text is not what the file has.
    std::string LoadText(const std::string& newPath, std::string newText, bool isMade = false);
    /// Tells which nodes of the loaded document the machine does not have; empty when it has all.
    std::string Losses() const;
    /// Enters the start state. Returns an empty text, or an error message when that failed. The
    /// machine may have a global state that runs all the same.
    std::string StartRunning();
    /// Says why the machine has no state to start with; empty when it has one. It need not run.
    std::string StartStateFault() const;
    /// Tells whether there is anything to run.
    bool CanRun() const;
    /// Errors and warnings that the library logged while loading and starting.
    const std::vector<std::string>& Complaints() const;

    /// Sets the observer; null for none. Not owned.
    void SetObserver(MachineObserver* newObserver);
    /// One tick. Returns an empty text, or an error message when the tick was aborted.
    std::string Tick(float seconds);

    const std::vector<SMState*>& MainStack() const;
    const std::vector<SMState*>& BlipStack() const;
    /// The stack that the tick works on.
    const std::vector<SMState*>& Stack() const;
    /// Names of the current stack's states, bottom first, with '/' between.
    std::string StackPath() const;
    int BlipPriority() const;
    bool IsGlobalState(const SMState& state) const;
    NodeDefTable* Nodes() const;
    unsigned int StartStateId() const;
    /// Bytes of the arena: those in use, and all.
    unsigned int ArenaUsed() const;
    unsigned int ArenaSize() const;
    /// Says that the arena is nearly full, as the rest of a message; empty when it is not.
    std::string ArenaHint() const;

    // For the states.
    void ReportEntered(const SMState& state);
    void ReportLeft(const SMState& state);
    void ReportTested(const SMState& state, const UpdateResult& result, unsigned int target);
    void ReportUpdated(const SMState& state, int updateResult, bool wasBlip);

protected:
    void RegisterBuilders() override;

private:
    void CheckTarget();
    std::string ParseFault() const;
    std::string StartFault() const;
    std::string HeadFault() const;

    MachineObserver* observer = nullptr;
    std::string path; ///< "-" for standard input
    std::string text; ///< of the document
    std::vector<std::string> complaints;
    unsigned int pendingTarget = 0; ///< what the transition that fired last is to enter
    bool isCreated = false;
};

/// Gives the name of a node, or `#ID` for one without a name.
std::string NameOf(BaseDef& def);
std::string NameOf(const SMState& state);

/// Names of the states, bottom first, with '/' between.
std::string PathOf(const std::vector<SMState*>& stack);

} // namespace vell::tool
