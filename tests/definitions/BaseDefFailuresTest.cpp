// VELL: data-driven hierarchical state machines.
// tests/definitions/BaseDefFailuresTest.cpp: what a definition says when a node cannot be read.
#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

const char* const kInit = "vell::BaseDef::Init";

JsonObject Walk()
{
    JsonObject node;
    return node.Set(JSON_Name, "Walk").Set(JSON_ID, 12).Set(JSON_ParentID, 4);
}

/// A definition outside the arena, which has `room` bytes, and what its initialisation says.
class InitAttempt
{
public:
    explicit InitAttempt(const Json& json, unsigned int room = 4096)
        : alloc(room), node(json), result(def.Init(*node, &alloc)), lines(log.Take())
    {
    }

    LogRecorder log;
    Arena alloc;
    ParsedJson node;
    OpenDef def;
    int result;
    Lines lines;
};

} // namespace

TEST(BaseDefFailures, AnInitWithoutAnArenaMakesTheTableAndReadsNothing)
{
    LogRecorder log;
    const ParsedJson node(Walk());
    OpenDef def;

    EXPECT_EQ(def.Init(*node, nullptr), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInit), FailedDef("")}));
    EXPECT_EQ(def.GetName(), nullptr);
    EXPECT_EQ(def.GetID(), 0u);
    EXPECT_TRUE(def.GetKVTable()->GetTable("attribs"));
}

TEST(BaseDefFailures, ANodeThatIsNoObjectIsRefusedAfterTheTableWasMade)
{
    const InitAttempt array(Json::Raw("[]"));
    EXPECT_EQ(array.result, 0);
    EXPECT_EQ(array.lines, (Lines{ErrorBreak(kInit), FailedDef("")}));
    EXPECT_TRUE(array.def.GetKVTable());
}

TEST(BaseDefFailures, TheLineShowsTheNameThatStoodBefore)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson node(Json::Null());
    OpenDef def("Old");

    EXPECT_EQ(def.Init(*node, &alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInit), FailedDef("Old")}));
}

TEST(BaseDefFailures, AScriptNameAByteTooLongForTheArenaIsAFailure)
{
    const Json node = Walk().Set(JSON_ScriptName, "run").Set(JSON_Children, Json::Array({1}));

    const InitAttempt tooSmall(node, 4);

    EXPECT_EQ(tooSmall.result, 0);
    EXPECT_EQ(tooSmall.lines, (Lines{ErrorBreak(kInit, ""), FailedDef("Walk")}));
    EXPECT_EQ(tooSmall.def.scriptName, nullptr);
    EXPECT_EQ(tooSmall.def.GetNumChildren(), 0u);
    EXPECT_EQ(tooSmall.alloc.used, 0u);
}

TEST(BaseDefFailures, AScriptNameNeedsABlock)
{
    LogRecorder log;
    HSMAlloc alloc;
    const ParsedJson node(Walk().Set(JSON_ScriptName, "run"));
    OpenDef def;

    EXPECT_EQ(def.Init(*node, &alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInit, ""), FailedDef("Walk")}));
}

TEST(BaseDefFailures, AScriptNameThatIsNoTextIsAFailure)
{
    const InitAttempt number(Walk().Set(JSON_ScriptName, 5));

    EXPECT_EQ(number.result, 0);
    EXPECT_EQ(number.lines, (Lines{ErrorBreak(kInit, ""), FailedDef("Walk")}));
}

TEST(BaseDefFailures, ChildrenThatAreNoArrayAreAFailure)
{
    const InitAttempt number(Walk().Set(JSON_ScriptName, "run").Set(JSON_Children, 5));

    EXPECT_EQ(number.result, 0);
    EXPECT_EQ(number.lines, (Lines{ErrorBreak(kInit), FailedDef("Walk")}));
    EXPECT_STREQ(number.def.scriptName, "run");
    EXPECT_EQ(number.def.GetNumChildren(), 0u);
}

TEST(BaseDefFailures, AnArrayOfChildrenAByteTooLongForTheArenaIsAFailure)
{
    const Json node = Walk().Set(JSON_Children, Json::Array({7, 8, 9}));
    ASSERT_EQ(InitAttempt(node, 12).result, 1);

    const InitAttempt tooSmall(node, 11);

    EXPECT_EQ(tooSmall.result, 0);
    EXPECT_EQ(tooSmall.lines, (Lines{ErrorBreak(kInit), FailedDef("Walk")}));
    EXPECT_EQ(tooSmall.def.childIds, nullptr);
    EXPECT_EQ(tooSmall.def.GetNumChildren(), 3u);
    EXPECT_EQ(ChildIds(tooSmall.def), (Ids{0, 0, 0})) << "the count stays";
}

TEST(BaseDefFailures, AChildIdOfZeroStopsAtTheSecondElement)
{
    const InitAttempt zero(Walk().Set(JSON_Children, Json::Array({7, 0, 9})));

    EXPECT_EQ(zero.result, 0);
    EXPECT_EQ(zero.lines, (Lines{ErrorGoto(kInit), FailedDef("Walk")}));
    EXPECT_EQ(ChildIds(zero.def), (Ids{7, 0, 0}));
}

TEST(BaseDefFailures, AChildThatIsNoNumberCountsAsZero)
{
    const InitAttempt text(Walk().Set(JSON_Children, Json::Array({Json(7), Json("8")})));

    EXPECT_EQ(text.result, 0);
    EXPECT_EQ(text.lines, (Lines{ErrorGoto(kInit), FailedDef("Walk")}));
}

TEST(BaseDefFailures, NothingIsCleanedUpByTheBaseItself)
{
    const InitAttempt failed(Walk()
                                 .Set(JSON_Attributes, Json::Array({Attribute("a", "int", 5)}))
                                 .Set(JSON_ScriptName, "run")
                                 .Set(JSON_Children, Json::Array({7, 0})));

    EXPECT_STREQ(Tessel::GetTableName(failed.def.kvTable), "baseDef");
    EXPECT_STREQ(failed.def.scriptName, "run");
    EXPECT_EQ(failed.def.attribs.size(), 1u);
    EXPECT_EQ(failed.def.GetNumChildren(), 2u);
}

} // namespace vell::test
