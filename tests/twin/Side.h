// VELL: data-driven hierarchical state machines.
// tests/twin/Side.h: one of the two machines, with the host around it.
#pragma once

#include "tests/twin/TwinCase.h"
#include "tests/twin/TwinMachine.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace twin
{

using Lines = std::vector<std::string>;

class Side;

/// Adds a line to those of the machine that is at work.
void Say(const std::string& line);

/// An action that says that it performs, and may do an operation.
class TwinAction : public vell::Action
{
public:
    TwinAction(Side& actionSide, unsigned int actionNumber, const std::vector<Operation>& doing);
    ~TwinAction() override;
    int Perform(vell::__ActType__ type, float timeStep) override;

    const unsigned int number;
    bool isOnList = false; ///< of a definition, which owns it then

private:
    Side& side;
    std::vector<Operation> inner;
    int left = 3; ///< how often it still does its operation
};

/// Says what it hears.
class TwinListener : public vell::IBroadcastListener
{
public:
    int OnBroadcastEvent(int event, const void* record) override;

    unsigned int number = 0;
};

/// Who calls the host, and so may do an operation that waits for it.
enum class Caller
{
    Trigger,
    Switch,
    Listener,
    Tree,
    Log
};

constexpr unsigned int kCallers = 5;
constexpr unsigned int kTriggers = 4;
constexpr unsigned int kListeners = 3;

/// A machine under a case. Both sides of a case get the same operations, one after the other. What
/// the host makes gets numbers in the order of making, which are the same on both sides.
class Side
{
public:
    Side(const model::Document& modelDocument, bool hasShortcut);
    ~Side();
    Side(const Side&) = delete;
    Side& operator=(const Side&) = delete;

    /// Initialises the machine. Both machines have to be created by then.
    bool Load();
    /// Does `operation` and gives the lines that it led to.
    Lines Apply(const Operation& operation);
    /// Ends the machine and gives the lines of that.
    Lines End();
    /// All that can be seen of the machine but for its tree, as numbers.
    std::vector<long long> Numbers();
    /// The same for a person.
    Lines Show();
    /// The tree, as one number.
    unsigned long long TreeHash() const;
    Lines TreeLines() const;

    /// Does `operation` inside another or from a callback.
    void Do(const Operation& operation);
    /// Does what waits for `caller`.
    void Called(Caller caller);

    vell::BaseDef* PickDef(unsigned int pick) const;
    /// Gives the definition of a node that may run as a state.
    vell::BaseDef* PickStateDef(unsigned int pick) const;
    vell::TransitionDef* PickTransition(unsigned int pick) const;
    vell::ConditionDef* PickCondition(unsigned int pick) const;
    vell::ParameterDef* PickParameter(unsigned int pick) const;
    /// Gives an activated state or one of the host's, or null.
    vell::SMState* PickState(unsigned int pick);
    vell::SubstateState* PickSubstate(unsigned int pick);
    unsigned int PickStateId(unsigned int pick) const;
    std::string PickParameterName(unsigned int pick) const;
    std::vector<vell::SMState*> States();

    std::string Name(const vell::BaseDef* def) const;
    std::string Name(const vell::SMState* state);
    long long NumberOf(const vell::SMState* state);
    long long NumberOf(const vell::BaseDef* def) const;

    TwinAction* MakeAction(const std::vector<Operation>& inner);
    const vell::GenericValue& Parse(const std::string& text);
    void AddCondition(vell::ConditionDef* condition);
    void AddParameter(vell::ParameterDef* parameter);

    model::Document document;
    TwinMachine machine;
    Lines lines;
    std::vector<TwinAction*> actions; ///< null where one was deleted
    std::array<TwinListener, kListeners> listeners;
    std::array<unsigned int, kTriggers> triggerCalls = {};
    std::vector<std::pair<Caller, Operation>> waiting;
    std::vector<std::unique_ptr<vell::SMState>> hostStates;
    std::vector<std::unique_ptr<vell::BaseDef>> hostDefs;
    std::vector<vell::ParameterDef*> parameters;
    vell::ParameterTable* ownParameterTable = nullptr;
    unsigned int arenaCapacity = 0;

private:
    void Collect();
    void Listen(Tessel::KVTable table);

    std::vector<vell::BaseDef*> defs;
    std::vector<vell::BaseDef*> stateDefs;
    std::vector<vell::TransitionDef*> transitions;
    std::vector<vell::ConditionDef*> conditions;
    std::map<const vell::SMState*, long long> stateNumbers;
    std::map<const vell::BaseDef*, long long> defNumbers;
    std::deque<vell::GenericDocument> texts;
    bool isLoaded = false;
};

/// The side at work, or null.
Side* CurrentSide();

/// Hears the log for the side at work, for as long as it lives.
class SideLog
{
public:
    SideLog();
    ~SideLog();
    SideLog(const SideLog&) = delete;
    SideLog& operator=(const SideLog&) = delete;
};

vell::Trigger TriggerAt(unsigned int pick);
void OnSwitch(vell::HSM* machine, vell::SMState* previous, vell::SMState* next, float argument);

} // namespace twin
