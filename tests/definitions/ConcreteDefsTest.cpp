// VELL: data-driven hierarchical state machines.
// tests/definitions/ConcreteDefsTest.cpp: the seven kinds of nodes, made and initialised.
#include "definitions/AnimClipDef.h"
#include "definitions/ConnectorDef.h"
#include "definitions/EnterDef.h"
#include "definitions/ExitDef.h"
#include "definitions/GenericDef.h"
#include "definitions/GlobalDef.h"
#include "definitions/SubstateDef.h"
#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"

#include <durm/DURMBaseLib.h>

#include <gtest/gtest.h>

#include <map>

namespace vell::test
{
namespace
{

/// What differs between the classes.
template <class T>
struct Kind;
template <>
struct Kind<AnimClipDef>
{
    static constexpr const char* name = "AnimClipDef";
    static constexpr eHSMDefTypes type = DefTypeAnimClip;
    static constexpr unsigned int flag = 0x01;
    static JsonObject Node()
    {
        return Clip("Node", 5, "clip");
    }
};
template <>
struct Kind<ConnectorDef>
{
    static constexpr const char* name = "ConnectorDef";
    static constexpr eHSMDefTypes type = DefTypeConnector;
    static constexpr unsigned int flag = 0x02;
    static JsonObject Node()
    {
        return Connector("Node", 5, "Enter");
    }
};
template <>
struct Kind<EnterDef>
{
    static constexpr const char* name = "EnterDef";
    static constexpr eHSMDefTypes type = DefTypeEnter;
    static constexpr unsigned int flag = 0x01;
    static JsonObject Node()
    {
        return Enter("Node", 5, 6);
    }
};
template <>
struct Kind<ExitDef>
{
    static constexpr const char* name = "ExitDef";
    static constexpr eHSMDefTypes type = DefTypeExit;
    static constexpr unsigned int flag = 0x01;
    static JsonObject Node()
    {
        return Exit("Node", 5);
    }
};
template <>
struct Kind<GenericDef>
{
    static constexpr const char* name = "GenericDef";
    static constexpr eHSMDefTypes type = DefTypeGeneric;
    static constexpr unsigned int flag = 0x01;
    static JsonObject Node()
    {
        return Generic("Node", 5);
    }
};
template <>
struct Kind<GlobalDef>
{
    static constexpr const char* name = "GlobalDef";
    static constexpr eHSMDefTypes type = DefTypeGlobal;
    static constexpr unsigned int flag = 0x01;
    static JsonObject Node()
    {
        return Global("Node", 5);
    }
};
template <>
struct Kind<SubstateDef>
{
    static constexpr const char* name = "SubstateDef";
    static constexpr eHSMDefTypes type = DefTypeSubstate;
    static constexpr unsigned int flag = 0x20;
    static JsonObject Node()
    {
        return Substate("Node", 5, 6, 7);
    }
};

template <class T>
std::string CreateName()
{
    return std::string("vell::") + Kind<T>::name + "::Create";
}

template <class T>
std::string InitName()
{
    return std::string("vell::") + Kind<T>::name + "::Init";
}

const char* const kBaseInit = "vell::BaseDef::Init";

/// What an attempt to initialise `json` as a T says and gives.
template <class T>
struct Attempt
{
    explicit Attempt(const Json& json) : def(json), lines(log.Take())
    {
    }

    LogRecorder log;
    Built<T> def;
    Lines lines;
};

template <class T>
class EveryDef : public testing::Test
{
};

using AllKinds = testing::Types<AnimClipDef, ConnectorDef, EnterDef, ExitDef, GenericDef, GlobalDef,
                                SubstateDef>;

struct KindNames
{
    template <class T>
    static std::string GetName(int)
    {
        return Kind<T>::name;
    }
};

TYPED_TEST_SUITE(EveryDef, AllKinds, KindNames);

} // namespace

TYPED_TEST(EveryDef, IsPlacedWithItsKindAndClass)
{
    LogRecorder log;
    Arena alloc(sizeof(TypeParam));
    const ParsedJson empty(JsonObject{});

    BaseDef* def = TypeParam::Create(*empty, &alloc);

    ASSERT_NE(dynamic_cast<TypeParam*>(def), nullptr);
    EXPECT_EQ(def->GetType(), Kind<TypeParam>::type);
    EXPECT_EQ(def->GetFlags(), Kind<TypeParam>::flag);
    EXPECT_EQ(def->GetIndex(), -1);
    EXPECT_EQ(def->GetName(), nullptr);
    EXPECT_FALSE(def->GetKVTable());
    EXPECT_EQ(alloc.used, sizeof(TypeParam));
    EXPECT_EQ(alloc.tracked, (HSMAlloc::SizeMap{{def, sizeof(TypeParam)}}));
    EXPECT_EQ(log.Take(), Lines{});
}

TYPED_TEST(EveryDef, IsNotMadeInAnArenaAByteTooSmall)
{
    LogRecorder log;
    Arena alloc(sizeof(TypeParam) - 1);
    const ParsedJson empty(JsonObject{});

    EXPECT_EQ(TypeParam::Create(*empty, &alloc), nullptr);
    EXPECT_EQ(TypeParam::Create(*empty, nullptr), nullptr);

    const std::string refused = ErrorBreak(CreateName<TypeParam>());
    EXPECT_EQ(log.Take(), (Lines{refused, refused}));
    EXPECT_EQ(alloc.used, 0u);
    EXPECT_TRUE(alloc.tracked.empty());
}

TYPED_TEST(EveryDef, IsNotMadeFromWhatIsNoObject)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson array(Json::Raw("[]"));

    EXPECT_EQ(TypeParam::Create(*array, &alloc), nullptr);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(CreateName<TypeParam>())}));
    EXPECT_EQ(alloc.used, 0u);
}

TYPED_TEST(EveryDef, IsInitialisedFromItsNode)
{
    const Attempt<TypeParam> good(Kind<TypeParam>::Node());

    EXPECT_EQ(good.def.result, 1);
    EXPECT_STREQ(good.def->GetName(), "Node");
    EXPECT_EQ(good.def->GetID(), 5u);
    EXPECT_EQ(good.lines, (Lines{CreatedDef("Node")}));
}

TYPED_TEST(EveryDef, RefusesANodeThatIsNoObjectBeforeItMakesATable)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson null(Json::Null());
    auto* def = alloc.New<TypeParam>();

    EXPECT_EQ(def->Init(*null, &alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(InitName<TypeParam>())}));
    EXPECT_FALSE(def->GetKVTable());
}

TYPED_TEST(EveryDef, ClosesItsTableWhenTheBaseFails)
{
    const Attempt<TypeParam> bad(Kind<TypeParam>::Node().Set(JSON_Children, 5));

    EXPECT_EQ(bad.def.result, 0);
    EXPECT_TRUE(bad.def->GetKVTable());
    EXPECT_EQ(Tessel::GetTableName(bad.def->GetKVTable()), nullptr);
}

TYPED_TEST(EveryDef, MayBeDestroyedByHandBeforeTheArenaGoes)
{
    const LogRecorder log;
    const ParsedJson node(Kind<TypeParam>::Node().Set(
        JSON_Attributes, Json::Array({Attribute("surface", "QString", "mud")})));
    Arena alloc;
    auto* def = alloc.New<TypeParam>();
    ASSERT_EQ(def->Init(*node, &alloc), 1);
    ASSERT_NE(def->GetAttrib("surface"), nullptr);
    const Tessel::KVTable table = def->GetKVTable();

    def->~TypeParam();
    alloc.Release();

    EXPECT_EQ(Tessel::GetTableName(table), nullptr);
}

template <class T>
class MostDefs : public testing::Test
{
};

using AllButConnectors =
    testing::Types<AnimClipDef, EnterDef, ExitDef, GenericDef, GlobalDef, SubstateDef>;
TYPED_TEST_SUITE(MostDefs, AllButConnectors, KindNames);

TYPED_TEST(MostDefs, RunAFailedBaseTwice)
{
    const Attempt<TypeParam> bad(Kind<TypeParam>::Node().Set(JSON_Children, 5));

    EXPECT_EQ(bad.lines, (Lines{ErrorBreak(kBaseInit), FailedDef("Node"), ErrorBreak(kBaseInit),
                                FailedDef("Node"), ErrorBreak(InitName<TypeParam>())}));
}

TYPED_TEST(MostDefs, TakeTheArenaTwiceForAFailedBase)
{
    const Attempt<TypeParam> bad(
        Kind<TypeParam>::Node().Set(JSON_Children, Json::Array({1, 2, 3, 0})));

    EXPECT_EQ(bad.def.alloc.used, sizeof(TypeParam) + 2 * 16);
    EXPECT_EQ(bad.lines, (Lines{ErrorGoto(kBaseInit), FailedDef("Node"), ErrorGoto(kBaseInit),
                                FailedDef("Node"), ErrorBreak(InitName<TypeParam>())}));
}

TYPED_TEST(MostDefs, OfferTheirAttributesTwiceForAFailedBase)
{
    const Attempt<TypeParam> bad(Kind<TypeParam>::Node()
                                     .Set(JSON_Attributes, Json::Array({Attribute("a", "int", 5)}))
                                     .Set(JSON_Children, 5));

    const std::string refused = ErrorBreak("vell::BaseDef::Init_Attrib");
    EXPECT_EQ(bad.lines, (Lines{ErrorBreak(kBaseInit), FailedDef("Node"), refused, refused,
                                ErrorBreak("vell::BaseDef::Init_Attribs"), ErrorBreak(kBaseInit),
                                FailedDef("Node"), ErrorBreak(InitName<TypeParam>())}));
}

template <class T>
class DefsThatTestTheArena : public testing::Test
{
};

using ArenaTesters = testing::Types<EnterDef, ExitDef, GenericDef, GlobalDef, SubstateDef>;
TYPED_TEST_SUITE(DefsThatTestTheArena, ArenaTesters, KindNames);

TYPED_TEST(DefsThatTestTheArena, StopWithoutAnArenaBeforeTheBase)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson node(Kind<TypeParam>::Node());
    auto* def = alloc.New<TypeParam>();

    EXPECT_EQ(def->Init(*node, nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(InitName<TypeParam>())}));
    EXPECT_FALSE(def->GetKVTable());
}

TEST(AnimClipDef, GoesOnWithoutAnArenaUntilTheBaseFails)
{
    LogRecorder log;
    const ParsedJson node(Kind<AnimClipDef>::Node());
    AnimClipDef def;

    EXPECT_EQ(def.Init(*node, nullptr), 0);

    EXPECT_EQ(log.Take(),
              (Lines{ErrorAssert("vell::AnimClipDef::Init"), ErrorBreak(kBaseInit), FailedDef(""),
                     ErrorBreak(kBaseInit), FailedDef(""), ErrorBreak("vell::AnimClipDef::Init")}));
    EXPECT_EQ(def.clipName, nullptr);
}

TEST(ConnectorDef, RunsAFailedBaseOnce)
{
    const Attempt<ConnectorDef> bad(Kind<ConnectorDef>::Node().Set(JSON_Children, 5));

    EXPECT_EQ(bad.lines, (Lines{ErrorBreak(kBaseInit), FailedDef("Node"),
                                ErrorBreak("vell::ConnectorDef::Init")}));
}

TEST(ConnectorDef, DoesNotTestTheArenaItself)
{
    LogRecorder log;
    const ParsedJson node(Kind<ConnectorDef>::Node());
    ConnectorDef def;

    EXPECT_EQ(def.Init(*node, nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kBaseInit), FailedDef(""),
                                 ErrorBreak("vell::ConnectorDef::Init")}));
}

TEST(AnimClipDef, StartsWithAScalarOfThirtyAndNothingElse)
{
    const AnimClipDef def;

    EXPECT_EQ(def.clipName, nullptr);
    EXPECT_EQ(def.secondaryA, nullptr);
    EXPECT_EQ(def.secondaryB, nullptr);
    EXPECT_EQ(def.clipValue, 0u);
    EXPECT_FALSE(def.clipFlag);
    EXPECT_EQ(def.clipScalar, 30.0f);
}

TEST(AnimClipDef, ReadsItsClips)
{
    const Attempt<AnimClipDef> clip(Clip("Node", 5, "walk.anim")
                                        .Set(JSON_ClipFlag, true)
                                        .Set(JSON_ClipSecondaryA, "a.anim")
                                        .Set(JSON_ClipSecondaryB, "b.anim"));

    EXPECT_STREQ(clip.def->clipName, "walk.anim");
    EXPECT_TRUE(clip.def->clipFlag);
    EXPECT_STREQ(clip.def->secondaryA, "a.anim");
    EXPECT_STREQ(clip.def->secondaryB, "b.anim");
    EXPECT_EQ(clip.def->clipValue, 0u);
    EXPECT_EQ(clip.def->clipScalar, 30.0f);
    EXPECT_EQ(clip.def->clipName,
              (*clip.def.node)[DURMBaseLib::GetJsonName(JSON_ClipName)].GetString());
}

TEST(AnimClipDef, HasNoSecondClipWithoutItsMember)
{
    const Attempt<AnimClipDef> clip(Clip("Node", 5, "walk").Set(JSON_ClipSecondaryA, "a"));

    EXPECT_EQ(clip.def.result, 1);
    EXPECT_STREQ(clip.def->secondaryA, "a");
    EXPECT_EQ(clip.def->secondaryB, nullptr);
}

TEST(AnimClipDef, ReadsItsSecondClipOnlyBesideTheFirst)
{
    const Attempt<AnimClipDef> clip(Clip("Node", 5, "walk").Set(JSON_ClipSecondaryB, "b"));

    EXPECT_EQ(clip.def.result, 1);
    EXPECT_EQ(clip.def->secondaryA, nullptr);
    EXPECT_EQ(clip.def->secondaryB, nullptr);
}

TEST(AnimClipDef, NeedsNoClipName)
{
    const Attempt<AnimClipDef> clip(Node(21, "Node", 5));

    EXPECT_EQ(clip.def.result, 1);
    EXPECT_EQ(clip.def->clipName, nullptr);
}

TEST(AnimClipDef, TakesTheLiteralTrueAloneAsItsFlag)
{
    const Attempt<AnimClipDef> number(Clip("Node", 5, "walk").Set(JSON_ClipFlag, 1));
    EXPECT_FALSE(number.def->clipFlag);
}

TEST(ConnectorDef, FindsItsKindByEachOfTheSixWords)
{
    using DURMBaseLib::GetConnectorName;
    const std::pair<std::string, unsigned int> words[] = {
        {GetConnectorName(DURMBaseLib::CONNECTOR_In), 1u},
        {GetConnectorName(DURMBaseLib::CONNECTOR_Entering), 1u},
        {"Enter", 1u},
        {GetConnectorName(DURMBaseLib::CONNECTOR_Out), 2u},
        {GetConnectorName(DURMBaseLib::CONNECTOR_Exiting), 2u},
        {"Exit", 2u}};
    for (const auto& [word, kind] : words)
    {
        const Attempt<ConnectorDef> connector(Connector("Node", 5, word));

        EXPECT_EQ(connector.def.result, 1) << word;
        EXPECT_EQ(connector.def->connectorKind, kind) << word;
    }
}

TEST(ConnectorDef, FindsItsKindWhateverTheCase)
{
    std::string shouted = DURMBaseLib::GetConnectorName(DURMBaseLib::CONNECTOR_Exiting);
    for (char& c : shouted)
    {
        c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
    }

    EXPECT_EQ(Attempt<ConnectorDef>(Connector("Node", 5, "ENTER")).def->connectorKind, 1u);
    EXPECT_EQ(Attempt<ConnectorDef>(Connector("Node", 5, "exit")).def->connectorKind, 2u);
    EXPECT_EQ(Attempt<ConnectorDef>(Connector("Node", 5, shouted)).def->connectorKind, 2u);
}

TEST(ConnectorDef, NeedsAKind)
{
    const Attempt<ConnectorDef> missing(Node(2, "Node", 5));
    EXPECT_EQ(missing.def.result, 0);
    EXPECT_EQ(missing.lines,
              (Lines{CreatedDef("Node"), ErrorBreak("vell::ConnectorDef::Init", "")}));
    EXPECT_EQ(Tessel::GetTableName(missing.def->GetKVTable()), nullptr);
}

TEST(ConnectorDef, RefusesAKindThatIsNoText)
{
    const Attempt<ConnectorDef> number(Node(2, "Node", 5).Set(JSON_ConnectorType, 1));
    EXPECT_EQ(number.def.result, 0);
    EXPECT_EQ(number.lines,
              (Lines{CreatedDef("Node"), ErrorBreak("vell::ConnectorDef::Init", "")}));
}

TEST(ConnectorDef, RefusesAnUnknownKind)
{
    const Attempt<ConnectorDef> unknown(Connector("Node", 5, "Enter "));
    EXPECT_EQ(unknown.def.result, 0);
    EXPECT_EQ(unknown.lines,
              (Lines{CreatedDef("Node"), "3 Json error, Unable to find a compatible connector type",
                     ErrorBreak("vell::ConnectorDef::Init")}));
    EXPECT_EQ(unknown.def->connectorKind, 0u);
}

TEST(EnterDef, ReadsItsTarget)
{
    EXPECT_EQ(Attempt<EnterDef>(Enter("Node", 5, 6)).def->targetId, 6u);
}

TEST(EnterDef, NeedsATarget)
{
    const Attempt<EnterDef> missing(Node(8, "Node", 5));
    EXPECT_EQ(missing.def.result, 0);
    EXPECT_EQ(missing.lines, (Lines{CreatedDef("Node"), ErrorBreak("vell::EnterDef::Init")}));
    EXPECT_EQ(Tessel::GetTableName(missing.def->GetKVTable()), nullptr);
}

TEST(EnterDef, RefusesATargetOfZero)
{
    const Attempt<EnterDef> zero(Enter("Node", 5, 0));
    EXPECT_EQ(zero.def.result, 0);
    EXPECT_EQ(zero.lines, (Lines{CreatedDef("Node"), ErrorBreak("vell::EnterDef::Init")}));
}

TEST(ExitDef, NeedsNoTarget)
{
    const Attempt<ExitDef> none(Exit("Node", 5));
    EXPECT_EQ(none.def.result, 1);
    EXPECT_EQ(none.def->targetId, 0u);
}

TEST(ExitDef, ReadsItsTarget)
{
    EXPECT_EQ(Attempt<ExitDef>(Exit("Node", 5).Set(JSON_EntryTarget, 9)).def->targetId, 9u);
}

TEST(ExitDef, RefusesATargetOfZero)
{
    const Attempt<ExitDef> zero(Exit("Node", 5).Set(JSON_EntryTarget, 0));
    EXPECT_EQ(zero.def.result, 0);
    EXPECT_EQ(zero.lines, (Lines{CreatedDef("Node"), ErrorBreak("vell::ExitDef::Init")}));
}

TEST(SubstateDef, ReadsItsEnterAndItsExit)
{
    const Attempt<SubstateDef> substate(Substate("Node", 5, 6, 7));
    EXPECT_EQ(substate.def->enterId, 6u);
    EXPECT_EQ(substate.def->exitId, 7u);
}

TEST(SubstateDef, NeedsAnEnter)
{
    for (const JsonObject& node :
         {Substate("Node", 5, 0, 7), Substate("Node", 5, 6, 7).Remove(JSON_SubstateEnter)})
    {
        const Attempt<SubstateDef> bad(node);
        EXPECT_EQ(bad.def.result, 0);
        EXPECT_EQ(bad.lines, (Lines{CreatedDef("Node"), ErrorBreak("vell::SubstateDef::Init")}));
        EXPECT_EQ(bad.def->exitId, 0u);
    }
}

TEST(SubstateDef, KeepsItsEnterWhenItFailsForWantOfAnExit)
{
    for (const JsonObject& node :
         {Substate("Node", 5, 6, 0), Substate("Node", 5, 6, 7).Remove(JSON_SubstateExit)})
    {
        const Attempt<SubstateDef> bad(node);
        EXPECT_EQ(bad.def.result, 0);
        EXPECT_EQ(bad.lines, (Lines{CreatedDef("Node"), ErrorBreak("vell::SubstateDef::Init")}));
        EXPECT_EQ(bad.def->enterId, 6u);
    }
}

} // namespace vell::test
