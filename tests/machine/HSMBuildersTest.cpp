// VELL: data-driven hierarchical state machines.
// tests/machine/HSMBuildersTest.cpp: the two registries of the process and how machines share them.
#include <vell/HSMAlloc.h>
#include <vell/SMState.h>
#include <vell/SubstateState.h>

#include "definitions/NodeDefTable.h"
#include "machine/StateBuilders.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LogTest.h"
#include "tests/support/Recorders.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using StateBuilders = LogTest;
using DefinitionBuilders = LogTest;

constexpr auto kHostBuilder = static_cast<__DURM_BUILDERS__>(100);

__DURM_BUILDERS__ Builder(int number)
{
    return static_cast<__DURM_BUILDERS__>(number);
}

struct Registered
{
    int number;
    StateFactory factory;

    bool operator==(const Registered& other) const
    {
        return number == other.number && factory == other.factory;
    }
};

/// The six standard factories, in the order in which they are registered.
const std::vector<Registered> kStandard = {{10, SMState::Create},       {8, EnterState::Create},
                                           {9, ExitState::Create},      {23, GlobalState::Create},
                                           {24, SubstateState::Create}, {21, SMState::Create}};

/// Gives what is in the registry for the numbers 0 to 200, in the order of kStandard first.
std::vector<Registered> Registry()
{
    std::vector<Registered> found;
    for (const Registered& standard : kStandard)
    {
        if (FindStateBuilder(Builder(standard.number)) != nullptr)
        {
            found.push_back({standard.number, FindStateBuilder(Builder(standard.number))});
        }
    }
    for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 11, 20, 22, 25, 100})
    {
        if (FindStateBuilder(Builder(number)) != nullptr)
        {
            found.push_back({number, FindStateBuilder(Builder(number))});
        }
    }
    return found;
}

/// Notes what it is asked to register, and refuses one number for some calls.
class RegisteringMachine : public TestMachine
{
public:
    int RegisterState(__DURM_BUILDERS__ builder, StateFactory factory) override
    {
        asked.push_back({builder, factory});
        if (builder == refused && refusals > 0)
        {
            --refusals;
            return 0;
        }
        return HSM::RegisterState(builder, factory);
    }

    std::vector<Registered> asked;
    int refused = 0;
    int refusals = 0;
};

/// A host's own state class.
class HostState : public SMState
{
public:
    static SMState* Create(unsigned int id, HSMAlloc* alloc)
    {
        auto* state = alloc->New<HostState>();
        createdId = id;
        return state;
    }

    static unsigned int createdId;
};

unsigned int HostState::createdId = 0;

/// A host's machine, which adds a state class of its own.
class HostMachine : public TestMachine
{
public:
    void RegisterBuilders() override
    {
        HSM::RegisterBuilders();
        RegisterState(kHostBuilder, HostState::Create);
    }
    void UnRegisterBuilders() override
    {
        ++unregistered;
        HSM::UnRegisterBuilders();
    }

    int unregistered = 0;
};

/// A machine whose constructor hands the text on.
class EagerMachine : public HSM
{
public:
    explicit EagerMachine(const char* text) : HSM(text)
    {
    }
    void RegisterBuilders() override
    {
        ADD_FAILURE() << "the constructor of the base reached the subclass";
    }
};

/// A host's own definition class.
class HostDef : public BaseDef
{
public:
    static BaseDef* Create(const GenericValue&, HSMAlloc* alloc)
    {
        ++created;
        return alloc->New<HostDef>();
    }
    static BaseDef* CreateTransition(const GenericValue&, HSMAlloc* alloc)
    {
        auto* def = alloc->New<HostDef>();
        def->SetType(DefTypeTransition);
        return def;
    }
    static BaseDef* CreateAtTheSecondTime(const GenericValue&, HSMAlloc* alloc)
    {
        return created++ == 0 ? nullptr : alloc->New<HostDef>();
    }
    static BaseDef* CreateNothing(const GenericValue&, HSMAlloc*)
    {
        return nullptr;
    }

    static int created;
};

int HostDef::created = 0;

DocumentBuilder TwoStates()
{
    return SmallDocument().Node(Generic("Walk", 11));
}

/// A document whose second node is of the host's own kind.
DocumentBuilder WithHostNode()
{
    return SmallDocument().Node(Node(kHostBuilder, "Own", 11));
}

} // namespace

TEST_F(StateBuilders, AreTheStandardSixAfterCreate)
{
    ClearStateBuilders();

    const TestMachine machine(TwoStates());

    EXPECT_EQ(Registry(), kStandard);
}

TEST_F(StateBuilders, StayTheSameSixWhenASecondMachineIsMade)
{
    const TestMachine first(TwoStates());

    const TestMachine second(TwoStates());

    EXPECT_EQ(Registry(), kStandard);
}

TEST_F(StateBuilders, AreRegisteredOneByOneThroughTheVirtualOperation)
{
    RegisteringMachine machine;

    EXPECT_EQ(machine.Load(TwoStates().Text()), 1);

    EXPECT_EQ(machine.asked, kStandard);
}

TEST_F(StateBuilders, AreRegisteredBeforeTheNodeTableIsPlaced)
{
    ClearStateBuilders();
    RegisteringMachine machine;

    EXPECT_EQ(machine.Load(WithHead(TwoStates(), JSON_HeadMemory, 0).Text()), 0);

    EXPECT_EQ(machine.nodeDefTable, nullptr);
    EXPECT_EQ(Registry(), kStandard);
}

TEST_F(StateBuilders, EndAtTheFirstThatIsRefusedAlsoWhenItIsTakenTheSecondTime)
{
    for (const int refusals : {1, 2})
    {
        log.Clear();
        ClearStateBuilders();
        RegisteringMachine machine;
        machine.refused = 9;
        machine.refusals = refusals;

        EXPECT_EQ(machine.Load(TwoStates().Text()), 1);

        EXPECT_EQ(log.Take(),
                  (Lines{ErrorBreak("vell::HSM::RegisterBuilders", refusals == 1 ? "1" : "0"),
                         "3 Error registering builders"}));
        EXPECT_EQ(machine.asked, (std::vector<Registered>{kStandard[0], kStandard[1], kStandard[2],
                                                          kStandard[2]}));
        EXPECT_EQ(Registry(),
                  (std::vector<Registered>(kStandard.begin(), kStandard.begin() + 4 - refusals)));
    }
}

TEST_F(StateBuilders, TakeANumberOfTheHosts)
{
    HostMachine machine;
    ASSERT_EQ(machine.Load(WithHostNode().Text()), 1);
    ASSERT_EQ(machine.RegisterNodeDef(kHostBuilder, HostDef::Create), 1);
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();

    SMState* state = machine.PushState(11u);

    EXPECT_NE(dynamic_cast<HostState*>(state), nullptr);
    EXPECT_EQ(HostState::createdId, 11u);
    EXPECT_EQ(machine.MainStack(), "Stand/Own");
}

TEST_F(StateBuilders, AreReplacedForAllMachinesOfTheProcess)
{
    TestMachine first(TwoStates());
    InitialisedMachine second(TwoStates());

    EXPECT_EQ(first.RegisterState(Builder(10), HostState::Create), 1);

    EXPECT_NE(dynamic_cast<HostState*>(second.ActivateState(10, 0.0f)), nullptr);
    ClearStateBuilders();
}

// Pins down that the constructor of the base cannot reach a subclass's builders.
TEST_F(StateBuilders, OfASubclassAreNotReachedByTheConstructorOfTheBase)
{
    ClearStateBuilders();
    const std::string text = TwoStates().Text();

    const EagerMachine machine(text.c_str());

    EXPECT_EQ(Registry(), kStandard);
}

TEST_F(StateBuilders, AreForgottenByDestroyThroughTheVirtualOperation)
{
    HostMachine machine;
    machine.Load(TwoStates().Text());

    EXPECT_EQ(machine.Destroy(), 1);

    EXPECT_EQ(machine.unregistered, 1);
    EXPECT_TRUE(Registry().empty());
}

TEST_F(StateBuilders, AreForgottenWhenAnyMachineIsDeleted)
{
    const TestMachine stays(TwoStates());
    {
        const TestMachine other;
        EXPECT_EQ(Registry(), kStandard);
    }

    EXPECT_TRUE(Registry().empty());
}

TEST_F(StateBuilders, AreMissedByOtherMachinesForStatesNotYetActivated)
{
    TestMachine first(TwoStates());
    TestMachine second(TwoStates());
    ASSERT_EQ(first.Init(), 1);
    first.Start();
    second.Destroy();
    log.Clear();

    EXPECT_NE(first.PushState(10u), nullptr);
    EXPECT_EQ(log.Take({3}), Lines{});
    EXPECT_EQ(first.PushState(11u), nullptr);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::ActivateState"), NotActivated(11),
                                 ErrorBreak("vell::HSM::PushState")}));
    first.Update(0.1f);
    EXPECT_EQ(first.MainStack(), "Stand/Stand");
}

TEST_F(StateBuilders, ComeBackForAllMachinesWhenOneIsCreated)
{
    StartedMachine first(TwoStates());
    {
        const TestMachine second(TwoStates());
    }

    const TestMachine third(TwoStates());

    EXPECT_NE(first.PushState(11u), nullptr);
}

TEST_F(StateBuilders, BearANullFactory)
{
    InitialisedMachine machine(TwoStates());
    machine.RegisterState(Builder(10), nullptr);
    log.Clear();

    EXPECT_EQ(machine.ActivateState(11, 0.0f), nullptr);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::ActivateState"), NotActivated(11)}));
}

TEST_F(DefinitionBuilders, TakeANumberOfTheHostsBetweenCreateAndInit)
{
    TestMachine machine(WithHostNode());

    EXPECT_EQ(machine.RegisterNodeDef(kHostBuilder, HostDef::Create), 1);

    ASSERT_EQ(machine.Init(), 1);
    EXPECT_NE(dynamic_cast<HostDef*>(machine.FindDef(11u)), nullptr);
    EXPECT_EQ(log.Take({3}), (Lines{}));
}

TEST_F(DefinitionBuilders, AreAskedForEveryNodeOfTheirNumber)
{
    TestMachine machine(TwoStates());
    machine.RegisterNodeDef(Builder(10), HostDef::Create);
    HostDef::created = 0;

    EXPECT_EQ(machine.Init(), 1);

    EXPECT_EQ(HostDef::created, 2);
}

TEST_F(DefinitionBuilders, HaveNoEffectAfterInit)
{
    InitialisedMachine machine(TwoStates());

    EXPECT_EQ(machine.RegisterNodeDef(Builder(10), HostDef::Create), 1);

    EXPECT_EQ(dynamic_cast<HostDef*>(machine.FindDef(10u)), nullptr);
}

TEST_F(DefinitionBuilders, ActOnEveryMachineThatIsNotYetInitialised)
{
    TestMachine first(WithHostNode());
    TestMachine second(WithHostNode());

    EXPECT_EQ(first.RegisterNodeDef(kHostBuilder, HostDef::Create), 1);

    EXPECT_EQ(second.Init(), 1);
    EXPECT_NE(dynamic_cast<HostDef*>(second.FindDef(11u)), nullptr);
}

TEST_F(DefinitionBuilders, AreForgottenWhenAnyMachineIsDeletedAndNotBefore)
{
    auto first = std::make_unique<TestMachine>(TwoStates());
    TestMachine second(TwoStates());
    TestMachine third(TwoStates());
    first->Uninit();
    first->Destroy();
    ASSERT_EQ(second.Init(), 1);
    EXPECT_NE(second.FindDef(10u), nullptr);

    first.reset();

    ASSERT_EQ(third.Init(), 1);
    EXPECT_EQ(third.nodeDefTable->Find(10), nullptr);
    const TestMachine fourth(TwoStates());
    third.ImportLayers(third.document, &third.alloc);
    EXPECT_NE(third.nodeDefTable->Find(10), nullptr);
}

TEST_F(DefinitionBuilders, AreForgottenByADestroyedNodeTable)
{
    TestMachine machine(TwoStates());
    {
        const NodeDefTable table;
    }

    ASSERT_EQ(machine.Init(), 1);

    EXPECT_EQ(machine.nodeDefTable->Find(10), nullptr);
}

TEST_F(DefinitionBuilders, NeedANodeTable)
{
    TestMachine machine("{");
    log.Clear();

    EXPECT_EQ(machine.RegisterNodeDef(kHostBuilder, HostDef::Create), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::HSM::RegisterNodeDef")}));
}

TEST_F(DefinitionBuilders, FailALoadWhenTheyGiveNothing)
{
    for (const NodeDefFactory factory : {&HostDef::CreateNothing, NodeDefFactory(nullptr)})
    {
        TestMachine machine(WithHostNode());
        machine.RegisterNodeDef(kHostBuilder, factory);
        log.Clear();

        EXPECT_EQ(machine.ImportLayers(machine.document, &machine.alloc), 1);

        const Lines lines = log.Take({3});
        ASSERT_GE(lines.size(), 3u);
        EXPECT_EQ(Lines(lines.begin(), lines.begin() + 3),
                  (Lines{ErrorBreak("vell::NodeDefTable::CreateNodeDef"),
                         "3 Failed to create builder type - (100)",
                         ErrorGoto("vell::NodeDefTable::Init")}));
        EXPECT_TRUE(machine.nodeDefTable->nodes.empty());
    }
}

TEST_F(DefinitionBuilders, FillTheTableOnTheThirdWalkWhenTheyGiveNothingOnce)
{
    TestMachine machine(WithHostNode());
    machine.RegisterNodeDef(kHostBuilder, HostDef::CreateAtTheSecondTime);
    HostDef::created = 0;
    log.Clear();

    EXPECT_EQ(machine.ImportLayers(machine.document, &machine.alloc), 1);

    const std::string stand = "6 Created new BaseDef: Stand";
    const std::string own = "6 Created new BaseDef: Own";
    const std::string duplicate = "3 Duplicate ID (10) error: Stand conflicts with Stand";
    const std::string insert = ErrorBreak("vell::NodeDefTable::InsertNode");
    EXPECT_EQ(
        log.Take({3, 6}),
        (Lines{stand, ErrorBreak("vell::NodeDefTable::CreateNodeDef"),
               "3 Failed to create builder type - (100)", ErrorGoto("vell::NodeDefTable::Init"),
               stand, own, ErrorBreak("vell::HSM::InitNodeDefTable", "1"), stand, own,
               ErrorBreak("vell::HSM::ImportStates", "1"), stand, duplicate, insert, duplicate,
               insert, ErrorBreak("vell::NodeDefTable::Init"),
               ErrorBreak("vell::HSM::ImportLayers", "1")}));
    EXPECT_EQ(machine.nodeDefTable->nodes.size(), 2u);
}

TEST_F(DefinitionBuilders, MayCallADefinitionATransitionThatIsNone)
{
    TestMachine machine(WithHostNode());
    machine.RegisterNodeDef(kHostBuilder, HostDef::CreateTransition);

    EXPECT_EQ(machine.Init(), 1);
    machine.Start();
    machine.Update(0.1f);

    EXPECT_EQ(machine.FindDef(11u)->GetType(), DefTypeTransition);
    EXPECT_EQ(machine.MainStack(), "Stand");
}

} // namespace vell::test
