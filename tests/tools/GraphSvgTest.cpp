// VELL: data-driven hierarchical state machines.
// tests/tools/GraphSvgTest.cpp: pictures drawn by Graphviz, and their colours and titles.
#include "tools/vell/GraphSvg.h"

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/GraphTheme.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace vell::test
{
namespace
{

/// Sets a variable of the environment for as long as it lives.
class Variable
{
public:
    Variable(const char* variable, const std::string& value) : name(variable)
    {
        const char* old = std::getenv(name);
        wasSet = old != nullptr;
        saved = wasSet ? old : "";
        setenv(name, value.c_str(), 1);
    }
    ~Variable()
    {
        wasSet ? setenv(name, saved.c_str(), 1) : unsetenv(name);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name;
    bool wasSet = false;
    std::string saved;
};

/// Draws the Walker by a program `dot` of these lines.
Outcome DrawBy(const Folder& folder, const std::string& lines)
{
    const std::string program = folder.Write("dot", "#!/bin/sh\n" + lines);
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const std::string document = folder.Write("a.json", Walker().Text());
    const Variable path("PATH", folder.PathOf("") + ":" + std::getenv("PATH"));
    return CallVell({"graph", document, "--format", "svg"});
}

TEST(VellGraph, SaysThatGraphvizCouldNotDraw)
{
    for (const char* end : {"exit 1\n", "exit 2\n", "exit 126\n", "kill -9 $$\n"})
    {
        const Folder folder;

        const Outcome outcome = DrawBy(folder, std::string("echo half a picture\n") + end);

        EXPECT_EQ(outcome.code, tool::ExitFailed) << end;
        EXPECT_EQ(outcome.errors,
                  "Graphviz could not draw the picture; use --log FILE to see its messages\n");
        EXPECT_EQ(outcome.out, "") << end;
    }
}

TEST(VellGraph, TakesThePictureWholeAndLeavesNoFileBehind)
{
    const Folder folder;
    const Folder temporary;
    const Variable place("TMPDIR", temporary.PathOf(""));

    const Outcome outcome = DrawBy(folder, "yes 0123456789 | head -n 5000\n");
    const Outcome failed = DrawBy(folder, "exit 1\n");

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out.size(), 55000u);
    EXPECT_EQ(failed.code, tool::ExitFailed);
    EXPECT_TRUE(std::filesystem::is_empty(temporary.PathOf("")));
}

TEST(VellGraph, SaysThatGraphvizIsMissing)
{
    const Folder folder;
    const std::string path = folder.Write("a.json", Walker().Text());
    const Variable nothing("PATH", "/nowhere");

    const Outcome outcome = CallVell({"graph", path, "--format", "svg"});

    EXPECT_EQ(outcome.code, tool::ExitFailed);
    EXPECT_EQ(outcome.errors,
              "svg needs Graphviz's program dot, which is not installed; install the package "
              "graphviz, or use --format dot or mermaid\n");
    EXPECT_EQ(outcome.out, "");
}

TEST(VellGraph, DrawsAPictureIntoAFile)
{
    const Folder folder;
    // A program of the name stands in for Graphviz, which need not be here.
    const std::string program = folder.Write("dot", "#!/bin/sh\nprintf 'drawn from '\n"
                                                    "head -n 1 \"$2\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const Variable path("PATH", folder.PathOf("") + ":" + std::getenv("PATH"));

    const Outcome outcome = CallVell({"graph", folder.Write("a.json", Walker().Text()), "--format",
                                      "svg", "-o", folder.PathOf("a.svg")});

    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(folder.Read("a.svg"), "drawn from digraph \"a\" {\n");
}

constexpr const char* kDrawn = "<?xml version=\"1.0\"?>\n"
                               "<svg width=\"8pt\"\n"
                               " viewBox=\"0 0 8 8\">\n"
                               "<g id=\"node1\" class=\"node\">\n"
                               "<title>n10</title>\n"
                               "<g id=\"a_node1\"><a xlink:title=\"Stand, id 10\">\n"
                               "<text fill=\"#1f2933\">fill=&quot;#1f2933&quot;</text>\n"
                               "<path stroke=\"#0072b2\"/>\n"
                               "</a>\n</g>\n</g>\n"
                               "<g id=\"node2\" class=\"node\">\n"
                               "<title>n11</title>\n"
                               "<path/>\n</g>\n</svg>\n";

TEST(ThemedSvg, MakesToolTipsTitles)
{
    const std::string svg = tool::ThemedSvg(kDrawn, "light");

    EXPECT_EQ(svg.find("<title>n10</title>"), std::string::npos);
    EXPECT_NE(svg.find("<title>Stand, id 10</title>\n<g id=\"a_node1\">"), std::string::npos);
    EXPECT_NE(svg.find("<title>n11</title>\n<path/>"), std::string::npos);
    EXPECT_EQ(svg.find("<style>"), std::string::npos);
}

TEST(ThemedSvg, ReplacesTheColoursOfADarkPicture)
{
    const std::string svg = tool::ThemedSvg(kDrawn, "dark");

    EXPECT_NE(svg.find("<text fill=\"#e6edf3\">fill=&quot;#1f2933&quot;</text>"), std::string::npos)
        << svg;
    EXPECT_NE(svg.find("<path stroke=\"#56b4e9\"/>"), std::string::npos);
}

TEST(ThemedSvg, LeavesTheChoiceToTheViewerByDefault)
{
    const std::string svg = tool::ThemedSvg(kDrawn, "auto");

    EXPECT_NE(svg.find(" viewBox=\"0 0 8 8\">\n<style>\n@media (prefers-color-scheme: dark) {\n"),
              std::string::npos)
        << svg;
    for (const tool::Colour& colour : tool::AllColours())
    {
        const std::string light = colour.light;
        const std::string dark = colour.dark;
        EXPECT_NE(svg.find("[fill=\"" + light + "\"]{fill:" + dark + "} [stroke=\"" + light +
                           "\"]{stroke:" + dark + "}\n"),
                  std::string::npos);
    }
}

TEST(ThemedSvg, PassesOnWhatIsNoPicture)
{
    EXPECT_EQ(tool::ThemedSvg("", "auto"), "");
    EXPECT_EQ(tool::ThemedSvg("drawn\n", "auto"), "drawn\n");
    EXPECT_EQ(tool::ThemedSvg("<title>last</title>\n", "light"), "<title>last</title>\n");
}

} // namespace
} // namespace vell::test
