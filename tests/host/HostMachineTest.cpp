// VELL: data-driven hierarchical state machines.
// tests/host/HostMachineTest.cpp: a host drives machines through the shared library.
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LogTest.h"
#include "tests/support/TestAction.h"
#include "tests/support/TestListener.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vell::test
{
namespace
{

using Host = LogTest;

using Machine = std::unique_ptr<IHSM>;

constexpr auto kHostBuilder = static_cast<__DURM_BUILDERS__>(100);

Machine Make(const DocumentBuilder& document)
{
    return Machine(CreateHSMJson(document.Text().c_str()));
}

/// Stand goes to Walk once "speed" is above a half.
DocumentBuilder Walker()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(FloatParameter("speed", 0.0))
        .Node(Generic("Stand", 10, {100}))
        .Node(Generic("Walk", 11))
        .Node(Transition("Go", 100, 10, 11, {FloatCondition("speed", 3, 0.5)}));
}

std::string CurrentName(IHSM& machine)
{
    SMState* state = machine.GetCurrentState();
    return state == nullptr ? "-" : state->GetDef()->GetName();
}

void SetSpeed(IHSM& machine, float speed)
{
    auto* parameter =
        dynamic_cast<IParameterFloatDef*>(machine.GetParameterTable()->FindParameter("speed"));
    ASSERT_NE(parameter, nullptr);
    parameter->SetValue(speed);
}

int activations = 0;

void CountActivation(HSM*, SMState*, SMState*, float)
{
    ++activations;
}

class HostDef : public BaseDef
{
public:
    static BaseDef* Create(const GenericValue&, HSMAlloc* alloc)
    {
        return alloc->New<HostDef>();
    }
    int Init(const GenericValue& node, HSMAlloc* alloc) override
    {
        if (!BaseDef::Init(node, alloc))
        {
            Uninit();
            return 0;
        }
        const auto own = node.FindMember("colour");
        colour = own == node.MemberEnd() ? "" : own->value.GetString();
        return 1;
    }

    std::string colour;

    friend Tessel::KVTable ReleaseStorage(HostDef& def, ArenaLink::AtEnd atEnd)
    {
        std::string().swap(def.colour);
        return ReleaseStorage(static_cast<BaseDef&>(def), atEnd);
    }
};

class HostState : public SMState
{
public:
    static SMState* Create(unsigned int, HSMAlloc* alloc)
    {
        return alloc->New<HostState>();
    }
    int Execute(double dt) override
    {
        seconds += dt;
        return SMState::Execute(dt);
    }

    double seconds = 0.0;
};

/// A host's own machine, with a state class of its own.
class HostMachine : public HSM
{
public:
    explicit HostMachine(std::string documentText) : text(std::move(documentText))
    {
        jsonText = text.c_str();
        Create();
    }

    const std::vector<SMState*>& Stack() const
    {
        return stateStack;
    }

protected:
    void RegisterBuilders() override
    {
        HSM::RegisterBuilders();
        RegisterState(kHostBuilder, HostState::Create);
    }

private:
    std::string text;
};

} // namespace

TEST_F(Host, KeepsTheOrderFromFactoryToDeletion)
{
    Lines notes;
    TestListener listener(notes, "changes");
    activations = 0;
    const Machine machine = Make(Walker());
    ASSERT_EQ(machine->Init(), 1);
    machine->FindDef("Walk")->RegisterEnter(new TestAction("action", notes));
    machine->SetStateSwitchCallback(CountActivation);
    ASSERT_EQ(machine->SubscribeStateChange(&listener), 1);

    machine->Start();
    machine->Update(0.1f);
    EXPECT_EQ(CurrentName(*machine), "Stand");
    SetSpeed(*machine, 1.0f);
    machine->Update(0.1f);

    EXPECT_EQ(CurrentName(*machine), "Walk");
    EXPECT_EQ(activations, 2);
    EXPECT_EQ(notes, (Lines{"owner action", "action entry 0", "changes: change 100: 10 -> 11"}));
    EXPECT_EQ(machine->Uninit(), 1);
    EXPECT_EQ(notes.back(), "delete action");
    EXPECT_EQ(machine->Destroy(), 1);
}

TEST_F(Host, HearsOfAFailedLoadFromInitAlone)
{
    DocumentBuilder document = Walker();
    document.LeaveOut(JSON_Layers);

    const Machine machine = Make(document);

    ASSERT_NE(machine, nullptr);
    EXPECT_EQ(machine->Init(), 0);
    EXPECT_EQ(log.Take().back(), "3 Parsing JSON file has caused an exception");
    EXPECT_EQ(machine->Uninit(), 1);
    EXPECT_EQ(machine->Destroy(), 1);
}

TEST_F(Host, RunsTwoMachinesThatKnowNothingOfEachOther)
{
    const Machine first = Make(Walker());
    const Machine second = Make(Walker());
    ASSERT_EQ(first->Init(), 1);
    ASSERT_EQ(second->Init(), 1);
    first->Start();
    second->Start();
    SetSpeed(*first, 1.0f);

    first->Update(0.1f);
    second->Update(0.1f);

    EXPECT_EQ(CurrentName(*first), "Walk");
    EXPECT_EQ(CurrentName(*second), "Stand");
}

TEST_F(Host, LosesNewStatesOfOneMachineWhenItDestroysAnother)
{
    const Machine first = Make(Walker());
    Machine second = Make(Walker());
    ASSERT_EQ(first->Init(), 1);
    first->Start();
    second->Destroy();
    second.reset();
    SetSpeed(*first, 1.0f);
    log.Clear();

    first->Update(0.1f);

    EXPECT_EQ(log.Take(),
              (Lines{"6 Transition satisfied: Stand", "6 [Exit] Stand - SMState.cpp : #",
                     ErrorBreak("vell::HSM::ActivateState"),
                     "3 Failed to activate state: Unable to find state ID:  (11)",
                     ErrorBreak("vell::HSM::UpdateStateStack")}));
    EXPECT_EQ(CurrentName(*first), "-");
}

TEST_F(Host, CannotInitialiseAMachineMadeBeforeAnotherWasDeleted)
{
    const Machine first = Make(Walker());
    Make(Walker()).reset();
    log.Clear();

    EXPECT_EQ(first->Init(), 1);

    EXPECT_EQ(first->FindDef(10u), nullptr);
    const Machine third = Make(Walker());
    EXPECT_EQ(third->Init(), 1);
    EXPECT_NE(third->FindDef(10u), nullptr);
}

TEST_F(Host, AddsItsOwnKindOfNode)
{
    DocumentBuilder document;
    document.Start(10).Node(Node(kHostBuilder, "Own", 10).Set("colour", "red"));
    HostMachine machine(document.Text());
    ASSERT_EQ(machine.RegisterNodeDef(kHostBuilder, HostDef::Create), 1);
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();

    machine.Update(0.25f);
    machine.Update(0.5f);

    auto* def = dynamic_cast<HostDef*>(machine.FindDef("Own"));
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->colour, "red");
    ASSERT_EQ(machine.Stack().size(), 1u);
    auto* state = dynamic_cast<HostState*>(machine.Stack()[0]);
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(state->seconds, 0.75);
    machine.Uninit();
}

TEST_F(Host, MovesAMachineToAnotherThread)
{
    const Machine machine = Make(Walker());
    ASSERT_EQ(machine->Init(), 1);
    machine->Start();
    SetSpeed(*machine, 1.0f);

    std::thread worker(
        [&machine]
        {
            machine->Update(0.1f);
        });
    worker.join();

    EXPECT_EQ(CurrentName(*machine), "Walk");
}

TEST_F(Host, FindsTheVocabularyAndTheTablesByWayOfTheLibrary)
{
    const Machine machine = Make(Walker());
    ASSERT_EQ(machine->Init(), 1);

    const std::string key = std::to_string(ParameterId("speed"));
    const Tessel::KVTable parameter =
        machine->GetKVTable()->GetTable("parameterTable")->GetTable(key.c_str());

    ASSERT_TRUE(parameter);
    parameter->SetFloat("value", 2.0f, 1);
    machine->Start();
    machine->Update(0.1f);
    EXPECT_EQ(CurrentName(*machine), "Walk");
}

} // namespace vell::test
