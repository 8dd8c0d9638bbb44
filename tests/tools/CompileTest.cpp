// VELL: data-driven hierarchical state machines.
// tests/tools/CompileTest.cpp: what a source becomes.
#include <vell/ConditionDef.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/tools/SourceFiles.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

/// The id of a node by the path of its names.
unsigned int Id(const std::string& path)
{
    return ParameterId(path);
}

/// A transition as a source gives it: its source is enough.
JsonObject Rule(const std::string& name, unsigned int id, unsigned int source, unsigned int target,
                const std::vector<Json>& conditions)
{
    return Transition(name, id, source, target, conditions).Remove(JSON_ParentID);
}

JsonObject Named(JsonObject condition, const std::string& name)
{
    return condition.Set(JSON_Name, Json(name));
}

/// Expects that a source gives this member of the document.
void ExpectPart(const std::string& text, const DocumentBuilder& expected, __JSONTYPES__ member)
{
    const author::Compiled compiled = CompileText(text);

    EXPECT_EQ(ProblemsOf(compiled), "") << text;
    EXPECT_EQ(PartOf(compiled.bytes, member), PartOf(expected.Text(), member)) << text;
}

} // namespace

TEST(Compile, GivesStatesIdsByThePathOfTheirNamesAndTransitionsBothEnds)
{
    DocumentBuilder expected;
    expected.Node(Generic("Stand", Id("Stand"), {Id("Stand -> Walk"), Id("Stand -> Walk #2")}))
        .Node(Rule("StandToWalk", Id("Stand -> Walk"), Id("Stand"), Id("Walk"),
                   {Named(BoolCondition("sees", true), "sees")}))
        .Node(Rule("StandToWalk2", Id("Stand -> Walk #2"), Id("Stand"), Id("Walk"),
                   {Named(BoolCondition("sees", false), "not sees")})
                  .Set(JSON_TransitionPriority, 3)
                  .Set(JSON_TransitionSwitchArgument, Json::Raw("0.2"))
                  .Set(JSON_TransitionDisabled, true)
                  .Set(JSON_TransitionTag, 4)
                  .Set(JSON_TransitionTagArgument, 5))
        .Node(Generic("Walk", Id("Walk"), {Id("Walk -> Stand (Halt)")}))
        .Node(Rule("Halt", Id("Walk -> Stand (Halt)"), Id("Walk"), Id("Stand"),
                   {Named(BoolCondition("sees", true), "sees")}));

    ExpectPart(R"({"machine": "test", "start": "Stand", "parameters": {"sees": false}, "states": {
        "Stand": {"go": [{"to": "Walk", "when": "sees"},
                         {"to": "Walk", "when": ["not sees"], "priority": 3, "blend": 0.2,
                          "disabled": true, "tag": 4, "tagArgument": 5}]},
        "Walk": {"go": [{"to": "Stand", "when": "sees == true", "name": "Halt"}]}}})",
               expected, JSON_Layers);
}

TEST(Compile, GivesALevelAnEnterNodeAndAnExitNode)
{
    DocumentBuilder expected;
    expected.Node(Substate("Fight", Id("Fight"), Id("Fight/(in)"), Id("Fight/(out)"), {}))
        .Node(Enter("FightIn", Id("Fight/(in)"), Id("Fight/Jab"), Id("Fight")))
        .Node(Exit("FightOut", Id("Fight/(out)"), Id("Fight")))
        .Node(Clip("Jab", Id("Fight/Jab"), "jab", {}, Id("Fight"))
                  .Set(JSON_ClipFlag, true)
                  .Set(JSON_ClipSecondaryA, "left")
                  .Set(JSON_ClipSecondaryB, "right"));

    ExpectPart(R"({"machine": "test", "start": "Fight", "states": {"Fight": {"start": "Jab",
        "states": {"Jab": {"clip": "jab", "clipFlag": true, "secondaryA": "left",
                           "secondaryB": "right"}}}}})",
               expected, JSON_Layers);
}

TEST(Compile, TakesAStateThatEndsForTheExitNodeOfItsLevel)
{
    const JsonObject fight = Substate("Fight", Id("Fight"), Id("Fight/(in)"), Id("Fight/Over"), {});
    DocumentBuilder expected;
    expected.Node(fight)
        .Node(Enter("FightIn", Id("Fight/(in)"), Id("Fight/Over"), Id("Fight")))
        .Node(Exit("Over", Id("Fight/Over"), Id("Fight")))
        .Node(Exit("Done", Id("Fight/Done"), Id("Fight")));
    const std::string states =
        R"("start": "Over", "states": {"Over": {"ends": true}, "Done": {"ends": true}})";

    for (const std::string exit : {"", ", \"exit\": \"Over\""})
    {
        ExpectPart(R"({"machine": "test", "start": "Fight", "states": {"Fight": {)" + states +
                       exit + "}}}",
                   expected, JSON_Layers);
    }
}

TEST(Compile, WritesEachConditionOfAWhen)
{
    DocumentBuilder expected;
    expected.Node(Generic("Stand", Id("Stand")))
        .Node(Generic("Walk", Id("Walk")))
        .Node(Generic("Run", Id("Run"), {Id("Run -> Walk")}))
        .Node(Rule(
            "RunToWalk", Id("Run -> Walk"), Id("Run"), Id("Walk"),
            {Named(IntCondition("combo", EvaluateEqual, 2), "combo == 2"),
             Named(Condition(PARAM_Float, "speed", EvaluateLessOrEqual, Json::Raw("0.5")),
                   "speed <= 0.5"),
             Named(Condition(PARAM_Float, "speed", EvaluateInRange, "1, 2.5"), "speed in 1..2.5"),
             Named(IntCondition("combo", EvaluateLess, 3), "combo < 3"),
             Named(IntCondition("combo", EvaluateGreater, 9), "combo > 9"),
             Named(MessageCondition("use", "door"), "use == 'door'"),
             BoolCondition("sees", true).Set(JSON_Name, "seen").Set(JSON_ID, 7)}));

    ExpectPart(SourceWith(R"("Run": {"go": [{"to": "Walk", "when": ["combo == 2", "speed <= 0.5",
        "speed in 1..2.5", "combo not in 3..9", "use == 'door'",
        {"if": "sees", "name": "seen", "id": 7}]}]})"),
               expected, JSON_Layers);
}

TEST(Compile, KnowsTheTypeOfAParameterByItsDefault)
{
    DocumentBuilder expected;
    expected.Parameter(BoolParameter("sees", false))
        .Parameter(Parameter(PARAM_Float, "speed", Json::Raw("0.5")))
        .Parameter(IntParameter("combo", -3))
        .Parameter(Parameter(PARAM_Float, "whole", Json::Raw("4")))
        .Parameter(VectorParameter(PARAM_Float3, "place", "0, 1.5, -2")
                       .Set(JSON_ParameterAssign, AssignName(2)))
        .Parameter(PulseParameter("hit"))
        .Parameter(MessageParameter("use", "door"));

    ExpectPart(R"({"machine": "test", "start": "Stand", "states": {"Stand": {}}, "parameters": {
        "sees": false, "speed": 0.5, "combo": -3, "whole": {"float": 4},
        "place": {"float3": [0, 1.5, -2], "input": "leftStick"},
        "hit": {"bool": false, "reset": true}, "use": {"message": "door"}}})",
               expected, JSON_Parameters);
}

TEST(Compile, PutsInterruptsOnTheGlobalNode)
{
    DocumentBuilder expected;
    expected.GlobalNode(Global("Interrupts", Id("(interrupts)"), {Id("(interrupts) -> Stand")}))
        .GlobalNode(Rule("InterruptsToStand", Id("(interrupts) -> Stand"), Id("(interrupts)"),
                         Id("Stand"), {Named(BoolCondition("sees", true), "sees")})
                        .Set(JSON_TransitionPriority, 20));

    ExpectPart(
        SourceWith("", R"(, "interrupts": [{"to": "Stand", "when": "sees", "priority": 20}])"),
        expected, JSON_Global);
    DocumentBuilder none;
    none.GlobalNode(Global("Interrupts", Id("(interrupts)")));
    ExpectPart(SourceWith(""), none, JSON_Global);
    EXPECT_EQ(PartOf(CompileText(SourceWith("", R"(, "global": null)")).bytes, JSON_Global), "");
}

TEST(Compile, WritesAttributesByWhatTheirValuesLookLike)
{
    DocumentBuilder expected;
    expected.Node(
        Generic("Stand", Id("Stand"))
            .Set(JSON_Attributes,
                 Json::Array(std::vector<Json>{
                     Attribute("surface", "QString", "stone"),
                     Attribute("length", "double", Json::Raw("0.7")), Attribute("steps", "int", 3),
                     Attribute("loud", "bool", true), Attribute("place", "QVector2D", "0, 1.5")}))
            .Set(JSON_ScriptName, "stand.lua"));

    ExpectPart(R"({"machine": "test", "start": "Stand", "states": {"Stand": {"attributes": {
        "surface": "stone", "length": 0.7, "steps": 3, "loud": true, "place": [0, 1.5]},
        "script": "stand.lua"}}})",
               expected, JSON_Layers);
}

TEST(Compile, SortsStatesIntoLayersAndCopiesWhatHasNoOtherForm)
{
    DocumentBuilder expected;
    expected.Layer("Body")
        .Node(Substate("Fight", Id("Fight"), Id("Fight/(in)"), Id("Fight/(out)")))
        .Node(Enter("FightIn", Id("Fight/(in)"), Id("Fight/Jab"), Id("Fight")))
        .Node(Exit("FightOut", Id("Fight/(out)"), Id("Fight")))
        .Node(Generic("Jab", Id("Fight/Jab"), {}, Id("Fight")))
        .Layer("Arms")
        .Node(Node(0, "Turret", 9).Set(JSON_BuilderType, "1000").Set("range", 30))
        .Node(Connector("Socket", Id("Socket"), GetConnectorName(CONNECTOR_In)))
        .Node(Generic("", 7).Remove(JSON_Name))
        .Node(Generic("Loose", 99));

    ExpectPart(R"({"machine": "test", "start": "Fight", "layers": ["Body", "Arms"], "states": {
        "Turret": {"layer": "Arms", "builder": "1000", "id": 9, "members": {"range": 30}},
        "Socket": {"layer": "Arms", "connector": "in"},
        "Nameless": {"layer": "Arms", "id": 7, "name": null},
        "Fight": {"layer": "Body", "start": "Jab", "states": {"Jab": {}}}},
        "nodes": [{"name": "Loose", "id": 99, "parentId": 0, "builder": "generic"}]})",
               expected, JSON_Layers);
}

TEST(Compile, GivesTheHeadWhatTheSourceLeavesOut)
{
    const std::string head = PartOf(CompileText(SourceWith("")).bytes, JSON_Head);
    const std::string given =
        PartOf(CompileText(SourceWith("", R"(, "type": "prop", "guid": "g", "buildId": "b",
            "version": 4, "memory": 500, "head": {"id": 3, "enterNode": 8, "guid": null})"))
                   .bytes,
               JSON_Head);
    JsonObject expected;
    expected.Set(JSON_HeadVersion, 4)
        .Set(JSON_HeadBuildID, "b")
        .Set(JSON_HeadMachineType, "prop")
        .Set(JSON_HeadMemory, 500)
        .Set(JSON_HeadEnterNode, 8)
        .Set(JSON_HeadSubstateRoot, Id("Stand"))
        .Set(JSON_ID, 3);

    EXPECT_EQ(given, Sorted(expected.Text()));
    EXPECT_NE(head.find("\"version\": 3"), std::string::npos) << head;
    EXPECT_NE(head.find("\"guid\": \"test\""), std::string::npos) << head;
    EXPECT_NE(head.find("\"machineType\": \"character\""), std::string::npos) << head;
}

TEST(Compile, GivesTheSameBytesForComments)
{
    const std::string plain = SourceWith("\"Run\": {\"clip\": \"run\"}");
    std::string remarked = "// A test.\n" + plain;
    remarked.insert(remarked.find("\"Run\""), "/* fast */ ");
    remarked.insert(remarked.find("\"run\"") + 5, ",");

    EXPECT_EQ(CompileText(remarked).bytes, CompileText(plain).bytes);
    EXPECT_NE(CompileText(plain).bytes, "");
}

TEST(Compile, GivesAnIdThatAnEditElsewhereDoesNotChange)
{
    const std::string before = CompileText(SourceWith("")).bytes;
    const std::string after =
        CompileText(SourceWith("\"Run\": {}, \"Fly\": {\"go\": [{\"to\": \"Run\", \"when\": "
                               "\"sees\"}]}"))
            .bytes;

    for (const std::string path : {"Stand", "Walk"})
    {
        const std::string id = std::to_string(Id(path));
        EXPECT_NE(before.find(id), std::string::npos) << path;
        EXPECT_NE(after.find(id), std::string::npos) << path;
    }
}

TEST(Compile, MakesADocumentWithNothingToFindAndEnoughMemory)
{
    const author::Compiled compiled = CompileText(R"({"machine": "test", "start": "Stand",
        "parameters": {"sees": false},
        "states": {"Stand": {"go": [{"to": "Walk", "when": "sees"}]},
                   "Walk": {"go": [{"to": "Stand", "when": "not sees"}]}}})");

    const check::CheckedDocument checked = author::CheckSource("a.hsm.json", compiled);

    EXPECT_EQ(check::ToText(checked, false), "");
}

TEST(Compile, ShowsWhatTheCheckFindsWhereTheSourceSaysIt)
{
    const author::Compiled compiled = CompileText(R"({"machine": "test", "start": "Stand",
"parameters": {"combo": 0},
"states": {
  "Stand": {"go": [{"to": "Walk", "when": ["combo == 1", "combo > 2147483647"]}]},
  "Walk": {"go": [{"to": "Stand", "when": "combo == 0"}]}}})");

    const check::CheckedDocument checked = author::CheckSource("a.hsm.json", compiled);
    const std::string text = check::ToText(checked, false);

    EXPECT_EQ(text.substr(0, text.find(':', 20)), "a.hsm.json:4:67: warning VELL123");
    EXPECT_NE(text.find("\n" + std::string(70, ' ') + "^~~~~~~~~~\n"), std::string::npos) << text;
}

TEST(Compile, LeavesOutWhatTheSourceAllows)
{
    const auto findings = [](const std::string& allow)
    {
        const author::Compiled compiled =
            CompileText(R"({"machine": "test", "start": "Stand", "parameters": {"combo": 0},
            "states": {"Stand": {"start": "In",)" +
                        allow + R"( "states": {
                "In": {"go": [{"to": "In", "when": "combo > 1"}]}}}}})");
        EXPECT_EQ(ProblemsOf(compiled), "");
        return author::CheckSource("a.hsm.json", compiled).findings.list.size();
    };

    EXPECT_GE(findings(""), 1u);
    EXPECT_LT(findings(R"("$allow": ["VELL127", "VELL122"],)"), findings(""));
}

} // namespace vell::test
