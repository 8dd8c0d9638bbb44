// VELL: data-driven hierarchical state machines.
// samples/guide/main.cpp: the pieces of docs/host-guide.md as one program that runs.
#include <vell/vell.h>

#include <rapidjson/document.h>

#include <cstdio>
#include <cstring>

namespace
{

// [log]
void OnLogLine(int level, const char* text)
{
    if (level == 3) // errors; 4 warnings, 6 information, 9 banners
    {
        std::printf("VELL says: %s", text);
    }
}
// [log]

// [node]
/// A node of the game's own kind: a state that names a camera.
class CameraDef : public vell::BaseDef
{
public:
    static constexpr auto kBuilder = static_cast<vell::__DURM_BUILDERS__>(100);

    static vell::BaseDef* Create(const vell::GenericValue&, vell::HSMAlloc* alloc)
    {
        CameraDef* def = alloc->New<CameraDef>(); // null when the arena is full
        if (def != nullptr)
        {
            def->SetFlags(vell::DefTypesState);
        }
        return def;
    }

    int Init(const vell::GenericValue& node, vell::HSMAlloc* alloc) override
    {
        if (!BaseDef::Init(node, alloc))
        {
            Uninit();
            return 0;
        }
        const auto camera = node.FindMember("camera");
        if (camera != node.MemberEnd() && camera->value.IsString())
        {
            cameraName = camera->value.GetString(); // lives as long as the machine
        }
        return 1;
    }

    const char* cameraName = "default";
};
// [node]

// [listener]
class Listener : public vell::IBroadcastListener
{
public:
    int OnBroadcastEvent(int event, const void* record) override
    {
        if (event == vell::HSMEventStateChange)
        {
            const auto* change = static_cast<const vell::StateChangeEvent*>(record);
            std::printf("%u -> %u by %u\n", change->previousID, change->nextID,
                        change->transitionID);
        }
        if (event == vell::HSMEventPlayAnimation)
        {
            const auto* clip = static_cast<const vell::__PlayAnimEvent__*>(record);
            std::printf("play %s\n", clip->clipName);
        }
        return 1;
    }
};
// [listener]

// [callback]
void OnSwitch(vell::HSM*, vell::SMState* previous, vell::SMState* next, float blend)
{
    // `next` is activated and not yet entered. Do not push, pop or update here.
    std::printf("from %s to %s in %.2f s\n",
                previous == nullptr ? "nothing" : previous->GetDef()->GetName(),
                next->GetDef()->GetName(), static_cast<double>(blend));
}
// [callback]

// [action]
class Footstep : public vell::Action
{
public:
    int Perform(vell::__ActType__ type, float timeStep) override
    {
        if (type == vell::ActTypeExecution)
        {
            walked += timeStep;
        }
        return 1;
    }
    float walked = 0.0f;
};
// [action]

// [flag]
/// Ends the match: not here, but with a flag that the game checks after the tick.
class EndOfMatch : public vell::Action
{
public:
    explicit EndOfMatch(bool& flag) : isMatchOver(flag)
    {
    }
    int Perform(vell::__ActType__, float) override
    {
        isMatchOver = true;
        return 1;
    }
    bool& isMatchOver;
};
// [flag]

bool IsTired(vell::IHSM*, vell::SMState*)
{
    return false;
}

void Parameters(vell::IHSM* machine)
{
    // [parameters]
    vell::IParameterTable* table = machine->GetParameterTable();
    auto* speed = dynamic_cast<vell::IParameterFloatDef*>(table->FindParameter("speed"));
    speed->SetValue(2.5f); // find once, keep the pointer, set every frame

    vell::IParameterBoolDef* debug = nullptr;
    table->CreateBoolParameter("debug", true, &debug); // the name must outlive the machine

    auto* hsm = static_cast<vell::HSM*>(machine);
    hsm->BroadcastMessage("use"); // the message takes its default text
    hsm->SetParameterMessage(table->GetParameterID("use"), ""); // only the host empties it
    // [parameters]
    std::printf("debug %d\n", debug->GetValue() ? 1 : 0);
}

void Tree(vell::IHSM* machine)
{
    // [tree]
    Tessel::KVTable root = machine->GetKVTable();
    Tessel::KVTable context = root->GetTable("contextInfo");
    Tessel::KVTable stack = context->GetTable("stackStates");
    for (unsigned int i = 0; i < stack->GetCount(); ++i)
    {
        std::printf("state %u\n", stack->GetValueAt(i)->GetUIntValue());
    }
    // [tree]

    // [tree-write]
    const unsigned int speed = machine->FindParameterByName("speed");
    char key[16];
    std::snprintf(key, sizeof(key), "%u", speed);
    root->GetTable("parameterTable")->GetTable(key)->SetFloat("value", 0.0f, 1);
    // [tree-write]
}

void End(vell::IHSM* machine, Listener& listener)
{
    // [end]
    machine->UnsubscribeStateChange(&listener);
    machine->Uninit();
    machine->Destroy();
    delete machine;
    // [end]
}

} // namespace

int main(int, char** arguments)
{
    // [load]
    vell::SetLogCallBack(OnLogLine);
    vell::IHSM* machine = vell::CreateHSM(arguments[1], nullptr);
    machine->RegisterNodeDef(CameraDef::kBuilder, CameraDef::Create);
    if (!machine->Init())
    {
        std::printf("the log says why\n");
        machine->Destroy();
        delete machine;
        return 1;
    }
    // [load]

    // [register]
    Listener listener;
    machine->SubscribeStateChange(&listener);
    machine->SubscribeEvents(&listener);
    machine->SetStateSwitchCallback(OnSwitch);
    machine->FindDef("Walk")->RegisterExecute(new Footstep); // the definition owns it now
    static_cast<vell::HSM*>(machine)->AssignTrigger("RunToWalk", IsTired);
    // [register]

    // [run]
    machine->Start();
    machine->Update(1.0f / 60.0f);
    // [run]

    Parameters(machine);
    machine->Update(1.0f / 60.0f);
    Tree(machine);

    // [context]
    vell::IHSM* twin = vell::CreateHSM(arguments[1], nullptr);
    twin->Init();
    twin->Start();
    twin->SetContextInfo(machine->GetKVTable()->GetTable("contextInfo"));
    std::printf("the twin is in %s\n", twin->GetCurrentState()->GetDef()->GetName());
    // [context]
    twin->Uninit();
    twin->Destroy();
    delete twin;

    // [after]
    bool isMatchOver = false;
    machine->FindDef("Walk")->RegisterExit(new EndOfMatch(isMatchOver));
    while (!isMatchOver)
    {
        machine->Update(1.0f / 60.0f);
    }
    End(machine, listener); // Uninit, Destroy, delete
    // [after]
}
