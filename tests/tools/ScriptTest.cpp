// VELL: data-driven hierarchical state machines.
// tests/tools/ScriptTest.cpp: what a script's lines mean, and what is said of wrong ones.
#include "tools/vell/Script.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vell::tool
{
namespace
{

Script Read(const std::string& text)
{
    std::istringstream in(text);
    return ReadScript(in, "a.script");
}

Instruction ReadOne(const std::string& text)
{
    const Script script = Read(text);
    EXPECT_EQ(script.errors, std::vector<std::string>());
    EXPECT_EQ(script.instructions.size(), 1u) << text;
    return script.instructions.empty() ? Instruction() : script.instructions[0];
}

TEST(Script, PassesOverBlankLinesAndComments)
{
    const Script script = Read("# a comment\n\n   \t\r\ntick # two\n  # three\ntick 5\n");

    EXPECT_EQ(script.errors, std::vector<std::string>());
    ASSERT_EQ(script.instructions.size(), 2u);
    EXPECT_EQ(script.instructions[0].line, 4u);
    EXPECT_EQ(script.instructions[0].count, 1u);
    EXPECT_EQ(script.instructions[1].line, 6u);
    EXPECT_EQ(script.instructions[1].count, 5u);
}

TEST(Script, TakesANumberSignInsideAWordAsPartOfIt)
{
    EXPECT_EQ(ReadOne("expect stack A#1/B").value, "A#1/B");
    EXPECT_EQ(ReadOne("set name \"a # b\" # comment").value, "a # b");
}

TEST(Script, SetsAParameterToTheRestOfTheLine)
{
    const Instruction vector = ReadOne("set stick 0.3, 0.8  ");
    EXPECT_EQ(vector.operation, Operation::Set);
    EXPECT_EQ(vector.name, "stick");
    EXPECT_EQ(vector.value, "0.3, 0.8");

    const Instruction quoted = ReadOne("set \"left stick\" \"\"");
    EXPECT_EQ(quoted.name, "left stick");
    EXPECT_EQ(quoted.value, "");
}

TEST(Script, FiresAMessage)
{
    const Instruction message = ReadOne("message jump");

    EXPECT_EQ(message.operation, Operation::Message);
    EXPECT_EQ(message.name, "jump");
}

TEST(Script, ExpectsStacksParametersAndBlips)
{
    const Instruction stack = ReadOne("expect stack A/B C/D");
    EXPECT_EQ(stack.operation, Operation::ExpectStack);
    EXPECT_EQ(stack.value, "A/B C/D");

    const Instruction parameter = ReadOne("expect param speed 1.5");
    EXPECT_EQ(parameter.operation, Operation::ExpectParam);
    EXPECT_EQ(parameter.name, "speed");
    EXPECT_EQ(parameter.value, "1.5");

    EXPECT_EQ(ReadOne("expect blip yes").operation, Operation::ExpectBlip);
    EXPECT_TRUE(ReadOne("expect blip yes").flag);
    EXPECT_FALSE(ReadOne("expect blip no").flag);
}

TEST(Script, TakesADashAndAnEmptyTextAsTheEmptyStack)
{
    EXPECT_EQ(ReadOne("expect stack -").value, "");
    EXPECT_EQ(ReadOne("expect stack \"\"").value, "");
}

TEST(Script, NamesFileAndLineOfEveryWrongLine)
{
    const Script script = Read("tock\n"
                               "tick\n"
                               "tick three\n"
                               "tick -1\n"
                               "set speed\n"
                               "message\n"
                               "message a b\n"
                               "expect speed 1\n"
                               "expect param speed\n"
                               "expect blip maybe\n");

    EXPECT_EQ(script.instructions.size(), 1u);
    const std::vector<std::string> expected = {
        "a.script:1: unknown instruction 'tock'; expected tick, set, message or expect",
        "a.script:3: 'three' is not a number of ticks; usage: tick [N]",
        "a.script:4: '-1' is not a number of ticks; usage: tick [N]",
        "a.script:5: expected a name and a value; usage: set NAME VALUE",
        "a.script:6: expected one name; usage: message NAME",
        "a.script:7: expected one name; usage: message NAME",
        "a.script:8: unknown expectation 'speed'; expected stack, param or blip",
        "a.script:9: expected a name and a value; usage: expect param NAME VALUE",
        "a.script:10: expected yes or no; usage: expect blip yes|no"};
    EXPECT_EQ(script.errors, expected);
}

TEST(Script, TakesAWholeNumberOfTicksAndNothingElse)
{
    EXPECT_EQ(ReadOne("tick 0").count, 0u);
    EXPECT_EQ(ReadOne("tick\t7\t").count, 7u);
    EXPECT_EQ(ReadOne("tick \"8\"").count, 8u);
    EXPECT_EQ(ReadOne("tick 18446744073709551615").count, 18446744073709551615u);
    for (const char* count : {"5x", "5 6", "5.0", "1e3", "+5", "0x5", "-5", "x5", "5,",
                              "18446744073709551616", "99999999999999999999999"})
    {
        const Script script = Read(std::string("tick ") + count);

        EXPECT_TRUE(script.instructions.empty()) << count;
        EXPECT_EQ(script.errors,
                  std::vector<std::string>{"a.script:1: '" + std::string(count) +
                                           "' is not a number of ticks; usage: tick [N]"});
    }
}

TEST(Script, CutsALineIntoWordsAtBlanksTabsAndItsEnd)
{
    for (const char* line : {"set speed 1.5", "set\tspeed\t1.5", "  set  speed  1.5  ",
                             "\tset speed 1.5\t\r", "set speed 1.5\r", "set speed \"1.5\"\r",
                             "\"set\" \"speed\" 1.5", "set speed 1.5 # 2", "set speed 1.5\t#2"})
    {
        const Instruction instruction = ReadOne(line);

        EXPECT_EQ(instruction.operation, Operation::Set) << line;
        EXPECT_EQ(instruction.name, "speed") << line;
        EXPECT_EQ(instruction.value, "1.5") << line;
    }
}

TEST(Script, SaysThatTheQuoteOfANameIsNotClosed)
{
    for (const char* line :
         {"message \"jump", "message \"jump up ", "set \"speed 1", "expect param \"speed 1"})
    {
        EXPECT_EQ(Read(line).errors,
                  std::vector<std::string>{"a.script:1: the quote is not closed"})
            << line;
    }
}

TEST(Script, TakesQuotesOfAValueThatAreNotClosedAsTheyStand)
{
    EXPECT_EQ(ReadOne("set name \"").value, "\"");
    EXPECT_EQ(ReadOne("set name \"a").value, "\"a");
    EXPECT_EQ(ReadOne("set name a\"").value, "a\"");
    EXPECT_EQ(ReadOne("set name \"\"").value, "");
}

TEST(Script, SaysWhatIsMissingInEachInstruction)
{
    const std::string expectations = "; expected stack, param or blip";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"set", "expected a name and a value; usage: set NAME VALUE"},
        {"set speed", "expected a name and a value; usage: set NAME VALUE"},
        {"set speed # 5", "expected a name and a value; usage: set NAME VALUE"},
        {"message", "expected one name; usage: message NAME"},
        {"message a b", "expected one name; usage: message NAME"},
        {"expect", "expected stack, param or blip"},
        {"expect stack", "expected the names on the stack; usage: expect stack A/B/C, or - for an "
                         "empty one"},
        {"expect stacks", "unknown expectation 'stacks'" + expectations},
        {"expect param", "expected a name and a value; usage: expect param NAME VALUE"},
        {"expect param speed", "expected a name and a value; usage: expect param NAME VALUE"},
        {"expect blip", "expected yes or no; usage: expect blip yes|no"},
        {"expect blip true", "expected yes or no; usage: expect blip yes|no"},
        {"expect blip yes no", "expected yes or no; usage: expect blip yes|no"},
        {"Tick", "unknown instruction 'Tick'; expected tick, set, message or expect"},
        {"ticks", "unknown instruction 'ticks'; expected tick, set, message or expect"},
    };
    for (const auto& [line, fault] : cases)
    {
        EXPECT_EQ(Read("\n" + line).errors, std::vector<std::string>{"a.script:2: " + fault});
    }
}

TEST(Script, SaysWhyAFileCannotBeRead)
{
    const Script script = ReadScriptFile("no/such/file.script");

    EXPECT_EQ(script.errors, std::vector<std::string>{
                                 "cannot read no/such/file.script: No such file or directory"});
}

} // namespace
} // namespace vell::tool
