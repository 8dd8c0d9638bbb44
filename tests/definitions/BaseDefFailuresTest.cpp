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

TEST(BaseDefFailures, TheLineShowsTheNameThatStoodBefore)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson node(Json::Null());
    OpenDef def("Old");

    EXPECT_EQ(def.Init(*node, &alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInit), FailedDef("Old")}));
}

TEST(BaseDefFailures, LeaveALineTheTableAndWhatWasReadBefore)
{
    const JsonObject script = Walk().Set(JSON_ScriptName, "run");
    const Json children = Json::Array({7, 8, 9});
    const Ids none;
    const Ids zeros{0, 0, 0};
    const Ids seven{7, 0, 0};
    const Ids sevenOfTwo{7, 0};
    const struct
    {
        const char* what;
        Json node;
        unsigned int room;
        std::string line;
        const char* name;
        Ids children;
    } cases[] = {
        {"no object", Json::Raw("[]"), 4096, ErrorBreak(kInit), "", none},
        {"a script name that is no text", Walk().Set(JSON_ScriptName, 5), 4096,
         ErrorBreak(kInit, ""), "Walk", none},
        {"a script name without a block", script, 0, ErrorBreak(kInit, ""), "Walk", none},
        {"a script name a byte too long", JsonObject(script).Set(JSON_Children, children), 4,
         ErrorBreak(kInit, ""), "Walk", none},
        {"children that are no array", JsonObject(script).Set(JSON_Children, 5), 4096,
         ErrorBreak(kInit), "Walk", none},
        {"children a byte too long, whose count stays", Walk().Set(JSON_Children, children), 11,
         ErrorBreak(kInit), "Walk", zeros},
        {"a child of the id zero, which ends the reading",
         Walk().Set(JSON_Children, Json::Array({7, 0, 9})), 4096, ErrorGoto(kInit), "Walk", seven},
        {"a child that is no number", Walk().Set(JSON_Children, Json::Array({Json(7), Json("8")})),
         4096, ErrorGoto(kInit), "Walk", sevenOfTwo}};
    for (const auto& example : cases)
    {
        SCOPED_TRACE(example.what);
        const InitAttempt failed(example.node, example.room);

        EXPECT_EQ(failed.result, 0);
        EXPECT_EQ(failed.lines, (Lines{example.line, FailedDef(example.name)}));
        EXPECT_TRUE(failed.def.GetKVTable());
        EXPECT_EQ(ChildIds(failed.def), example.children);
    }
    EXPECT_EQ(InitAttempt(Walk().Set(JSON_Children, children), 12).result, 1);
}

TEST(BaseDefFailures, LeaveTheScriptNameThatFitted)
{
    EXPECT_STREQ(
        InitAttempt(Walk().Set(JSON_ScriptName, "run").Set(JSON_Children, 5)).def.scriptName,
        "run");
    const InitAttempt tooSmall(Walk().Set(JSON_ScriptName, "run"), 4);
    EXPECT_EQ(tooSmall.def.scriptName, nullptr);
    EXPECT_EQ(tooSmall.alloc.used, 0u);
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
