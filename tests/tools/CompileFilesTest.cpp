// VELL: data-driven hierarchical state machines.
// tests/tools/CompileFilesTest.cpp: sources of several files, and what is wrong with sources.
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

constexpr const char* kStand = "\"Stand\": {\"go\": [{\"to\": \"Fight\", \"when\": \"sees\"}]}";
constexpr const char* kFight = "\"start\": \"Jab\", \"states\": {\"Jab\": {\"clip\": \"jab\"}}, "
                               "\"go\": [{\"to\": \"Stand\", \"when\": \"not sees\"}]";

std::string Machine(const std::string& states, const std::string& more = "")
{
    return "{\"machine\": \"m\", \"start\": \"Stand\", \"parameters\": {\"sees\": false}, "
           "\"states\": {" +
           states + "}" + more + "}";
}

/// What is wrong with a source, without the place, which is that of `mark`.
std::string FirstProblem(const std::string& text)
{
    const std::string lines = ProblemsOf(CompileText(text));
    const std::size_t begin = lines.find(": ");
    return begin == std::string::npos ? "" : lines.substr(begin + 2, lines.find('\n') - begin - 2);
}

} // namespace

TEST(CompileFiles, TakesALevelFromAFileOfItsOwn)
{
    const std::string one =
        CompileText(Machine(std::string(kStand) + ", \"Fight\": {" + kFight + "}")).bytes;
    const author::Compiled compiled = CompileFiles(
        {{"a.hsm.json", Machine(std::string(kStand) + ", \"Fight\": {\"from\": \"b/c.hsm.json\"}")},
         {"b/c.hsm.json", std::string("{") + kFight + "}"}});

    EXPECT_EQ(ProblemsOf(compiled), "");
    EXPECT_NE(one, "");
    EXPECT_EQ(compiled.bytes, one);
}

TEST(CompileFiles, AddsWhatAFileIncludesToItsLevel)
{
    const std::string one =
        CompileText(Machine(std::string(kStand) + ", \"Fight\": {}",
                            ", \"interrupts\": [{\"to\": \"Fight\", \"when\": \"sees\"}]"))
            .bytes;
    const author::Compiled compiled = CompileFiles(
        {{"a.hsm.json", "{\"machine\": \"m\", \"start\": \"Stand\", \"include\": [\"b.hsm.json\"], "
                        "\"states\": {" +
                            std::string(kStand) + "}}"},
         {"b.hsm.json", "{\"include\": [\"p.hsm.json\"], \"interrupts\": [{\"to\": \"Fight\", "
                        "\"when\": \"sees\"}], \"states\": {\"Fight\": {}}}"},
         {"p.hsm.json", "{\"parameters\": {\"sees\": false}}"}});

    EXPECT_EQ(ProblemsOf(compiled), "");
    EXPECT_EQ(PartOf(compiled.bytes, JSON_Global), PartOf(one, JSON_Global));
    EXPECT_EQ(PartOf(compiled.bytes, JSON_Parameters), PartOf(one, JSON_Parameters));
}

TEST(CompileFiles, TakesAFileTwiceUnderTwoNames)
{
    const author::Compiled compiled = CompileFiles(
        {{"a.hsm.json", Machine("\"Stand\": {}, \"Fight\": {\"from\": \"b.hsm.json\"}, "
                                "\"Duel\": {\"from\": \"b.hsm.json\"}")},
         {"b.hsm.json", std::string("{") + kFight + "}"}});

    EXPECT_EQ(ProblemsOf(compiled), "");
    EXPECT_NE(compiled.bytes.find(std::to_string(ParameterId("Fight/Jab"))), std::string::npos);
    EXPECT_NE(compiled.bytes.find(std::to_string(ParameterId("Duel/Jab"))), std::string::npos);
}

TEST(CompileFiles, RefusesAFileThatContainsItself)
{
    const author::Compiled compiled =
        CompileFiles({{"a.hsm.json", Machine("\"Stand\": {\"from\": \"b.hsm.json\"}")},
                      {"b.hsm.json",
                       "{\"start\": \"In\", \"states\": {\"In\": {\"from\": \"./b.hsm.json\"}}}"}});

    EXPECT_EQ(
        ProblemsOf(compiled),
        "b.hsm.json:1:43: the file contains itself: a.hsm.json -> b.hsm.json -> b.hsm.json\n");
}

TEST(CompileFiles, SaysWhichFileCannotBeReadAndNothingThatFollowsFromIt)
{
    const author::Compiled compiled = CompileFiles(
        {{"a.hsm.json", Machine(kStand, ", \"include\": [\"b.hsm.json\", \"c.hsm.json\"]")},
         {"c.hsm.json", "{\"states\": {\"Run\" {}}}"}});

    EXPECT_EQ(ProblemsOf(compiled), "a.hsm.json:1:142: cannot read b.hsm.json: no such file\n"
                                    "c.hsm.json:1:18: missing ':' behind the name\n");
}

TEST(CompileFiles, ReportsAllProblemsOfAllFiles)
{
    const author::Compiled compiled = CompileFiles(
        {{"a.hsm.json", Machine("\"Stand\": {\"from\": \"b.hsm.json\"},\n"
                                "\"Walk\": {\"go\": [{\"to\": \"Stnd\", \"when\": \"seas\"}]}")},
         {"b.hsm.json", "{\"start\": \"Inn\",\n \"states\": {\"In\": {\"loop\": 1}}}"}});

    EXPECT_EQ(ProblemsOf(compiled),
              "a.hsm.json:2:24: unknown state 'Stnd'; did you mean 'Stand'?\n"
              "a.hsm.json:2:41: unknown parameter 'seas'; did you mean 'sees'?\n"
              "b.hsm.json:1:11: 'Stand' has no state 'Inn' in it; did you mean 'In'?\n"
              "b.hsm.json:2:20: a state has no member 'loop'; a member for the host goes into "
              "'members'\n");
}

TEST(CompileFiles, ShowsBothPlacesOfACollision)
{
    const author::Compiled ids =
        CompileText(Machine("\"Stand\": {\"id\": 5},\n \"Walk\": {\"id\": 5}"));
    const author::Compiled states =
        CompileFiles({{"a.hsm.json", Machine("\"Stand\": {}", ", \"include\": [\"b.hsm.json\"]")},
                      {"b.hsm.json", "{\n\"states\": {\"Stand\": {}}}"}});

    EXPECT_EQ(
        ProblemsOf(ids),
        "a.hsm.json:2:17: the state 'Walk' and the state 'Stand' have the same id, 5; give one "
        "of them another name or an \"id\" of its own\n");
    EXPECT_EQ(ids.problems.list.front().other.begin.line, 1u);
    EXPECT_EQ(ProblemsOf(states), "a.hsm.json:1:78: the state 'Stand' is there twice; give it "
                                  "another name\n");
    EXPECT_EQ(states.problems.list.front().otherFile, 1u);
}

TEST(CompileFiles, SaysWhatIsWrongWithEachKindOfValue)
{
    struct Case
    {
        const char* states;
        const char* message;
    };
    const std::vector<Case> cases = {
        {"\"A\": 5", "a state is an object: { }"},
        {"\"A/B\": {}",
         "a state's name has no '/' here; write the other name as \"name\" in the state"},
        {"\"A\": {\"clip\": 5}", "'clip' must be a text"},
        {"\"A\": {\"id\": -1}", "'id' must be a whole number from 0 to 4294967295"},
        {"\"A\": {\"id\": 0}", "the id of the state 'A' is 0, which means none"},
        {"\"A\": {\"go\": {\"to\": \"Stand\"}}",
         "'go' must be a list of transitions; put it into [ ]"},
        {"\"A\": {\"transitions\": []}", "a state has no member 'transitions'; write 'go'"},
        {"\"A\": {\"when\": \"sees\"}", "a state has no member 'when'; it belongs to a transition"},
        {"\"A\": {\"states\": {\"B\": {}}}",
         "'A' does not say in which of its states it starts; add \"start\": \"B\" to it"},
        {"\"A\": {\"clip\": \"a\", \"start\": \"B\", \"states\": {\"B\": {}}}",
         "a substate has no 'clip'; give the clip to one of its states"},
        {"\"A\": {\"builder\": \"generik\"}", "unknown builder 'generik'; did you mean 'generic'?"},
        {"\"A\": {\"ends\": true, \"builder\": \"generic\"}",
         "a generic node does not end anything"},
        {"\"A\": {\"attributes\": {\"a\": [1]}}",
         "an attribute is true or false, a number, a text, or a list of 2 to 4 numbers"},
        {"\"A\": {\"go\": [{\"when\": \"sees\"}]}",
         "the transition does not say where it leads; add \"to\": \"STATE\""},
        {"\"A\": {\"go\": [{\"to\": \"Stand\"}]}",
         "the transition does not say when it fires; add \"when\": \"CONDITION\", or [] if only a "
         "trigger of the host fires it"},
        {"\"A\": {\"go\": [{\"to\": \"Stand\", \"when\": [{}]}]}",
         "a condition needs 'if'; write { \"if\": \"CONDITION\" }, or the text alone"},
        {"\"A\": {}, \"A\": {}",
         "the member 'A' is already on line 1, and only the first counts; remove one of them"},
    };

    for (const Case& each : cases)
    {
        EXPECT_EQ(FirstProblem(Machine(std::string("\"Stand\": {}, ") + each.states)), each.message)
            << each.states;
    }
}

TEST(CompileFiles, SaysWhichLevelATransitionIntoAnotherHasToName)
{
    EXPECT_EQ(FirstProblem(Machine("\"Stand\": {\"go\": [{\"to\": \"Jab\", \"when\": \"sees\"}]}, "
                                   "\"Fight\": {" +
                                   std::string(kFight) + "}")),
              "'Jab' is in 'Fight', and a transition stays in its level; name 'Fight', the level "
              "around it");
    EXPECT_EQ(
        FirstProblem("{\"machine\": \"m\", \"start\": \"In\", \"states\": {\"Out\": {\"start\": "
                     "\"In\", \"states\": {\"In\": {}}}}}"),
        "'In' is in 'Out', and a machine starts at the top; name 'Out', the level around it");
}

TEST(CompileFiles, SaysWhatIsWrongWithAParameterAndTheMachine)
{
    struct Case
    {
        const char* text;
        const char* message;
    };
    const std::vector<Case> cases = {
        {"[]", "a source is an object: { }"},
        {R"({"start": "A", "states": {"A": {}}})",
         "a machine needs a name; add \"machine\": \"NAME\"; a file without one is only included"},
        {R"({"machine": "m", "states": {"A": {}}})",
         "the machine does not say in which of its states it starts; add \"start\": \"A\""},
        {R"({"machine": "m", "start": "A", "states": {"A": {}}, "type": "char"})",
         "unknown machine type 'char'; did you mean 'character'?"},
        {R"({"machine": "m", "start": "A", "states": {"A": {}}, "parameters": {"p": "x"}})",
         "a text alone is no parameter; write { \"message\": \"x\" } for the text that it takes "
         "when "
         "it is fired"},
        {R"({"machine": "m", "start": "A", "states": {"A": {}}, "parameters": {"p": [1]}})",
         "a parameter is a value, or an object such as { \"float2\": [0, 0] }"},
        {R"({"machine": "m", "start": "A", "states": {"A": {}}, "parameters": {"p": {}}})",
         "the parameter 'p' has no type; write its type with its default, such as { \"float\": 0.0 "
         "}"},
        {R"({"machine": "m", "start": "A", "states": {"A": {}},
             "parameters": {"p": {"bool": 1}}})",
         "the default of 'p' must be true or false"},
        {R"({"machine": "m", "start": "A", "states": {"A": {}},
             "parameters": {"p": {"float2": [1, 2, 3]}}})",
         "the default of 'p' must be a list of 2 numbers"},
        {R"({"machine": "m", "start": "A", "states": {"A": {}},
             "parameters": {"p": {"bool": true, "float": 0}}})",
         "a parameter has one type, and 'bool' is there already"},
    };

    for (const Case& each : cases)
    {
        EXPECT_EQ(FirstProblem(each.text), each.message) << each.text;
    }
}

TEST(CompileFiles, FindsAStateOfItsLevelAndSaysWhereAnotherIs)
{
    const auto target = [](const std::string& to)
    {
        const author::Compiled compiled = CompileText(
            R"({"machine": "m", "start": "A", "parameters": {"p": false}, "states": {
            "A": {"start": "X", "states": {"X": {"go": [{"to": ")" +
            to + R"(", "when": "p"}]}, "Y": {}, "Near": {}}},
            "B": {"start": "Y", "states": {"Y": {}, "Z": {}, "W": {}}},
            "C": {"start": "W", "states": {"W": {}}}, "Near": {}}})");
        const std::string problems = ProblemsOf(compiled);
        for (const char* const path : {"A/X", "A/Y", "A/Near", "B", "B/Y", "B/Z", "Near"})
        {
            if (compiled.bytes.find("\"target\": " + std::to_string(ParameterId(path))) !=
                std::string::npos)
            {
                return std::string(path);
            }
        }
        return problems.substr(problems.find(": ") + 2);
    };

    EXPECT_EQ(target("Y"), "A/Y");
    EXPECT_EQ(target("Near"), "A/Near");
    EXPECT_EQ(target("A/Near"), "A/Near");
    EXPECT_EQ(target("/Near"),
              "'Near' is at the top, and a transition stays in its level; give the "
              "transition to the level that it leaves, 'A'\n");
    EXPECT_EQ(target("B"), "'B' is at the top, and a transition stays in its level; give the "
                           "transition to the level that it leaves, 'A'\n");
    EXPECT_EQ(target("Z"),
              "'Z' is in 'B', and a transition stays in its level; give the transition "
              "to the level that it leaves, 'A'\n");
    EXPECT_EQ(target(std::to_string(ParameterId("B"))),
              "unknown state '" + std::to_string(ParameterId("B")) + "'\n");
    EXPECT_EQ(target("W"),
              "'W' is in 'B', and a transition stays in its level; give the transition "
              "to the level that it leaves, 'A'\n");
    EXPECT_EQ(target("B/Q"), "unknown state 'B/Q'; did you mean 'B/Y', 'B/Z' or 'B/W'?\n");
}

} // namespace vell::test
