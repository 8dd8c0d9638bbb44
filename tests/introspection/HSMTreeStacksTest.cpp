// VELL: data-driven hierarchical state machines.
// tests/introspection/HSMTreeStacksTest.cpp: the stacks and the last switch as the tree shows them.
#include <vell/SMState.h>

#include "foundation/TreeKeys.h"
#include "tests/introspection/RichDocument.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

class StackMachine : public TestMachine
{
public:
    using TestMachine::TestMachine;

    using HSM::GetCurrentStackTable;
    using HSM::UpdateKVTable_OnPopState;
    using HSM::UpdateKVTable_OnPushState;
};

class HSMTreeStacks : public testing::Test
{
protected:
    void SetUp() override
    {
        log.Clear();
    }

    Ids Main() const
    {
        return machine.StackInTree(kMainStackKey);
    }

    Ids Blip() const
    {
        return machine.StackInTree(kBlipStackKey);
    }

    LogRecorder log;
    Started<StackMachine> machine{RichDocument()};
};

int CloseRoot(void* root, Tessel::opResult, Tessel::KVTable, const char*)
{
    Tessel::CloseTable(*static_cast<Tessel::KVTable*>(root));
    return 0;
}

} // namespace

TEST_F(HSMTreeStacks, BeginWithTheStartState)
{
    EXPECT_EQ(Main(), (Ids{10}));
    EXPECT_EQ(Blip(), Ids());
}

TEST_F(HSMTreeStacks, HoldAfterAPushAndAPopWhatTheyHeldBefore)
{
    machine.PushState(11u);
    EXPECT_EQ(Main(), (Ids{10, 11}));
    machine.PopState();

    EXPECT_EQ(Main(), (Ids{10}));
}

TEST_F(HSMTreeStacks, HoldTheSameStateTwiceWhenItIsPushedTwice)
{
    machine.PushState(10u);

    EXPECT_EQ(Main(), (Ids{10, 10}));
}

TEST_F(HSMTreeStacks, StayAsTheyAreWhenAPushFails)
{
    EXPECT_EQ(machine.PushState(999u), nullptr);

    EXPECT_EQ(Main(), (Ids{10}));
}

TEST_F(HSMTreeStacks, HoldANestedLevelBottomFirst)
{
    machine.TickWith("fight");
    machine.Update(0.1f);

    EXPECT_EQ(Main(), (Ids{20, 23}));
    EXPECT_EQ(machine.LastSwitch(), (Ids{101, 10, 20}));
}

TEST_F(HSMTreeStacks, AreTwoDuringABlipAndOneAfterIt)
{
    machine.TickWith("hit");
    EXPECT_EQ(Main(), (Ids{10}));
    EXPECT_EQ(Blip(), (Ids{12}));
    machine.PushState(23u);
    EXPECT_EQ(Main(), (Ids{10}));
    EXPECT_EQ(Blip(), (Ids{12, 23}));

    machine.RevertToPreviousState();

    EXPECT_EQ(Main(), (Ids{10}));
    EXPECT_EQ(Blip(), Ids());
}

TEST_F(HSMTreeStacks, AreBothEmptyAfterARevertToTheStart)
{
    machine.TickWith("hit");

    machine.RevertToStartState();

    EXPECT_EQ(Main(), Ids());
    EXPECT_EQ(Blip(), Ids());
}

TEST_F(HSMTreeStacks, KeepTheLastSwitchUntilTheNext)
{
    machine.TickWith("go");
    machine.Update(0.1f);
    EXPECT_EQ(machine.LastSwitch(), (Ids{100, 10, 11}));

    machine.ChangeState(23);
    EXPECT_EQ(machine.LastSwitch(), (Ids{100, 11, 23}));
}

TEST_F(HSMTreeStacks, ShowASwitchFromNothingWithAPreviousStateOfZero)
{
    machine.PopState();
    machine.previousState = nullptr;

    machine.ChangeState(11);

    EXPECT_EQ(machine.LastSwitch(), (Ids{0, 0, 11}));
}

TEST_F(HSMTreeStacks, LoseTheirLastElementAloneOnAPop)
{
    TableAt(machine.GetKVTable(), "contextInfo/stackStates")->PushUInt(77, 1);

    machine.PopState();

    EXPECT_EQ(Main(), (Ids{10}));
}

TEST_F(HSMTreeStacks, AreFoundByTheActiveStack)
{
    Tessel::KVTable found;
    EXPECT_EQ(machine.GetCurrentStackTable(&found), 1);
    EXPECT_EQ(found, TableAt(machine.GetKVTable(), "contextInfo/stackStates"));

    machine.currentStack = &machine.blipStack;
    EXPECT_EQ(machine.GetCurrentStackTable(&found), 1);
    EXPECT_EQ(found, TableAt(machine.GetKVTable(), "contextInfo/stackBlip"));
    EXPECT_EQ(machine.GetCurrentStackTable(nullptr), 0);
}

TEST_F(HSMTreeStacks, AreNotFoundWhenTheActiveStackIsNeither)
{
    std::vector<SMState*> other;
    Tessel::KVTable found = machine.GetKVTable();
    SMState* state = machine.GetCurrentState();
    machine.currentStack = &other;
    EXPECT_EQ(machine.GetCurrentStackTable(&found), 0);
    EXPECT_EQ(found, machine.GetKVTable());
    EXPECT_EQ(machine.UpdateKVTable_OnPushState(state), 0);
    EXPECT_EQ(machine.UpdateKVTable_OnPopState(), 0);

    machine.currentStack = nullptr;
    EXPECT_EQ(machine.GetCurrentStackTable(&found), 0);
    machine.currentStack = &machine.stateStack;
}

TEST_F(HSMTreeStacks, GiveANullTableAndSuccessWithoutATree)
{
    const Tessel::KVTable root = machine.kvTable;
    machine.kvTable = Tessel::KVTable();

    Tessel::KVTable found = root;
    EXPECT_EQ(machine.GetCurrentStackTable(&found), 1);
    EXPECT_FALSE(static_cast<bool>(found));
    EXPECT_EQ(machine.UpdateKVTable_OnPushState(machine.GetCurrentState()), 0);
    EXPECT_EQ(machine.UpdateKVTable_OnPopState(), 0);
    machine.kvTable = root;
}

TEST_F(HSMTreeStacks, TellWhetherTheyChanged)
{
    EXPECT_EQ(machine.UpdateKVTable_OnPushState(machine.GetCurrentState()), 1);
    EXPECT_EQ(Main(), (Ids{10, 10}));
    EXPECT_EQ(machine.UpdateKVTable_OnPopState(), 1);
    EXPECT_EQ(machine.UpdateKVTable_OnPopState(), 1);
    EXPECT_EQ(machine.UpdateKVTable_OnPopState(), 0);
    EXPECT_EQ(machine.UpdateKVTable_OnPushState(nullptr), 0);
    EXPECT_EQ(Main(), Ids());
}

TEST_F(HSMTreeStacks, AreNotNeededForTheMachineToRun)
{
    Tessel::CloseTable(machine.GetKVTable());

    machine.ChangeState(20);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Combat/Guard");
    EXPECT_EQ(Main(), Ids());
}

TEST_F(HSMTreeStacks, MayBeClosedByAListenerWithinASwitch)
{
    Tessel::KVTable root = machine.GetKVTable();
    Tessel::KVListener* listener = TableAt(root, kContextKey)->GetValueListener(kPreviousStateKey);
    listener->object = &root;
    listener->function = CloseRoot;

    machine.TickWith("go");
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(Tessel::GetTableName(root), nullptr);
}

TEST_F(HSMTreeStacks, MayBeReplacedByATool)
{
    TableAt(machine.GetKVTable(), kContextKey)->SetInt(kMainStackKey, 3, 1);

    machine.PushState(11u);
    machine.PopState();

    EXPECT_EQ(machine.MainStack(), "Idle");
    EXPECT_EQ(TableAt(machine.GetKVTable(), kContextKey)->GetInt(kMainStackKey), 3);
}

TEST_F(HSMTreeStacks, AreWrittenToAContextThatAToolMadeAnew)
{
    machine.PushState(11u);
    Tessel::KVTable context = machine.GetKVTable()->AddTable(kContextKey, 1);
    context->AddTable(kMainStackKey, 1);

    machine.ChangeState(23);

    EXPECT_EQ(Main(), (Ids{23}));
    EXPECT_EQ(machine.LastSwitch(), (Ids{0, 11, 23}));
}

TEST_F(HSMTreeStacks, TakeTheTransitionInAContextThatAToolMadeAnew)
{
    machine.GetKVTable()->AddTable(kContextKey, 1);

    machine.TickWith("go");

    EXPECT_EQ(machine.MainStack(), "Walk");
    EXPECT_EQ(machine.LastSwitch(), (Ids{100, 10, 11}));
}

TEST_F(HSMTreeStacks, AreFoundByTheirKeysWhileAReplacedContextLivesOnElsewhere)
{
    const Tessel::KVTable elsewhere = Tessel::CreateTable("elsewhere");
    const Tessel::KVTable before = TableAt(machine.GetKVTable(), kContextKey);
    ASSERT_EQ(elsewhere->AttachTable(kContextKey, before, 1), 1);
    machine.GetKVTable()->AddTable(kContextKey, 1)->AddTable(kMainStackKey, 1)->PushUInt(10, 1);

    machine.TickWith("go");

    EXPECT_EQ(Main(), (Ids{11}));
    EXPECT_EQ(machine.LastSwitch(), (Ids{100, 10, 11}));
    EXPECT_EQ(IdsOf(TableAt(elsewhere, "contextInfo/stackStates")), (Ids{10}));
    EXPECT_EQ(before->GetUInt(kNextStateKey), 0u);
    EXPECT_EQ(before->GetUInt(kTransitionKey), 0u);
    Tessel::CloseTable(elsewhere);
}

TEST_F(HSMTreeStacks, AreFoundByTheirKeysWhileAReplacedArrayLivesOnElsewhere)
{
    const Tessel::KVTable elsewhere = Tessel::CreateTable("elsewhere");
    const Tessel::KVTable context = TableAt(machine.GetKVTable(), kContextKey);
    ASSERT_EQ(elsewhere->AttachTable(kMainStackKey, context->GetTable(kMainStackKey), 1), 1);
    context->AddTable(kMainStackKey, 1);

    machine.PushState(11u);
    EXPECT_EQ(Main(), (Ids{11}));
    machine.PopState();

    EXPECT_EQ(Main(), Ids());
    EXPECT_EQ(IdsOf(TableAt(elsewhere, kMainStackKey)), (Ids{10}));
    Tessel::CloseTable(elsewhere);
}

TEST_F(HSMTreeStacks, TellAListenerWhatTheReplacedKeysSay)
{
    const Tessel::KVTable elsewhere = Tessel::CreateTable("elsewhere");
    const Tessel::KVTable before = TableAt(machine.GetKVTable(), kContextKey);
    ASSERT_EQ(elsewhere->AttachTable(kContextKey, before, 1), 1);
    before->SetUInt(kTransitionKey, 77, 1);
    machine.GetKVTable()->AddTable(kContextKey, 1);
    TestListener listener("tool");
    machine.SubscribeStateChange(&listener);

    machine.TickWith("go");

    EXPECT_EQ(log.Take().back(), "tool: change 100: 10 -> 11");
    EXPECT_EQ(machine.LastSwitch(), (Ids{0, 0, 0}));
    EXPECT_EQ(before->GetUInt(kTransitionKey), 77u);
    Tessel::CloseTable(elsewhere);
}

} // namespace vell::test
