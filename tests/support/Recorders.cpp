// VELL: data-driven hierarchical state machines.
// tests/support/Recorders.cpp: noting of what a machine tells.
#include "tests/support/Recorders.h"

#include <vell/BaseDef.h>
#include <vell/IBaseDef.h>
#include <vell/SMState.h>

#include <sstream>
#include <utility>

namespace vell::test
{
namespace
{

constexpr unsigned int kEveryClass = 0xffffffffu;

template <class... Parts>
void Note(const Parts&... parts)
{
    std::ostringstream line;
    (line << ... << parts);
    LogRecorder::Note(line.str());
}

const char* NameOf(SMState* state)
{
    return state == nullptr || state->GetDef() == nullptr ? "-" : state->GetDef()->GetName();
}

bool CanRun(IBaseDef& def)
{
    switch (def.GetType())
    {
    case DefTypeBase:
    case DefTypeEnter:
    case DefTypeExit:
    case DefTypeGlobal:
    case DefTypeAnimClip:
    case DefTypeGeneric:
    case DefTypeSubstate:
        return true;
    default:
        return false;
    }
}

int NoteWrite(void*, Tessel::opResult, Tessel::KVTable table, const char* key)
{
    Note("tree ", key, " = ", table->GetUInt(key));
    return 1;
}

} // namespace

void RecordSwitch(HSM*, SMState* previous, SMState* next, float argument)
{
    Note("switch ", NameOf(previous), " -> ", NameOf(next), " ", argument);
}

void RecordActions(HSM& machine)
{
    for (IBaseDef* def = machine.BeginDef(kEveryClass); def != nullptr;
         def = machine.NextDef(kEveryClass))
    {
        if (CanRun(*def))
        {
            def->RegisterEnter(new TestAction(def->GetName()));
            def->RegisterExecute(new TestAction(def->GetName()));
            def->RegisterExit(new TestAction(def->GetName()));
        }
    }
}

void RecordTree(HSM& machine)
{
    Tessel::KVTable context = machine.GetKVTable()->GetTable("contextInfo");
    Tessel::KVListener* listener = context->GetTableListener();
    listener->object = nullptr;
    listener->function = NoteWrite;
}

MachineRecorder::MachineRecorder(HSM& recorded)
    : machine(recorded), changes("changes"), events("events"), never("never")
{
    RecordActions(machine);
    RecordTree(machine);
    machine.SetStateSwitchCallback(RecordSwitch);
    machine.SubscribeStateChange(&changes);
    machine.SubscribeEvents(&events);
    machine.SubscribeTransitionChange(&never);
}

MachineRecorder::~MachineRecorder()
{
    machine.SetStateSwitchCallback(nullptr);
    machine.UnsubscribeStateChange(&changes);
    machine.UnsubscribeEvents(&events);
    machine.UnsubscribeTransitionChange(&never);
}

Lines Fired(const std::string& state, unsigned int transition)
{
    return {"tree transitionTriggered = " + std::to_string(transition),
            "6 Transition satisfied: " + state};
}

Lines Left(const std::string& state)
{
    return {"6 [Exit] " + state + " - SMState.cpp : #", state + " exit 0"};
}

Lines Activated(const std::string& state, unsigned int id, const std::string& previous,
                const std::string& argument)
{
    return {"6 Activated State: " + state + " (" + std::to_string(id) + ")",
            "switch " + previous + " -> " + state + " " + argument};
}

Lines Entered(const std::string& state)
{
    return {state + " entry 0", "6 [Enter] " + state + " - SMState.cpp : #"};
}

Lines Reported(unsigned int transition, unsigned int previous, unsigned int next)
{
    const std::string from = std::to_string(previous);
    const std::string to = std::to_string(next);
    return {"tree previousState = " + from,
            "tree nextState = " + to,
            "changes: change " + std::to_string(transition) + ": " + from + " -> " + to,
            "tree nextState = 0",
            "tree previousState = 0",
            "tree transitionTriggered = 0"};
}

std::string ExitNodeLine(const std::string& state)
{
    return "6 " + state + "ExitState.cpp : #";
}

std::string NotActivated(unsigned int id)
{
    return "3 Failed to activate state: Unable to find state ID:  (" + std::to_string(id) + ")";
}

Lines operator+(Lines left, const Lines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

} // namespace vell::test
