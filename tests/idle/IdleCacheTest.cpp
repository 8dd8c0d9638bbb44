// VELL: data-driven hierarchical state machines.
// tests/idle/IdleCacheTest.cpp: what a tick has to notice after ticks in which nothing happened.
#include <vell/BaseDef.h>
#include <vell/ConditionDef.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>
#include <vell/UpdateResult.h>

#include "foundation/TreeKeys.h"
#include "tests/support/Definitions.h"
#include "tests/support/HeapWatch.h"
#include "tests/support/Scene.h"
#include "tests/support/TestAction.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

constexpr unsigned int kCombat = 20;
constexpr unsigned int kGuard = 30;
constexpr unsigned int kStrike = 31;
constexpr unsigned int kAway = 40;

/// The level Combat with the child Guard, which "go" leads to Strike; "leave" leads from Combat to
/// Away, and "hit" makes a blip of Hurt. No list holds the transition Hop.
DocumentBuilder Fight()
{
    return DocumentBuilder()
        .Start(kCombat)
        .Parameter(BoolParameter("go", false))
        .Parameter(BoolParameter("leave", false))
        .Parameter(BoolParameter("hit", false))
        .Parameter(BoolParameter("hop", false))
        .Node(Transition("Go", 130, kGuard, kStrike, {Holds("go")}))
        .Node(Transition("Leave", 120, kCombat, kAway, {Holds("leave")}))
        .Node(Transition("Hop", 140, kGuard, kAway, {Holds("hop")}))
        .Node(Transition("ToBlip", 400, 50, 60, {Holds("hit")}))
        .GlobalNode(Global("Global", 50, {400}))
        .Level("Combat", kCombat, kGuard, {120})
        .Node(Generic("Guard", kGuard, {130}, kCombat))
        .Node(Generic("Strike", kStrike, {}, kCombat))
        .Node(Generic("Away", kAway))
        .Node(Generic("Hurt", 60));
}

/// Counts what a machine asks of it.
class CountingState : public SMState
{
public:
    int Update(HSM*, float) override
    {
        ++updates;
        return 1;
    }
    unsigned int ProcessTransitions(HSM*, UpdateResult*) override
    {
        ++questions;
        return 0;
    }

    int updates = 0;
    int questions = 0;
};

/// A definition that hands out an action of its own.
class HostDef : public BaseDef
{
public:
    static BaseDef* Create(const GenericValue&, HSMAlloc* alloc)
    {
        return alloc->New<HostDef>();
    }
    Action* GetActions() override
    {
        return given;
    }

    static Action* given;
};

Action* HostDef::given = nullptr;

int triggerCalls = 0;

bool CountCall(IHSM*, SMState*)
{
    ++triggerCalls;
    return false;
}

/// A machine that has been in Combat and Guard for some ticks without anything to do.
class SettledMachine : public testing::Test
{
protected:
    SettledMachine() : machine(Fight())
    {
        EXPECT_EQ(machine.Init(), 1);
        machine.Start();
        Tick(5);
        EXPECT_EQ(machine.MainStack(), "Combat/Guard");
        log.Clear();
        triggerCalls = 0;
    }

    void Tick(int times = 1)
    {
        for (int i = 0; i < times; ++i)
        {
            machine.Update(0.5f);
        }
    }

    TransitionDef* FindTransition(unsigned int id)
    {
        return dynamic_cast<TransitionDef*>(machine.FindDef(id));
    }

    LogRecorder log;
    Lines lines; ///< what actions note
    TestMachine machine;
};

} // namespace

TEST_F(SettledMachine, LogsNothingAndTakesNothingFromTheHeap)
{
    HeapWatch heap;
    Tick(100);

    EXPECT_EQ(heap.News() + heap.Mallocs(), 0u);
    EXPECT_EQ(log.Take(), Lines());
}

TEST_F(SettledMachine, FiresInEachLevel)
{
    machine.SetBool("go", true);
    Tick();
    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
    Tick(5);
    machine.SetBool("leave", true);
    Tick();
    EXPECT_EQ(machine.MainStack(), "Away");
}

TEST_F(SettledMachine, UpdatesAStateThatASubclassPutsOnTheStack)
{
    CountingState state;
    machine.stateStack.push_back(&state);
    Tick(6);
    EXPECT_EQ(state.updates, 6);
    EXPECT_EQ(state.questions, 6);

    machine.stateStack.pop_back();
    Tick(3);
    machine.stateStack.insert(machine.stateStack.begin(), &state);
    Tick(4);

    EXPECT_EQ(state.updates, 10);
    EXPECT_EQ(state.questions, 10);
}

TEST_F(SettledMachine, TakesTheStatesOfTheStackAsTheyAre)
{
    machine.stateStack.back() = machine.ActivateState(kStrike, 0.0f);
    machine.SetBool("go", true);
    Tick(5);
    EXPECT_EQ(machine.MainStack(), "Combat/Strike");

    machine.stateStack.back() = machine.FindState(kGuard);
    machine.SetBool("go", false);
    Tick(5);
    machine.stateStack = {machine.FindState(kGuard)};
    machine.SetBool("go", true);
    Tick();
    EXPECT_EQ(machine.MainStack(), "Strike");
}

TEST_F(SettledMachine, AsksTheGlobalStateThatIsSet)
{
    CountingState state;
    SMState* const global = machine.globalState;
    machine.globalState = &state;
    machine.SetBool("hit", true);
    Tick(4);
    EXPECT_EQ(state.questions, 4);
    EXPECT_EQ(state.updates, 0);
    EXPECT_FALSE(machine.blipActive);

    machine.globalState = nullptr;
    Tick(4);
    EXPECT_FALSE(machine.blipActive);
    machine.globalState = global;
    Tick();
    EXPECT_TRUE(machine.blipActive);
    EXPECT_EQ(state.questions, 4);
}

TEST_F(SettledMachine, ReportsAnEmptyEntryAtEachTick)
{
    machine.stateStack.push_back(nullptr);
    for (int i = 0; i < 5; ++i)
    {
        Tick();
        EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::UpdateState")}));
    }
    machine.SetBool("go", true);
    machine.stateStack.pop_back();
    Tick();
    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
}

TEST_F(SettledMachine, PerformsAnActionFromItsRegistrationToItsRemoval)
{
    auto* action = new TestAction("A", lines);
    machine.FindDef(kCombat)->RegisterExecute(action);
    Tick(3);
    const std::string performed = "A execution 0.5";
    EXPECT_EQ(lines, (Lines{"owner A", performed, performed, performed}));

    lines.clear();
    machine.FindDef(kCombat)->RemoveAction(action);
    Tick(3);
    EXPECT_EQ(lines, (Lines{"delete A"}));
}

TEST_F(SettledMachine, FollowsWhatAnActionDoesInTheSameTick)
{
    auto* action = new TestAction("A", lines);
    machine.FindDef(kGuard)->RegisterExecute(action);
    Tick(5);
    EXPECT_EQ(machine.MainStack(), "Combat/Guard");
    action->onPerform = [this]
    {
        machine.AssignTrigger("Leave", CountCall);
        machine.FindState(kGuard)->PushTransition(FindTransition(140));
        machine.SetBool("hop", true);
    };

    Tick();

    EXPECT_EQ(triggerCalls, 1);
    EXPECT_EQ(machine.MainStack(), "Combat/Away");
}

TEST_F(SettledMachine, CallsATriggerThatIsAdded)
{
    machine.AssignTrigger("ToBlip", CountCall);
    machine.AssignTrigger("Leave", CountCall);
    Tick(4);

    EXPECT_EQ(triggerCalls, 8);
}

TEST_F(SettledMachine, TestsATransitionThatIsPushed)
{
    machine.FindState(kCombat)->PushTransition(FindTransition(140));
    Tick(5);
    machine.SetBool("hop", true);
    Tick();

    EXPECT_EQ(machine.MainStack(), "Away");
}

TEST_F(SettledMachine, CallsATriggerOfATransitionThatWasPushed)
{
    machine.FindState(kGuard)->PushTransition(FindTransition(140));
    Tick(5);
    machine.AssignTrigger("Hop", CountCall);
    Tick(3);

    EXPECT_EQ(triggerCalls, 3);
}

TEST_F(SettledMachine, TakesTheDefinitionThatAStateIsGiven)
{
    machine.FindDef(kAway)->RegisterExecute(new TestAction("A", lines));
    machine.FindState(kGuard)->SetDef(dynamic_cast<BaseDef*>(machine.FindDef(kAway)));
    Tick(2);
    EXPECT_EQ(lines.size(), 3u);

    machine.FindState(kGuard)->SetDef(dynamic_cast<BaseDef*>(machine.FindDef(kStrike)));
    Tick(4);
    machine.FindDef(kStrike)->RegisterExecute(new TestAction("B", lines));
    lines.clear();
    Tick(2);
    EXPECT_EQ(lines.size(), 2u);
}

TEST_F(SettledMachine, TakesTheDefinitionThatAStateIsInitialisedWith)
{
    machine.FindDef(kAway)->RegisterExecute(new TestAction("A", lines));

    machine.FindState(kGuard)->Init(dynamic_cast<BaseDef*>(machine.FindDef(kAway)));
    Tick(2);

    EXPECT_EQ(lines.size(), 3u);
}

TEST_F(SettledMachine, TakesTheContentsThatAStateIsGiven)
{
    SMState* const guard = machine.FindState(kGuard);
    const SMState before(*guard);
    *guard = *machine.FindState(kCombat);
    machine.SetBool("go", true);
    Tick(4);
    EXPECT_EQ(machine.MainStack(), "Combat/Combat");

    *guard = before;
    Tick();
    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
}

TEST_F(SettledMachine, TicksAStateThatIsGivenAway)
{
    SMState* const guard = machine.FindState(kGuard);
    guard->SetHSM(nullptr);
    Tick(4);
    guard->PushTransition(FindTransition(140));
    machine.SetBool("hop", true);
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Away");
}

TEST_F(SettledMachine, TicksACopyOfAStateThatAHostOwns)
{
    SMState copy(*machine.FindState(kGuard));
    machine.stateStack.back() = &copy;
    Tick(4);
    copy.PushTransition(FindTransition(140));
    machine.SetBool("hop", true);
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Away");
}

TEST_F(SettledMachine, StartsALevelAgainWhoseExitAHostCalled)
{
    machine.FindState(kCombat)->Exit();
    machine.stateStack.pop_back();
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Guard");
}

TEST_F(SettledMachine, GoesOnAfterABlipAsItWas)
{
    machine.SetBool("hit", true);
    Tick();
    machine.SetBool("hit", false);
    Tick(5);
    ASSERT_EQ(machine.BlipStack(), "Hurt");
    machine.SetBool("go", true);
    Tick(3);
    EXPECT_EQ(machine.MainStack(), "Combat/Guard");

    machine.RevertToPreviousState();
    Tick();
    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
}

TEST_F(SettledMachine, TicksTheStacksOfARestoredContext)
{
    const Tessel::KVTable context = Tessel::CreateTable("context");
    context->AddTable(kMainStackKey, 1)->PushUInt(kGuard, 1);
    machine.SetContextInfo(context);
    ASSERT_EQ(machine.MainStack(), "Guard");
    Tick(4);
    machine.SetBool("go", true);
    Tick();

    EXPECT_EQ(machine.MainStack(), "Strike");
    Tessel::CloseTable(context);
}

TEST_F(SettledMachine, SeesAValueThatIsWrittenThroughItsAddress)
{
    ParameterDef* go = machine.GetParameterTable()->FindParameter("go");
    *static_cast<bool*>(go->GetValuePtr()) = true;
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
}

TEST_F(SettledMachine, SeesAValueThatAToolWrites)
{
    machine.GetParameterTable()->FindParameter("go")->GetKVTable()->SetInt("value", 1, 1);
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
}

TEST(IdleCache, TestsAConditionThatIsBoundLater)
{
    LogRecorder log;
    StartedMachine machine(DocumentBuilder()
                               .Start(10)
                               .Parameter(BoolParameter("other", false))
                               .Node(Generic("Stand", 10, {100}))
                               .Node(Generic("Walk", 11))
                               .Node(Transition("Go", 100, 10, 11, {Holds("late")})));
    machine.Tick(4);
    IParameterBoolDef* late = nullptr;
    ASSERT_EQ(machine.GetParameterTable()->CreateBoolParameter("late", true, &late), 1);
    machine.Update(0.1f);
    EXPECT_EQ(machine.MainStack(), "Stand") << "not bound yet";
    machine.BindParamCond();
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
}

TEST_F(SettledMachine, TestsAConditionThatIsBoundToAnotherParameterByHand)
{
    auto* go = dynamic_cast<TransitionDef*>(machine.FindDef(130u));
    ConditionDef& condition = *go->conditions.front();

    condition.SetParameter(machine.GetParameterTable()->FindParameter("hop"));
    condition.ParameterBind();
    machine.SetBool("hop", true);
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
}

TEST_F(SettledMachine, TestsAConditionThatIsMadeAndBoundByHand)
{
    auto* go = dynamic_cast<TransitionDef*>(machine.FindDef(130u));
    const std::string text = Transition("Go", 130, kGuard, kStrike, {Holds("hop")}).Text();
    GenericDocument node;
    node.Parse(text.c_str());
    ASSERT_EQ(go->Init(node, &machine.alloc), 1);
    Tick(5);

    go->conditions.back()->SetParameter(machine.GetParameterTable()->FindParameter("hop"));
    go->conditions.back()->ParameterBind();
    machine.SetBool("hop", true);
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
}

TEST(IdleCache, AsksADefinitionOfAHostsClassForItsActions)
{
    Lines lines;
    LogRecorder log;
    TestMachine machine(DocumentBuilder().Start(10).Node(Generic("Own", 10)));
    machine.RegisterNodeDef(DURMBaseLib::BUILDER_Generic, HostDef::Create);
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    for (int i = 0; i < 4; ++i)
    {
        machine.Update(0.5f);
    }
    TestAction action("A", lines);
    HostDef::given = &action;
    machine.Update(0.5f);
    machine.Update(0.5f);
    HostDef::given = nullptr;
    machine.Update(0.5f);

    EXPECT_EQ(lines.size(), 2u);
}

namespace
{

void Update(HSM& machine, int times)
{
    for (int i = 0; i < times; ++i)
    {
        machine.Update(0.1f);
    }
}

/// Levels, eight or as many as are given, each with five transitions, or as many, of one condition;
/// the last of each fires on "goN".
DocumentBuilder Tower(unsigned int levels = 8, unsigned int transitionsEach = 5)
{
    DocumentBuilder document;
    document.Start(100).Parameter(FloatParameter("never", 1.0)).Node(Generic("Away", 50));
    for (unsigned int level = 0; level < levels; ++level)
    {
        const unsigned int id = 100 + 100 * level;
        const std::string go = "go" + std::to_string(level);
        Ids transitions;
        for (unsigned int i = 0; i < transitionsEach; ++i)
        {
            transitions.push_back(id + 10 + i);
            document.Node(
                Transition("T", id + 10 + i, id, 50,
                           {i + 1 == transitionsEach ? Holds(go.c_str())
                                                     : FloatCondition("never", 3, 1.0 + i)}));
        }
        const std::string name = "L" + std::to_string(level);
        document.Parameter(BoolParameter(go, false));
        if (level + 1 == levels)
        {
            document.Node(Generic(name, id, transitions, id - 100));
        }
        else
        {
            document.Level(name, id, id + 100, transitions, level == 0 ? 0 : id - 100);
        }
    }
    document.Head().Set(JSON_HeadMemory, 400000);
    return document;
}

} // namespace

TEST(IdleCache, FiresInEveryLevelOfADeepStack)
{
    for (int level = 0; level < 8; ++level)
    {
        LogRecorder log;
        StartedMachine machine(Tower());
        machine.Tick(16);
        ASSERT_EQ(machine.stateStack.size(), 8u);
        machine.SetBool(("go" + std::to_string(level)).c_str(), true);
        machine.Update(0.1f);

        EXPECT_EQ(machine.stateStack.size(), static_cast<std::size_t>(level) + 1);
        EXPECT_STREQ(machine.GetCurrentState()->GetDef()->GetName(), "Away");
    }
}

// Of many levels, some are not cached; of many conditions in one level, none.
TEST(IdleCache, IsDoneWithoutWhereThereIsNoMemory)
{
    constexpr std::size_t kMostBlocks = 400;
    for (const unsigned int levels : {8u, 1u})
    {
        std::size_t finished = 0;
        bool isRefused = true;
        for (std::size_t refused = 0; isRefused && refused < kMostBlocks; ++refused)
        {
            LogRecorder log;
            InitialisedMachine machine(Tower(levels, levels == 1 ? 80 : 5));
            try
            {
                HeapWatch heap;
                heap.RefuseAfter(refused);
                machine.Start();
                Update(machine, 16);
                isRefused = heap.Refused() != 0;
            }
            catch (const std::bad_alloc&)
            {
                continue; // a map or a vector of the host's heap, not the cache
            }
            ++finished;
            Update(machine, 4);
            machine.SetBool(("go" + std::to_string(levels - 1)).c_str(), true);
            machine.Update(0.1f);
            EXPECT_EQ(machine.stateStack.size(), levels);
            machine.SetBool("go0", true);
            machine.Update(0.1f);
            EXPECT_EQ(machine.MainStack(), "Away");
        }
        EXPECT_FALSE(isRefused);
        EXPECT_GE(finished, 2u) << "one of them or more with a block refused";
    }
}

TEST(IdleCache, ReadsTheValuesOfMoreParametersThanLieTogether)
{
    LogRecorder log;
    DocumentBuilder document;
    document.Start(10).Node(Generic("Away", 50));
    Ids transitions;
    for (unsigned int i = 0; i < 40; ++i)
    {
        const std::string name = "p" + std::to_string(i);
        const unsigned int kind = i % 3;
        document.Parameter(kind == 0   ? BoolParameter(name, false)
                           : kind == 1 ? IntParameter(name, 0)
                                       : FloatParameter(name, 0.0));
        document.Node(Transition("T" + name, 100 + i, 10, 50,
                                 {kind == 0   ? BoolCondition(name, true)
                                  : kind == 1 ? IntCondition(name, 3, 0)
                                              : FloatCondition(name, 3, 0.0)}));
        transitions.push_back(100 + i);
    }
    document.Node(Generic("Stand", 10, transitions));
    document.Head().Set(JSON_HeadMemory, 400000);
    for (unsigned int i = 0; i < 40; ++i)
    {
        StartedMachine machine(document);
        machine.Tick(4);
        const std::string name = "p" + std::to_string(i);
        ASSERT_EQ(machine.MainStack(), "Stand") << name;
        ParameterDef* parameter = machine.GetParameterTable()->FindParameter(name.c_str());
        void* const address = parameter->GetValuePtr();
        if (auto* flag = dynamic_cast<ParameterBoolDef*>(parameter))
        {
            flag->SetValue(true);
        }
        else if (auto* number = dynamic_cast<ParameterIntegerDef*>(parameter))
        {
            number->SetValue(1);
        }
        else
        {
            dynamic_cast<ParameterFloatDef&>(*parameter).SetValue(0.5f);
        }
        machine.Update(0.1f);
        EXPECT_EQ(machine.MainStack(), "Away") << name;
        EXPECT_EQ(parameter->GetValuePtr(), address) << name;
    }
}

TEST_F(SettledMachine, PerformsTheActionsOfADefinitionThatIsAssigned)
{
    OpenDef other;
    other.RegisterExecute(new TestAction("A", lines));
    BaseDef* const guard = machine.FindState(kGuard)->GetDef();

    *guard = other;
    Tick(2);

    const std::string performed = "A execution 0.5";
    EXPECT_EQ(lines, (Lines{"owner A", performed, performed}));
    other.executeActions = nullptr; // they are the other one's now
}

TEST_F(SettledMachine, StartsTheChildOfALevelWhoseChildAHostSetsToNull)
{
    SMState* const guard = machine.FindState(kGuard);
    machine.stateStack.pop_back();

    guard->GetParent()->currentChild = nullptr;
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Guard");
}

namespace
{

/// What a host writes into the fields of the transition Go, which then holds or fires elsewhere.
struct FieldWrite
{
    const char* name;
    void (*write)(TransitionDef& go, TransitionDef& hop);
};

bool AlwaysHolds(IHSM*, SMState*)
{
    return true;
}

constexpr FieldWrite kFieldWrites[] = {
    {"conditions, another one",
     [](TransitionDef& go, TransitionDef& hop)
     {
         go.conditions.push_back(hop.conditions.front());
     }},
    {"conditions, one replaced in place",
     [](TransitionDef& go, TransitionDef& hop)
     {
         go.conditions.front() = hop.conditions.front();
     }},
    {"triggers",
     [](TransitionDef& go, TransitionDef&)
     {
         go.triggers.push_back(AlwaysHolds);
     }},
    {"a condition's parameter, then bound",
     [](TransitionDef& go, TransitionDef& hop)
     {
         go.conditions.front()->parameter = hop.conditions.front()->parameter;
         go.conditions.front()->ParameterBind();
     }},
    {"the whole transition",
     [](TransitionDef& go, TransitionDef& hop)
     {
         go = hop;
     }},
};

/// Ways in which a host gets the address of a transition.
struct Road
{
    const char* name;
    TransitionDef* (*find)(TestMachine& machine, unsigned int id, unsigned int state);
};

/// A state of a host's class that shows its transitions.
struct ShownState : SMState
{
    explicit ShownState(const SMState& other) : SMState(other)
    {
    }
    using SMState::transitions;
};

constexpr Road kRoads[] = {
    {"FindDef by id",
     [](TestMachine& machine, unsigned int id, unsigned int)
     {
         return dynamic_cast<TransitionDef*>(machine.FindDef(id));
     }},
    {"FindDef by name",
     [](TestMachine& machine, unsigned int id, unsigned int)
     {
         return dynamic_cast<TransitionDef*>(machine.FindDef(id == 130 ? "Go" : "Hop"));
     }},
    {"BeginDef and NextDef",
     [](TestMachine& machine, unsigned int id, unsigned int)
     {
         IBaseDef* def = machine.BeginDef(DefTypesTransition);
         while (def->GetID() != id)
         {
             def = machine.NextDef(DefTypesTransition);
         }
         return dynamic_cast<TransitionDef*>(def);
     }},
    {"GetTransitionAt",
     [](TestMachine& machine, unsigned int id, unsigned int state)
     {
         return id == 130 ? machine.FindState(state)->GetTransitionAt(0)
                          : dynamic_cast<TransitionDef*>(machine.FindDef(id));
     }},
    {"a record of ProcessTransitions",
     [](TestMachine& machine, unsigned int id, unsigned int state)
     {
         UpdateResult result;
         machine.SetBool("go", true);
         machine.FindState(state)->ProcessTransitions(&machine, &result);
         machine.SetBool("go", false);
         return id == 130 ? result.transition : dynamic_cast<TransitionDef*>(machine.FindDef(id));
     }},
    {"a copy of the state",
     [](TestMachine& machine, unsigned int id, unsigned int state)
     {
         const ShownState copy(*machine.FindState(state));
         return id == 130 ? copy.transitions.front()
                          : dynamic_cast<TransitionDef*>(machine.FindDef(id));
     }},
};

} // namespace

TEST_F(SettledMachine, SeesWhatAHostWritesIntoTheFieldsOfATransitionHoweverItGotIt)
{
    for (const Road& road : kRoads)
    {
        for (const FieldWrite& field : kFieldWrites)
        {
            SCOPED_TRACE(std::string(road.name) + ": " + field.name);
            StartedMachine own(Fight());
            Update(own, 5);
            TransitionDef* const go = road.find(own, 130, kGuard);
            TransitionDef* const hop = road.find(own, 140, kGuard);
            Update(own, 5);
            ASSERT_EQ(own.MainStack(), "Combat/Guard");

            field.write(*go, *hop);
            own.SetBool("hop", true);
            Update(own, 1);

            EXPECT_NE(own.MainStack(), "Combat/Guard");
        }
    }
}

TEST_F(SettledMachine, SeesATransitionsWritesThroughAStateOfAHostsClassThatListsItToo)
{
    // Shown lists Go as Guard does; only its own class reaches its fields.
    TestMachine own(Fight().Node(Node(kOwnBuilder, "Shown", 45, {130})));
    static std::vector<TransitionDef*> shown;
    struct OwnState : SMState
    {
        unsigned int ProcessTransitions(HSM*, UpdateResult*) override
        {
            shown = transitions;
            return 0;
        }
    };
    own.RegisterNodeDef(kOwnBuilder, BaseDef::Create);
    own.RegisterState(kOwnBuilder, MakeState<OwnState>);
    ASSERT_EQ(own.Init(), 1);
    own.Start();
    own.ActivateState(45, 0.0f)->ProcessTransitions(&own, nullptr);
    Update(own, 5);

    shown.front()->triggers.push_back(AlwaysHolds);
    Update(own, 1);

    EXPECT_EQ(own.MainStack(), "Combat/Strike");
}

namespace
{

TransitionDef* madeByHost = nullptr;

BaseDef* MakeTransition(const GenericValue& node, HSMAlloc* alloc)
{
    madeByHost = TransitionDef::Create(node, alloc);
    return madeByHost;
}

} // namespace

TEST(IdleCache, SeesTheWritesOfAHostWhoseFactoryMadeTheTransition)
{
    LogRecorder log;
    TestMachine machine(DocumentBuilder()
                            .Start(10)
                            .Parameter(BoolParameter("go", false))
                            .Node(Generic("Stand", 10, {100}))
                            .Node(Generic("Walk", 11))
                            .Node(Transition("Go", 100, 10, 11, {Holds("go")})));
    machine.RegisterNodeDef(DURMBaseLib::BUILDER_Transition, MakeTransition);
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    Update(machine, 5);

    madeByHost->triggers.push_back(AlwaysHolds);
    machine.Update(0.1f);

    EXPECT_EQ(machine.MainStack(), "Walk");
}

namespace
{

/// A chain of `levels` levels whose innermost state has `conditions` transitions of one condition
/// each; none holds.
DocumentBuilder Tall(unsigned int levels, unsigned int conditions)
{
    DocumentBuilder document;
    document.Start(10).Parameter(FloatParameter("never", 1.0)).Node(Generic("Away", 5));
    Ids transitions;
    for (unsigned int i = 0; i < conditions; ++i)
    {
        transitions.push_back(100000 + i);
    }
    for (unsigned int level = 0; level < levels; ++level)
    {
        const unsigned int id = 10 + 10 * level;
        const unsigned int parent = level == 0 ? 0 : id - 10;
        if (level + 1 == levels)
        {
            document.Node(Generic("Innermost", id, transitions, parent));
        }
        else
        {
            document.Level("L" + std::to_string(level), id, id + 10, {}, parent);
        }
    }
    for (const unsigned int transition : transitions)
    {
        document.Node(Transition("T", transition, 10 * levels, 5,
                                 {FloatCondition("never", EvaluateGreater, 1.0 + transition)}));
    }
    document.Head().Set(JSON_HeadMemory, 400000);
    return document;
}

} // namespace

TEST(IdleCache, LetsATickAllocateNothingAtAnyDepthWithAnyNumberOfConditions)
{
    struct Shape
    {
        unsigned int levels;
        unsigned int conditions;
    };
    std::vector<Shape> shapes = {{1, 1}, {1, 24}, {1, 25}, {1, 30}, {1, 100}, {1, 1000}, {3, 100}};
    for (unsigned int levels = 2; levels <= 40; ++levels)
    {
        shapes.push_back({levels, 30});
    }
    for (const Shape& shape : shapes)
    {
        SCOPED_TRACE(std::to_string(shape.levels) + " levels, " + std::to_string(shape.conditions) +
                     " conditions");
        LogRecorder log;
        StartedMachine machine(Tall(shape.levels, shape.conditions));
        Update(machine, static_cast<int>(shape.levels) - 1);
        ASSERT_EQ(machine.stateStack.size(), shape.levels);

        HeapWatch heap;
        Update(machine, 4);

        EXPECT_EQ(heap.News() + heap.Mallocs(), 0u);
    }
}

namespace
{

/// A state of a host that keeps the transition in the record that it is given. Asks `inner` first,
/// if there is one.
class KeepingState : public SMState
{
public:
    unsigned int ProcessTransitions(HSM* machine, UpdateResult* result) override
    {
        if (inner != nullptr)
        {
            inner->ProcessTransitions(machine, result);
        }
        kept = result->transition == nullptr ? kept : result->transition;
        return 0;
    }

    SMState* inner = nullptr;
    TransitionDef* kept = nullptr;
};

} // namespace

TEST_F(SettledMachine, SeesTheWritesOfAStateThatAskedALibrarysStateWithTheTicksOwnRecord)
{
    KeepingState keeping;
    keeping.inner = machine.FindState(kGuard);
    const std::vector<SMState*> stack = machine.stateStack;
    machine.stateStack = {&keeping};
    machine.SetBool("go", true);
    Tick();
    machine.SetBool("go", false);
    machine.stateStack = stack;
    Tick(5);
    ASSERT_NE(keeping.kept, nullptr);
    ASSERT_EQ(machine.MainStack(), "Combat/Guard");

    keeping.kept->triggers.push_back(AlwaysHolds);
    Tick();

    EXPECT_EQ(machine.MainStack(), "Combat/Strike");
}

TEST_F(SettledMachine, SeesTheWritesOfAStateThatFoundADroppedTransitionInTheTicksOwnRecord)
{
    KeepingState keeping;
    machine.stateStack.push_back(&keeping);
    machine.blipPriority = 100;
    machine.SetBool("hit", true);
    Tick();
    machine.SetBool("hit", false);
    machine.stateStack.pop_back();
    machine.blipPriority = 1;
    Tick(5);
    ASSERT_NE(keeping.kept, nullptr);
    ASSERT_FALSE(machine.blipActive);

    keeping.kept->triggers.push_back(AlwaysHolds);
    Tick();

    EXPECT_TRUE(machine.blipActive);
}

TEST_F(SettledMachine, UpdatesAStateOfAHostThatTakesThePlaceOfADestroyedOne)
{
    static_assert(sizeof(KeepingState) >= sizeof(SMState), "the room is that of the larger one");
    alignas(KeepingState) unsigned char room[sizeof(KeepingState)];
    auto* guard = new (room) SMState(*machine.FindState(kGuard));
    machine.stateStack.back() = guard;
    Tick(5);

    guard->~SMState();
    auto* counting = new (room) CountingState;
    Tick(2);

    EXPECT_EQ(counting->updates, 2);
    machine.stateStack.pop_back();
    counting->~CountingState();
}

} // namespace vell::test
