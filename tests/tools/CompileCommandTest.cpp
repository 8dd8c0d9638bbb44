// VELL: data-driven hierarchical state machines.
// tests/tools/CompileCommandTest.cpp: `vell compile`, and sources in place of documents.
#include "tests/tools/CommandRun.h"
#include "tests/tools/SourceFiles.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using Words = std::vector<std::string>;

constexpr const char* kSource = R"({
  "machine": "door", // A door.
  "parameters": {"open": false},
  "start": "Closed",
  "states": {
    "Closed": {"go": [{"to": "Open", "when": "open"}]},
    "Open": {"go": [{"to": "Closed", "when": "not open"}]},
  },
})";

std::string Without(std::string text, const std::string& piece)
{
    for (std::size_t at = 0; (at = text.find(piece)) != std::string::npos;)
    {
        text.erase(at, piece.size());
    }
    return text;
}

} // namespace

TEST(VellCompile, WritesTheDocumentAndTellsWhetherItIsUpToDate)
{
    const Folder folder;
    const std::string source = folder.Write("door.hsm.json", kSource);
    const std::string document = folder.PathOf("door.json");

    EXPECT_EQ(CallVellAsIs({"compile", "--check", source, "-o", document}).code, 1);
    EXPECT_EQ(CallVellAsIs({"compile", source, "-o", document}).code, 0);
    EXPECT_EQ(CallVellAsIs({"compile", "--check", source, "-o", document}).code, 0);
    EXPECT_EQ(folder.Read("door.json"), CallVellAsIs({"compile", source}).out);
    EXPECT_EQ(folder.Read("door.json"), CompileFiles({{"a.hsm.json", kSource}}).bytes);

    folder.Write("door.json", folder.Read("door.json") + "\n");
    const Outcome outcome = CallVellAsIs({"compile", "--check", source, "-o", document});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(Without(outcome.errors, folder.PathOf("")),
              "door.json: not what door.hsm.json gives; write it with: vell compile door.hsm.json "
              "-o door.json\n");
}

TEST(VellCompile, WritesNothingForASourceThatIsWrong)
{
    const Folder folder;
    const std::string source =
        folder.Write("a.hsm.json", Without(kSource, "\"start\": \"Closed\","));
    const std::string astray =
        folder.Write("b.hsm.json", R"({"machine": "b", "start": "A", "states": {"A": {"go": [
  {"to": 5, "when": []}]}}})");

    const Outcome outcome = CallVellAsIs({"compile", source, "-o", folder.PathOf("a.json")});
    const Outcome second = CallVellAsIs({"compile", astray, "-o", folder.PathOf("b.json")});

    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(folder.Read("a.json"), "");
    EXPECT_EQ(Without(outcome.errors, folder.PathOf("")),
              "a.hsm.json:1:1: error VELL160: the machine does not say in which of its states it "
              "starts; add \"start\": \"Closed\"\n"
              "    {\n"
              "    ^\n"
              "1 error in 1 document\n");
    EXPECT_EQ(second.code, 1);
    EXPECT_EQ(folder.Read("b.json"), "");
    EXPECT_NE(second.errors.find("b.hsm.json:2:10: error VELL070"), std::string::npos)
        << second.errors;
}

TEST(VellCompile, NamesTheFilesThatTheDocumentIsMadeFrom)
{
    const Folder folder;
    const std::string source =
        folder.Write("a.hsm.json", R"({"machine": "a", "start": "A", "include": ["p q.hsm.json"],
                          "states": {"A": {}}})");
    folder.Write("p q.hsm.json", R"({"parameters": {"p": 0}})");

    const Outcome outcome = CallVellAsIs(
        {"compile", source, "-o", folder.PathOf("a.json"), "--depfile", folder.PathOf("a.d")});

    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(Without(folder.Read("a.d"), folder.PathOf("")),
              "a.json: \\\n  a.hsm.json \\\n  p\\ q.hsm.json\n");
}

TEST(VellCompile, RefusesADocumentAndAnOptionWithoutAFile)
{
    const Folder folder;
    const std::string document = folder.Write("a.json", Walker().Text());
    const std::string source = folder.Write("a.hsm.json", kSource);

    EXPECT_EQ(CallVellAsIs({"compile", document}).code, 1);
    EXPECT_EQ(CallVellAsIs({"compile", source, "--check"}).errors,
              "--check needs the document: add -o FILE\n");
    EXPECT_EQ(CallVellAsIs({"compile", source, "--depfile", "a.d"}).code, 2);
    EXPECT_EQ(CallVellAsIs({"compile", source, "-o", source}).code, 2);
    EXPECT_EQ(CallVellAsIs({"compile", folder.PathOf("none.hsm.json")}).code, 2);
}

TEST(VellSource, IsTakenByEveryCommandThatTakesADocument)
{
    const Folder folder;
    const std::string source = folder.Write("door.hsm.json", kSource);
    const std::string document = folder.PathOf("door.json");
    const std::string script = folder.Write("a.script", "tick\nset open true\ntick\n"
                                                        "expect stack Open\n");
    ASSERT_EQ(CallVellAsIs({"compile", source, "-o", document}).code, 0);

    for (const Words& options :
         {Words{"run", "--script", script}, Words{"graph"}, Words{"graph", "--format", "mermaid"},
          Words{"check"}, Words{"context", "save", "--after", script}})
    {
        const auto call = [&options](const std::string& path)
        {
            Words words = options;
            words.push_back(path);
            const Outcome outcome = CallVellAsIs(words);
            EXPECT_EQ(outcome.code, 0) << options[0] << outcome.errors;
            return outcome.out;
        };
        EXPECT_EQ(call(source), call(document)) << options[0];
    }
    EXPECT_EQ(CallVellAsIs({"diff", source, document}).code, 0);
    EXPECT_EQ(CallVellAsIs({"stats", source}).code, 0);
    EXPECT_EQ(CallVellAsIs({"tree", source}).code, 0);
}

TEST(VellSource, ShowsItsProblemsInEveryCommand)
{
    const Folder folder;
    const std::string wrong =
        folder.Write("a.hsm.json", Without(kSource, "\"parameters\": {\"open\": false},"));
    const std::string expected = "a.hsm.json:6:47: error VELL161: unknown parameter 'open'\n";

    for (const Words& words :
         {Words{"run", wrong}, Words{"graph", wrong}, Words{"tree", wrong}, Words{"stats", wrong},
          Words{"compile", wrong}, Words{"diff", wrong, wrong}, Words{"check", wrong}})
    {
        const Outcome outcome = CallVellAsIs(words);
        const std::string said = Without(outcome.errors + outcome.out, folder.PathOf(""));

        EXPECT_EQ(outcome.code, 1) << words[0];
        EXPECT_EQ(said.substr(0, expected.size()), expected) << words[0];
    }
}

TEST(VellSource, HasFindingsInTheFilesThatItIncludes)
{
    const Folder folder;
    const std::string source =
        folder.Write("a.hsm.json", R"({"machine": "a", "start": "A", "include": ["b.hsm.json"],
"states": {"A": {"go": [{"to": "B", "when": "p"}]}}})");
    folder.Write("b.hsm.json", R"({"parameters": {"p": false},
"states": {"B": {"go": [{"to": "A", "when": ["not p", "q"]}]}}})");

    const Outcome wrong = CallVellAsIs({"check", source});
    const Outcome json = CallVellAsIs({"check", source, "--format", "json"});
    const Outcome sarif = CallVellAsIs({"check", source, "--format", "sarif"});
    folder.Write("b.hsm.json", R"({"parameters": {"p": false, "unused": 0},
"states": {"B": {"go": [{"to": "A", "when": "not p"}]}}})");
    const Outcome unused = CallVellAsIs({"check", source});

    EXPECT_EQ(wrong.code, 1);
    EXPECT_EQ(
        Without(wrong.out, folder.PathOf("")),
        "b.hsm.json:2:56: error VELL161: unknown parameter 'q'; did you mean 'p'?\n"
        "    \"states\": {\"B\": {\"go\": [{\"to\": \"A\", \"when\": [\"not p\", \"q\"]}]}}}\n"
        "                                                           ^\n"
        "1 error in 1 document\n");
    EXPECT_NE(Without(json.out, folder.PathOf("")).find("\"path\": \"b.hsm.json\""),
              std::string::npos);
    EXPECT_NE(sarif.out.find("b.hsm.json\""), std::string::npos);
    EXPECT_EQ(unused.code, 0);
    EXPECT_EQ(Without(unused.out, folder.PathOf("")).find("b.hsm.json:1:29: note VELL131"), 0u);
}

TEST(VellSource, IsNotFixed)
{
    const Folder folder;
    const std::string source = folder.Write("door.hsm.json", kSource);

    const Outcome outcome = CallVellAsIs({"check", "--fix", source});

    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(Without(outcome.errors, folder.PathOf("")), "door.hsm.json: a source is not fixed\n");
    EXPECT_EQ(folder.Read("door.hsm.json"), kSource);
}

TEST(VellSource, IsReadFromStandardInput)
{
    const Folder folder;
    folder.Write("a.json", Walker().Text());
    const std::string source = CallVellAsIs({"decompile", folder.PathOf("a.json")}).out;
    {
        const StandardInput input(source);
        const Outcome outcome = CallVellAsIs({"compile", "--no-check", "-"});
        EXPECT_EQ(outcome.code, 0) << outcome.errors << source;
    }
    const StandardInput input(std::string(kSource).insert(2, "\"layers\": [\"Body\"],"));

    const Outcome outcome = CallVellAsIs({"compile", "-"});

    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_NE(outcome.out.find("ClosedToOpen"), std::string::npos);
}

TEST(VellSource, IsLeftOutOfAFolderWhenItIsOnlyAPart)
{
    const Folder folder;
    folder.Write("door.hsm.json", kSource);
    folder.Write("part.hsm.json", R"({"parameters": {"p": 0}})");

    const Outcome outcome = CallVellAsIs({"check", folder.PathOf("")});

    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "nothing found in 1 document\n");
}

} // namespace vell::test
