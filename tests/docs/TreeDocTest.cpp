// VELL: data-driven hierarchical state machines.
// tests/docs/TreeDocTest.cpp: docs/tree.md draws the tree that a machine has.
#include <vell/IParameterTable.h>
#include <vell/ParameterValues.h>

#include "tests/docs/Pages.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SourceDir.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>
#include <string>

namespace vell::test
{
namespace
{

using Places = std::set<std::string>;

constexpr std::size_t kMinimum = 30;

/// The places that the page lists, each as "PATH KIND".
Places ListedPlaces()
{
    const std::regex row("\\| `([^`]+)` \\| (\\w+) .*");
    Places places;
    for (const std::string& line : ReadProse("docs/tree.md"))
    {
        std::smatch match;
        if (std::regex_match(line, match, row))
        {
            EXPECT_TRUE(places.insert(match[1].str() + " " + match[2].str()).second) << line;
        }
    }
    return places;
}

/// A line of a tree in the page's words: ids, indices and the names of attributes are left open,
/// and so is the kind of a value.
std::string PlaceOf(const std::string& line)
{
    std::smatch match;
    EXPECT_TRUE(std::regex_match(line, match, std::regex("(\\S+) (\\S+) .*"))) << line;
    std::string path = match[1].str();
    path = std::regex_replace(path, std::regex("(Table)/[0-9]+"), "$1/ID");
    path = std::regex_replace(path, std::regex("(ID/attribs)/(?!id$)[^/]+"), "$1/NAME");
    path = std::regex_replace(path, std::regex("\\[[0-9]+\\]|/[0-9]+$"), "/INDEX");
    const bool isTyped = path.size() > 6 && path.compare(path.size() - 6, 6, "/value") == 0;
    return path + " " + (isTyped ? "typed" : match[2].str());
}

/// The places of the sample character's tree while it runs, with a parameter made at run time.
Places PlacesOfTheSample()
{
    LogRecorder log;
    const std::string file = std::string(SourceDir()) + "/samples/character.json";
    TestMachine machine;
    machine.filePath = file.c_str();
    EXPECT_EQ(machine.Create(), 1);
    EXPECT_EQ(machine.Init(), 1);
    IParameterBoolDef* parameter = nullptr;
    EXPECT_EQ(machine.GetParameterTable()->CreateBoolParameter("atRunTime", true, &parameter), 1);
    machine.Start();
    machine.SetBool("hit", true);
    machine.Update(0.1f);

    Places places;
    for (const std::string& line : TreeLines(machine.GetKVTable()))
    {
        places.insert(PlaceOf(line));
    }
    return places;
}

} // namespace

TEST(TreePage, ListsEveryPlaceOfTheTreeWithItsKindAndNoOther)
{
    const Places listed = ListedPlaces();

    EXPECT_GE(listed.size(), kMinimum);
    EXPECT_EQ(listed, PlacesOfTheSample());
}

} // namespace vell::test
