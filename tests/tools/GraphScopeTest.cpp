// VELL: data-driven hierarchical state machines.
// tests/tools/GraphScopeTest.cpp: the part of a machine that a picture shows.
#include "tools/vell/GraphScope.h"

#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"
#include "tools/vell/LogRedirect.h"
#include "tools/vell/ObservedMachine.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

/// House holds Hall and the level Kitchen; Kitchen holds Cook and the level Oven, which holds Bake.
/// Garden is outside. Alarm is the global node.
DocumentBuilder House()
{
    DocumentBuilder builder;
    builder.Start(10)
        .Level("House", 10, 13, {100})
        .Node(Generic("Hall", 13, {101}, 10))
        .Level("Kitchen", 20, 23, {102}, 10)
        .Node(Generic("Cook", 23, {103, 104}, 20))
        .Level("Oven", 30, 33, {105}, 20)
        .Node(Generic("Bake", 33, {106, 107}, 30))
        .Node(Generic("Garden", 40, {108}))
        .Node(Transition("Leave", 100, 10, 40))
        .Node(Transition("HallToKitchen", 101, 13, 20))
        .Node(Transition("KitchenToHall", 102, 20, 13))
        .Node(Transition("CookToOven", 103, 23, 30))
        .Node(Transition("CookToHall", 104, 23, 13))
        .Node(Transition("OvenToCook", 105, 30, 23))
        .Node(Transition("BakeToBake", 106, 33, 33))
        .Node(Transition("BakeToGarden", 107, 33, 40))
        .Node(Transition("GardenToHouse", 108, 40, 10))
        .Node(Transition("Fire", 109, 50, 33))
        .GlobalNode(Global("Alarm", 50, {109}));
    return builder;
}

/// Writes nodes as NAME, an open level as NAME{...}, a closed one as [NAME], a port as (NAME).
std::string NodesText(const std::vector<tool::GraphNode>& nodes)
{
    std::string text;
    for (const tool::GraphNode& node : nodes)
    {
        text += text.empty() ? "" : " ";
        if (node.isPort)
        {
            text += "(" + node.name + ")";
        }
        else if (node.isClosed)
        {
            text += "[" + node.name + "]";
        }
        else
        {
            text += node.name;
            text += node.inside.empty() ? "" : "{" + NodesText(node.inside) + "}";
        }
    }
    return text;
}

/// The nodes, and the names of the transitions with the state inside a box that they belong to.
std::string Shown(const tool::GraphScope& scope)
{
    const Folder folder;
    const tool::LogRedirect silence("");
    tool::ObservedMachine machine;
    EXPECT_EQ(machine.Load(folder.Write("a.json", House().Text())), "");
    tool::Graph graph = tool::ReadGraph(machine);
    graph.title = "a";
    const std::string fault = tool::NarrowGraph(&graph, scope);
    if (!fault.empty())
    {
        return fault;
    }
    std::string text = graph.title + ": " + NodesText(graph.nodes) + ":";
    for (const tool::GraphEdge& edge : graph.edges)
    {
        text += edge.isEntry ? " ." : " " + edge.name;
        text += edge.via.empty() ? "" : "(" + edge.via + ")";
    }
    return text;
}

TEST(GraphScope, ShowsLevelsAndTheirNeighbours)
{
    struct Case
    {
        const char* level;
        std::optional<std::size_t> depth;
        const char* shown;
    };
    const std::vector<Case> cases{
        {"",
         {},
         "a: House{HouseIn HouseOut Hall Kitchen{KitchenIn KitchenOut Cook Oven{OvenIn OvenOut "
         "Bake}}} Garden Alarm: Leave . HallToKitchen KitchenToHall . CookToOven CookToHall "
         "OvenToCook . BakeToBake BakeToGarden GardenToHouse Fire"},
        {"", 1, "a: [House] Garden Alarm: Leave BakeToGarden(Bake) GardenToHouse Fire"},
        {"", 2,
         "a: House{HouseIn HouseOut Hall [Kitchen]} Garden Alarm: Leave . HallToKitchen "
         "KitchenToHall CookToHall(Cook) BakeToGarden(Bake) GardenToHouse Fire"},
        {"", 9,
         "a: House{HouseIn HouseOut Hall Kitchen{KitchenIn KitchenOut Cook Oven{OvenIn OvenOut "
         "Bake}}} Garden Alarm: Leave . HallToKitchen KitchenToHall . CookToOven CookToHall "
         "OvenToCook . BakeToBake BakeToGarden GardenToHouse Fire"},
        {"Kitchen",
         {},
         "a: Kitchen: Kitchen{KitchenIn KitchenOut Cook Oven{OvenIn OvenOut Bake}} (House/Hall) "
         "(Garden) (Alarm): HallToKitchen KitchenToHall . CookToOven CookToHall OvenToCook . "
         "BakeToBake BakeToGarden Fire"},
        {"Kitchen", 1,
         "a: Kitchen: Kitchen{KitchenIn KitchenOut Cook [Oven]} (House/Hall) (Garden) (Alarm): "
         "HallToKitchen KitchenToHall . CookToOven CookToHall OvenToCook BakeToGarden(Bake) Fire"},
        {"30",
         {},
         "a: Oven: Oven{OvenIn OvenOut Bake} (House/Kitchen/Cook) (Garden) (Alarm): CookToOven "
         "OvenToCook . BakeToBake BakeToGarden Fire"}};
    for (const Case& one : cases)
    {
        EXPECT_EQ(Shown({one.level, one.depth}), one.shown);
    }
}

TEST(GraphScope, SaysWhichLevelsThereAre)
{
    const std::string list = "levels are House, Kitchen, Oven";
    EXPECT_EQ(Shown({"Attic", {}}), "no level named 'Attic'; " + list);
    EXPECT_EQ(Shown({"kitchn", {}}),
              "no level named 'kitchn'; " + list + "; did you mean 'Kitchen'?");
    EXPECT_EQ(Shown({"Hall", {}}), "no level named 'Hall'; " + list);
    EXPECT_EQ(Shown({"40", {}}), "no level named '40'; " + list);
}

TEST(GraphScope, AsksForTheIdWhereNamesAreNotEnough)
{
    DocumentBuilder twins;
    twins.Start(10).Level("L", 10, 10).Level("L", 20, 10);
    DocumentBuilder flat;
    flat.Start(10).Node(Generic("A", 10));
    const Folder folder;
    const std::string twinsPath = folder.Write("twins.json", twins.Text());
    const std::string flatPath = folder.Write("flat.json", flat.Text());

    const Outcome both = CallVell({"graph", twinsPath, "--level", "L"});
    const Outcome none = CallVell({"graph", flatPath, "--level", "L"});

    EXPECT_EQ(both.code, tool::ExitUsage);
    EXPECT_EQ(both.out, "");
    EXPECT_EQ(both.errors, twinsPath + ": 2 levels are named 'L'; use an id: 10, 20\n");
    EXPECT_EQ(none.errors, flatPath + ": no level named 'L'; the machine has no levels\n");
    EXPECT_EQ(CallVell({"graph", twinsPath, "--level", "20"}).code, tool::ExitWell);
}

} // namespace
} // namespace vell::test
