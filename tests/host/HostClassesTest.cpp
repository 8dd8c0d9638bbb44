// VELL: data-driven hierarchical state machines.
// tests/host/HostClassesTest.cpp: state and definition classes of a host in the arena of a machine.
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

constexpr auto kHostBuilder = static_cast<__DURM_BUILDERS__>(100);

template <class T>
BaseDef* CreateDef(const GenericValue&, HSMAlloc* alloc)
{
    return alloc->New<T>();
}

template <class T>
SMState* CreateState(unsigned int, HSMAlloc* alloc)
{
    return alloc->New<T>();
}

/// A machine whose nodes of the host's builder number are of the class Def and run as State.
template <class Def, class State>
class HostMachine : public HSM
{
public:
    explicit HostMachine(const DocumentBuilder& source) : text(source.Text())
    {
        jsonText = text.c_str();
        Create();
        RegisterNodeDef(kHostBuilder, CreateDef<Def>);
    }

    std::vector<unsigned int> StackIds() const
    {
        std::vector<unsigned int> ids;
        for (const SMState* state : stateStack)
        {
            ids.push_back(state->GetID());
        }
        return ids;
    }

protected:
    void RegisterBuilders() override
    {
        HSM::RegisterBuilders();
        RegisterState(kHostBuilder, CreateState<State>);
    }

private:
    std::string text;
};

Json HostNode(const char* name, unsigned int id, const std::vector<unsigned int>& children = {})
{
    return Node(kHostBuilder, name, id, children);
}

DocumentBuilder OneHostNode()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(FloatParameter("speed", 0.0))
        .Nodes({HostNode("Own", 10, {100}), Generic("Walk", 11)})
        .Node(Transition("Go", 100, 10, 11, {FloatCondition("speed", 3, 0.5)}));
}

struct alignas(16) Lanes
{
    float values[4] = {1.0f, 2.0f, 3.0f, 4.0f};
};

/// Has members as the vector instructions of a processor want them.
class LanesState : public SMState
{
public:
    Lanes lanes;
};

class LanesDef : public BaseDef
{
public:
    Lanes lanes;
};

/// Has operations of its own by the name that the arena looks for.
class NamesakeState : public SMState
{
public:
    void ReleaseStorage()
    {
        ++called;
    }
    int called = 0;
};

class NamesakeDef : public BaseDef
{
public:
    int ReleaseStorage(int count)
    {
        called += count;
        return called;
    }
    int called = 0;
};

HSM* machineToReach = nullptr;

/// Its constructor enters another state.
class ReachingState : public SMState
{
public:
    ReachingState()
    {
        pushed = machineToReach->PushState(11);
    }
    SMState* pushed = nullptr;
    std::string note = "built";
};

bool IsAligned(const void* object)
{
    return reinterpret_cast<std::uintptr_t>(object) % 16 == 0;
}

} // namespace

TEST(HostClasses, MayAskForMoreAlignmentThanTheLibrarysOwn)
{
    const LogRecorder log;
    HostMachine<LanesDef, LanesState> machine(OneHostNode());
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();

    const auto* def = dynamic_cast<LanesDef*>(machine.FindDef("Own"));
    const auto* state = dynamic_cast<LanesState*>(machine.GetCurrentState());

    ASSERT_NE(def, nullptr);
    ASSERT_NE(state, nullptr);
    EXPECT_TRUE(IsAligned(def));
    EXPECT_TRUE(IsAligned(state));
    EXPECT_EQ(def->lanes.values[3], 4.0f);
    EXPECT_EQ(state->lanes.values[3], 4.0f);
    machine.Uninit();
}

TEST(HostClasses, MayHaveOperationsByAnyName)
{
    const LogRecorder log;
    HostMachine<NamesakeDef, NamesakeState> machine(OneHostNode());
    ASSERT_EQ(machine.Init(), 1);
    machine.Start();
    auto* def = dynamic_cast<NamesakeDef*>(machine.FindDef("Own"));
    auto* state = dynamic_cast<NamesakeState*>(machine.GetCurrentState());
    ASSERT_NE(def, nullptr);
    ASSERT_NE(state, nullptr);

    EXPECT_EQ(def->ReleaseStorage(2), 2);
    state->ReleaseStorage();

    EXPECT_EQ(state->called, 1);
    EXPECT_EQ(state->GetNumTransitions(), 1);
    machine.Uninit();
}

TEST(HostClasses, MayReachTheMachineFromAConstructor)
{
    const LogRecorder log;
    HostMachine<BaseDef, ReachingState> machine(OneHostNode());
    ASSERT_EQ(machine.Init(), 1);
    machineToReach = &machine;

    machine.Start();

    auto* state = dynamic_cast<ReachingState*>(machine.GetCurrentState());
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(machine.StackIds(), (std::vector<unsigned int>{11, 10}));
    EXPECT_EQ(state->note, "built");
    ASSERT_NE(state->pushed, nullptr);
    EXPECT_NE(static_cast<void*>(state->pushed), static_cast<void*>(state));
    EXPECT_EQ(state->pushed->GetID(), 11u);
    // The arena does not know the text of a host's class.
    std::string().swap(state->note);
    machine.Uninit();
}

} // namespace vell::test
