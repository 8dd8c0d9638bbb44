// VELL: data-driven hierarchical state machines.
// tests/states/StateClassesTest.cpp: what the four derived classes of states have in common.
#include <vell/SubstateState.h>

#include "definitions/EnterDef.h"
#include "definitions/ExitDef.h"
#include "definitions/GenericDef.h"
#include "definitions/GlobalDef.h"
#include "states/EnterState.h"
#include "states/ExitState.h"
#include "states/GlobalState.h"
#include "tests/support/Definitions.h"
#include "tests/support/Scene.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

template <class State>
constexpr const char* kNameOf = nullptr;
template <>
constexpr const char* kNameOf<EnterState> = "EnterState";
template <>
constexpr const char* kNameOf<ExitState> = "ExitState";
template <>
constexpr const char* kNameOf<GlobalState> = "GlobalState";
template <>
constexpr const char* kNameOf<SubstateState> = "SubstateState";

/// Reaches the id that a factory stored.
struct OpenId : SMState
{
    using SMState::id;
};

template <class State>
class StateClass : public testing::Test
{
protected:
    static std::string In(const char* operation)
    {
        return ErrorBreak(std::string("vell::") + kNameOf<State> + "::" + operation);
    }
};

/// Names the tests of a class by the class.
struct ClassNames
{
    template <class State>
    static std::string GetName(int)
    {
        return kNameOf<State>;
    }
};

using AllClasses = testing::Types<EnterState, ExitState, GlobalState, SubstateState>;
TYPED_TEST_SUITE(StateClass, AllClasses, ClassNames);

template <class Pair>
class TypedState : public testing::Test
{
};

template <class S, class D>
struct Pair
{
    using State = S;
    using Def = D;
};

struct PairNames
{
    template <class Pair>
    static std::string GetName(int)
    {
        return kNameOf<typename Pair::State>;
    }
};

using TypedPairs = testing::Types<Pair<EnterState, EnterDef>, Pair<ExitState, ExitDef>,
                                  Pair<GlobalState, GlobalDef>>;
TYPED_TEST_SUITE(TypedState, TypedPairs, PairNames);

} // namespace

TYPED_TEST(StateClass, IsPlacedInAnArenaWithRoomForIt)
{
    LogRecorder log;
    Arena alloc(sizeof(TypeParam));

    SMState* state = TypeParam::Create(7, &alloc);

    ASSERT_NE(dynamic_cast<TypeParam*>(state), nullptr);
    EXPECT_EQ(static_cast<void*>(state), alloc.block);
    EXPECT_EQ(alloc.used, sizeof(TypeParam));
    EXPECT_EQ(state->*(&OpenId::id), 7u);
    EXPECT_EQ(state->GetDef(), nullptr);
    EXPECT_EQ(log.Take(), Lines{});
}

TYPED_TEST(StateClass, IsNotMadeInAnArenaAByteTooSmallOrWithoutOne)
{
    LogRecorder log;
    Arena alloc(sizeof(TypeParam) - 1);

    EXPECT_EQ(TypeParam::Create(7, &alloc), nullptr);
    EXPECT_EQ(log.Take(), Lines{this->In("Create")});
    EXPECT_EQ(TypeParam::Create(7, nullptr), nullptr);
    EXPECT_EQ(log.Take(), Lines{this->In("Create")});
}

TYPED_TEST(StateClass, RefusesANullDefinition)
{
    LogRecorder log;
    TypeParam state;

    EXPECT_EQ(state.Init(nullptr), 0);

    EXPECT_EQ(log.Take(), Lines{this->In("Init")});
    EXPECT_EQ(state.GetDef(), nullptr);
}

TYPED_TEST(StateClass, RefusesADefinitionOfAnotherClass)
{
    LogRecorder log;
    GenericDef def;
    TypeParam state;

    EXPECT_EQ(state.Init(&def), 0);

    EXPECT_EQ(log.Take(), Lines{this->In("Init")});
}

TYPED_TEST(StateClass, IsNotActivatedForADefinitionOfAnotherClass)
{
    DocumentBuilder document;
    Scene scene(document.Start(10).Node(Generic("Stand", 10)));
    scene.machine.RegisterState(DURMBaseLib::BUILDER_Generic, TypeParam::Create);

    EXPECT_EQ(scene.machine.ActivateState(10, 0.0f), nullptr);

    EXPECT_EQ(scene.log.Take(), (Lines{this->In("Init"), this->In("Init"),
                                       ErrorBreak("vell::HSM::ActivateState"), NotActivated(10)}));
}

TYPED_TEST(TypedState, TakesADefinitionOfItsClass)
{
    LogRecorder log;
    typename TypeParam::Def def;
    typename TypeParam::State state;
    EXPECT_EQ(state.typedDef, nullptr);

    EXPECT_EQ(state.Init(&def), 1);

    EXPECT_EQ(state.typedDef, &def);
    EXPECT_EQ(state.GetDef(), &def);
    EXPECT_EQ(log.Take(), Lines{});
}

} // namespace vell::test
