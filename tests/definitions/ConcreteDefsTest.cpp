// VELL: data-driven hierarchical state machines.
// tests/definitions/ConcreteDefsTest.cpp: the seven kinds of nodes, made and initialised.
#include <durm/DURMBaseLib.h>

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
#include "tests/support/Recorders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>

namespace vell::test
{
namespace
{

/// What differs between the classes.
struct Kind
{
    const char* name;
    eHSMDefTypes type;
    unsigned int flag;
    JsonObject node;
};

template <class T>
struct Tag
{
};

Kind KindOf(Tag<AnimClipDef>)
{
    return {"AnimClipDef", DefTypeAnimClip, 0x01, Clip("Node", 5, "clip")};
}

Kind KindOf(Tag<ConnectorDef>)
{
    return {"ConnectorDef", DefTypeConnector, 0x02, Connector("Node", 5, "Enter")};
}

Kind KindOf(Tag<EnterDef>)
{
    return {"EnterDef", DefTypeEnter, 0x01, Enter("Node", 5, 6)};
}

Kind KindOf(Tag<ExitDef>)
{
    return {"ExitDef", DefTypeExit, 0x01, Exit("Node", 5)};
}

Kind KindOf(Tag<GenericDef>)
{
    return {"GenericDef", DefTypeGeneric, 0x01, Generic("Node", 5)};
}

Kind KindOf(Tag<GlobalDef>)
{
    return {"GlobalDef", DefTypeGlobal, 0x01, Global("Node", 5)};
}

Kind KindOf(Tag<SubstateDef>)
{
    return {"SubstateDef", DefTypeSubstate, 0x20, Substate("Node", 5, 6, 7)};
}

template <class T>
Kind KindOf()
{
    return KindOf(Tag<T>());
}

template <class T>
std::string CreateName()
{
    return std::string("vell::") + KindOf<T>().name + "::Create";
}

template <class T>
std::string InitName()
{
    return std::string("vell::") + KindOf<T>().name + "::Init";
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

/// Expects that a T refuses `node` behind its base with the lines `refusal`, and closes its table.
template <class T>
void ExpectRefused(const JsonObject& node, const Lines& refusal = {ErrorBreak(InitName<T>())})
{
    SCOPED_TRACE(node.Text());
    const Attempt<T> bad(node);

    EXPECT_EQ(bad.def.result, 0);
    EXPECT_EQ(bad.lines, Lines{CreatedDef("Node")} + refusal);
    EXPECT_EQ(Tessel::GetTableName(bad.def->GetKVTable()), nullptr);
}

std::string InCase(std::string word, int (*changed)(int))
{
    std::transform(word.begin(), word.end(), word.begin(), changed);
    return word;
}

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
        return KindOf<T>().name;
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
    EXPECT_EQ(def->GetType(), KindOf<TypeParam>().type);
    EXPECT_EQ(def->GetFlags(), KindOf<TypeParam>().flag);
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
    const Attempt<TypeParam> good(KindOf<TypeParam>().node);

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
    const Attempt<TypeParam> bad(KindOf<TypeParam>().node.Set(JSON_Children, 5));

    EXPECT_EQ(bad.def.result, 0);
    EXPECT_TRUE(bad.def->GetKVTable());
    EXPECT_EQ(Tessel::GetTableName(bad.def->GetKVTable()), nullptr);
}

TYPED_TEST(EveryDef, MayBeDestroyedByHandBeforeTheArenaGoes)
{
    const LogRecorder log;
    const ParsedJson node(KindOf<TypeParam>().node.Set(
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
    const Attempt<TypeParam> bad(KindOf<TypeParam>().node.Set(JSON_Children, 5));

    EXPECT_EQ(bad.lines, (Lines{ErrorBreak(kBaseInit), FailedDef("Node"), ErrorBreak(kBaseInit),
                                FailedDef("Node"), ErrorBreak(InitName<TypeParam>())}));
}

TYPED_TEST(MostDefs, TakeTheArenaTwiceForAFailedBase)
{
    const Attempt<TypeParam> bad(
        KindOf<TypeParam>().node.Set(JSON_Children, Json::Array({1, 2, 3, 0})));

    EXPECT_EQ(bad.def.alloc.used, sizeof(TypeParam) + 2 * 16);
    EXPECT_EQ(bad.lines, (Lines{ErrorGoto(kBaseInit), FailedDef("Node"), ErrorGoto(kBaseInit),
                                FailedDef("Node"), ErrorBreak(InitName<TypeParam>())}));
}

TYPED_TEST(MostDefs, OfferTheirAttributesTwiceForAFailedBase)
{
    const Attempt<TypeParam> bad(
        KindOf<TypeParam>()
            .node.Set(JSON_Attributes, Json::Array({Attribute("a", "int", 5)}))
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
    const ParsedJson node(KindOf<TypeParam>().node);
    auto* def = alloc.New<TypeParam>();

    EXPECT_EQ(def->Init(*node, nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(InitName<TypeParam>())}));
    EXPECT_FALSE(def->GetKVTable());
}

TEST(AnimClipDef, GoesOnWithoutAnArenaUntilTheBaseFails)
{
    LogRecorder log;
    const ParsedJson node(KindOf<AnimClipDef>().node);
    AnimClipDef def;

    EXPECT_EQ(def.Init(*node, nullptr), 0);

    EXPECT_EQ(log.Take(),
              (Lines{ErrorAssert("vell::AnimClipDef::Init"), ErrorBreak(kBaseInit), FailedDef(""),
                     ErrorBreak(kBaseInit), FailedDef(""), ErrorBreak("vell::AnimClipDef::Init")}));
    EXPECT_EQ(def.clipName, nullptr);
}

TEST(ConnectorDef, RunsAFailedBaseOnce)
{
    const Attempt<ConnectorDef> bad(KindOf<ConnectorDef>().node.Set(JSON_Children, 5));

    EXPECT_EQ(bad.lines, (Lines{ErrorBreak(kBaseInit), FailedDef("Node"),
                                ErrorBreak("vell::ConnectorDef::Init")}));
}

TEST(ConnectorDef, DoesNotTestTheArenaItself)
{
    LogRecorder log;
    const ParsedJson node(KindOf<ConnectorDef>().node);
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

TEST(AnimClipDef, ReadsItsSecondClipOnlyBesideTheFirst)
{
    const Attempt<AnimClipDef> clip(Clip("Node", 5, "walk").Set(JSON_ClipSecondaryB, "b"));

    EXPECT_EQ(clip.def.result, 1);
    EXPECT_EQ(clip.def->secondaryA, nullptr);
    EXPECT_EQ(clip.def->secondaryB, nullptr);
}

TEST(AnimClipDef, NeedsNoneOfItsMembersAndTakesTheLiteralTrueAloneAsItsFlag)
{
    for (const JsonObject& node :
         {Node(21, "Node", 5), Clip("Node", 5, "walk").Set(JSON_ClipSecondaryA, "a"),
          Clip("Node", 5, "walk").Set(JSON_ClipFlag, 1)})
    {
        SCOPED_TRACE(node.Text());
        const Attempt<AnimClipDef> clip(node);

        EXPECT_EQ(clip.def.result, 1);
        EXPECT_EQ(clip.def->clipName != nullptr, node.Has(JSON_ClipName));
        EXPECT_EQ(clip.def->secondaryA != nullptr, node.Has(JSON_ClipSecondaryA));
        EXPECT_EQ(clip.def->secondaryB, nullptr);
        EXPECT_FALSE(clip.def->clipFlag);
    }
}

TEST(ConnectorDef, FindsItsKindByEachOfTheSixWordsWhateverTheCase)
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
        for (const std::string& cased :
             {word, InCase(word, std::toupper), InCase(word, std::tolower)})
        {
            const Attempt<ConnectorDef> connector(Connector("Node", 5, cased));

            EXPECT_EQ(connector.def.result, 1) << cased;
            EXPECT_EQ(connector.def->connectorKind, kind) << cased;
        }
    }
}

TEST(ConnectorDef, NeedsAKindThatItKnows)
{
    const std::string refused = ErrorBreak("vell::ConnectorDef::Init", "");

    ExpectRefused<ConnectorDef>(Node(2, "Node", 5), {refused});
    ExpectRefused<ConnectorDef>(Node(2, "Node", 5).Set(JSON_ConnectorType, 1), {refused});
    ExpectRefused<ConnectorDef>(Connector("Node", 5, "Enter "),
                                {"3 Json error, Unable to find a compatible connector type",
                                 ErrorBreak("vell::ConnectorDef::Init")});
    EXPECT_EQ(Attempt<ConnectorDef>(Connector("Node", 5, "Enter ")).def->connectorKind, 0u);
}

TEST(EnterDef, ReadsItsTarget)
{
    EXPECT_EQ(Attempt<EnterDef>(Enter("Node", 5, 6)).def->targetId, 6u);
}

TEST(EnterDef, NeedsATargetThatIsNotZero)
{
    ExpectRefused<EnterDef>(Node(8, "Node", 5));
    ExpectRefused<EnterDef>(Enter("Node", 5, 0));
}

TEST(ExitDef, ReadsATargetThatMayBeMissingButNotZero)
{
    const Attempt<ExitDef> none(Exit("Node", 5));
    EXPECT_EQ(none.def.result, 1);
    EXPECT_EQ(none.def->targetId, 0u);
    EXPECT_EQ(Attempt<ExitDef>(Exit("Node", 5).Set(JSON_EntryTarget, 9)).def->targetId, 9u);
    ExpectRefused<ExitDef>(Exit("Node", 5).Set(JSON_EntryTarget, 0));
}

TEST(SubstateDef, ReadsItsEnterAndItsExit)
{
    const Attempt<SubstateDef> substate(Substate("Node", 5, 6, 7));
    EXPECT_EQ(substate.def->enterId, 6u);
    EXPECT_EQ(substate.def->exitId, 7u);
}

TEST(SubstateDef, NeedsAnEnterAndAnExitAndKeepsAnEnterWithoutAnExit)
{
    const JsonObject whole = Substate("Node", 5, 6, 7);
    for (const JsonObject& node :
         {Substate("Node", 5, 0, 7), JsonObject(whole).Remove(JSON_SubstateEnter)})
    {
        ExpectRefused<SubstateDef>(node);
        EXPECT_EQ(Attempt<SubstateDef>(node).def->exitId, 0u) << node.Text();
    }
    for (const JsonObject& node :
         {Substate("Node", 5, 6, 0), JsonObject(whole).Remove(JSON_SubstateExit)})
    {
        ExpectRefused<SubstateDef>(node);
        EXPECT_EQ(Attempt<SubstateDef>(node).def->enterId, 6u) << node.Text();
    }
}

} // namespace vell::test
