// VELL: data-driven hierarchical state machines.
// tests/host/HostTransitionsTest.cpp: a host reads, asks and writes transitions and levels.
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vell::test
{
namespace
{

constexpr auto kHostBuilder = static_cast<__DURM_BUILDERS__>(100);

/// Of the transitions that hold, takes the one of the greatest priority.
class BoldState : public SMState
{
public:
    static SMState* Create(unsigned int, HSMAlloc* alloc)
    {
        return alloc->New<BoldState>();
    }
    unsigned int ProcessTransitions(HSM* machine, UpdateResult* result) override
    {
        TransitionDef* chosen = nullptr;
        for (int i = 0; i < GetNumTransitions(); ++i)
        {
            TransitionDef* transition = GetTransitionAt(i);
            const bool isBolder = chosen == nullptr || transition->priority > chosen->priority;
            if (!transition->disabled && isBolder && transition->HandleConditions(machine) == 1)
            {
                chosen = transition;
            }
        }
        if (chosen == nullptr)
        {
            return 0;
        }
        result->transition = chosen;
        result->targetID = chosen->targetID;
        result->priority = chosen->priority;
        return chosen->targetID;
    }
};

/// A machine with the host's states.
class HostMachine : public HSM
{
public:
    explicit HostMachine(const DocumentBuilder& builder) : text(builder.Text())
    {
        jsonText = text.c_str();
        Create();
        RegisterNodeDef(kHostBuilder, BaseDef::Create);
        EXPECT_EQ(Init(), 1);
        Start();
    }

    std::string Current()
    {
        return GetCurrentState()->GetDef()->GetName();
    }

    void Tick(int times = 1)
    {
        for (int i = 0; i < times; ++i)
        {
            Update(0.1f);
        }
    }

protected:
    void RegisterBuilders() override
    {
        HSM::RegisterBuilders();
        RegisterState(kHostBuilder, BoldState::Create);
    }

private:
    std::string text;
};

/// Stand, of builder `builder`, leads to Walk (priority 3) and Run (7); both hold with "go".
DocumentBuilder TwoWays(int builder)
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(BoolParameter("go", false))
        .Parameter(FloatParameter("speed", 1.0))
        .Node(Node(builder, "Stand", 10, {100, 101}))
        .Node(Generic("Walk", 11))
        .Node(Generic("Run", 12))
        .Node(Transition("ToWalk", 100, 10, 11, {BoolCondition("go", true)})
                  .Set(JSON_TransitionPriority, 3))
        .Node(Transition("ToRun", 101, 10, 12,
                         {BoolCondition("go", true), FloatCondition("speed", 3, 100.0)})
                  .Set(JSON_TransitionPriority, 7));
}

void SetGo(HSM& machine, bool value)
{
    auto* go = dynamic_cast<IParameterBoolDef*>(machine.GetParameterTable()->FindParameter("go"));
    ASSERT_NE(go, nullptr);
    go->SetValue(value);
}

} // namespace

TEST(HostTransitions, AreChosenByAStateOfAHost)
{
    LogRecorder log;
    HostMachine machine(TwoWays(kHostBuilder));
    machine.Tick(3);
    EXPECT_EQ(machine.Current(), "Stand");

    SetGo(machine, true);
    machine.Tick();

    EXPECT_EQ(machine.Current(), "Run");
}

TEST(HostTransitions, TakeAWriteOfAHostIntoTheirFieldsInTheNextTick)
{
    LogRecorder log;
    HostMachine machine(TwoWays(DURMBaseLib::BUILDER_Generic));
    machine.Tick(5);
    auto* toWalk = dynamic_cast<TransitionDef*>(machine.FindDef("ToWalk"));
    auto* toRun = dynamic_cast<TransitionDef*>(machine.FindDef("ToRun"));
    ASSERT_NE(toWalk, nullptr);
    ASSERT_NE(toRun, nullptr);
    machine.Tick(5);
    ASSERT_EQ(machine.Current(), "Stand");

    toWalk->disabled = true;
    SetGo(machine, true);
    toRun->conditions.front()->Uninit();
    machine.Tick();
    EXPECT_EQ(machine.Current(), "Stand");
    toRun->conditions.back()->evaluation = EvaluateLess;
    machine.Tick();

    EXPECT_EQ(machine.Current(), "Run");
}

TEST(HostTransitions, ShowTheirLevelWhoseChildAHostMayStartAgain)
{
    LogRecorder log;
    DocumentBuilder document;
    document.Start(20).Level("Combat", 20, 30).Node(Generic("Guard", 30, {}, 20));
    HostMachine machine(document);
    machine.Tick(5);
    SMState* const guard = machine.GetCurrentState();
    SubstateState* const combat = guard->GetParent();
    ASSERT_NE(combat, nullptr);
    EXPECT_EQ(combat->currentChild, guard);
    EXPECT_EQ(combat->currentChildID, 30u);
    EXPECT_EQ(combat->GetID(), 20u);

    machine.PopState();
    combat->currentChild = nullptr;
    machine.Tick();

    EXPECT_EQ(machine.GetCurrentState(), guard);
}

} // namespace vell::test
