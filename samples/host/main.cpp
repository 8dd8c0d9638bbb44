// VELL: data-driven hierarchical state machines.
// samples/host/main.cpp: a host that plays a character and prints what an animation system would
// do.
#include <vell/vell.h>

#include <cstdio>

namespace
{

/// Prints what the machine tells.
class Stage : public vell::IBroadcastListener
{
public:
    explicit Stage(vell::IHSM& stagedMachine) : machine(stagedMachine)
    {
    }

    int OnBroadcastEvent(int event, const void* record) override
    {
        if (event == vell::HSMEventPlayAnimation)
        {
            const auto* clip = static_cast<const vell::__PlayAnimEvent__*>(record);
            std::printf("  play %s at %.0f frames a second, %s\n", clip->clipName, clip->scalar,
                        clip->flag ? "looping" : "once");
        }
        else if (event == vell::HSMEventStateChange)
        {
            const auto* change = static_cast<const vell::StateChangeEvent*>(record);
            std::printf("  %s -> %s by %s\n", Name(change->previousID), Name(change->nextID),
                        Name(change->transitionID));
        }
        return 1;
    }

private:
    const char* Name(unsigned int id)
    {
        vell::IBaseDef* def = id == 0 ? nullptr : machine.FindDef(id);
        return def == nullptr ? "nothing" : def->GetName();
    }

    vell::IHSM& machine;
};

/// How long a state's footsteps have been heard.
struct Footsteps
{
    float seconds = 0.0f;
};

/// A piece of game behaviour: starts the footsteps, lets them go on, and says how long they were.
/// One action is on one list, so a state that does all three has three of them.
class FootstepAction : public vell::Action
{
public:
    explicit FootstepAction(Footsteps& heardSteps) : steps(heardSteps)
    {
    }

    int Perform(vell::__ActType__ type, float timeStep) override
    {
        if (type == vell::ActTypeEntry)
        {
            steps.seconds = 0.0f;
        }
        else if (type == vell::ActTypeExecution)
        {
            steps.seconds += timeStep;
        }
        else
        {
            std::printf("  footsteps for %.1f s\n", static_cast<double>(steps.seconds));
        }
        return 1;
    }

private:
    Footsteps& steps;
};

/// Puts the behaviour on the three lists of a state. The definition owns the actions.
void GiveFootsteps(vell::IHSM& machine, const char* state, Footsteps& steps)
{
    vell::IBaseDef* def = machine.FindDef(state);
    if (def == nullptr)
    {
        return; // the log has said so
    }
    def->RegisterEnter(new FootstepAction(steps));
    def->RegisterExecute(new FootstepAction(steps));
    def->RegisterExit(new FootstepAction(steps));
}

void OnStateSwitch(vell::HSM*, vell::SMState*, vell::SMState* next, float blendSeconds)
{
    std::printf("  blend to %s in %.2f s\n", next->GetDef()->GetName(),
                static_cast<double>(blendSeconds));
}

template <class Interface, class Value>
void Set(vell::IHSM& machine, const char* name, Value value)
{
    dynamic_cast<Interface*>(machine.GetParameterTable()->FindParameter(name))->SetValue(value);
}

void Tick(vell::IHSM& machine, const char* what, int ticks = 1)
{
    std::printf("%s\n", what);
    for (int i = 0; i < ticks; ++i)
    {
        machine.Update(0.1f);
    }
}

void Play(vell::IHSM& machine)
{
    Tick(machine, "standing");
    Set<vell::IParameterFloatDef>(machine, "speed", 2.0f);
    Tick(machine, "the stick is pushed", 6);
    Set<vell::IParameterBoolDef>(machine, "hit", true);
    Tick(machine, "something hits");
    Set<vell::IParameterBoolDef>(machine, "settled", true);
    Tick(machine, "the hit settles", 2);
    Tick(machine, "walking on", 2);
    Set<vell::IParameterFloatDef>(machine, "speed", 0.0f);
    Tick(machine, "the stick is let go");
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 2)
    {
        std::fprintf(stderr, "usage: %s samples/character.json\n", arguments[0]);
        return 2;
    }
    vell::IHSM* machine = vell::CreateHSM(arguments[1], nullptr);
    Stage stage(*machine);
    Footsteps steps;
    const bool loaded = machine->Init() != 0;
    if (loaded)
    {
        GiveFootsteps(*machine, "Walk", steps);
        machine->SetStateSwitchCallback(OnStateSwitch);
        machine->SubscribeEvents(&stage);
        machine->SubscribeStateChange(&stage);
        machine->Start();
        Play(*machine);
    }
    machine->Uninit();
    machine->Destroy();
    delete machine;
    return loaded ? 0 : 1;
}
