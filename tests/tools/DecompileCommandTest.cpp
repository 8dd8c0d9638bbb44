// VELL: data-driven hierarchical state machines.
// tests/tools/DecompileCommandTest.cpp: `vell decompile`, and the sources that it writes.
#include <vell/ConditionDef.h>

#include "tests/tools/CommandRun.h"
#include "tests/tools/SourceFiles.h"
#include "tools/author/Decompile.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

std::string SourceOf(const DocumentBuilder& builder, bool isTidy = false)
{
    return author::Decompile(source::ReadText(builder.Text()), {"machine", isTidy});
}

/// A door, with a node twice named and one without a name.
DocumentBuilder Doors()
{
    DocumentBuilder builder;
    builder.Head() = JsonObject()
                         .Set(JSON_HeadVersion, 3)
                         .Set(JSON_GUID, "doors")
                         .Set(JSON_HeadMachineType, "prop")
                         .Set(JSON_HeadMemory, 200)
                         .Set(JSON_HeadEnterNode, 10)
                         .Set(JSON_HeadSubstateRoot, 10);
    builder.Parameter(BoolParameter("open", false))
        .Node(Generic("Door", 10, {100}))
        .Node(Generic("Door", 11))
        .Node(Generic("", 12).Remove(JSON_Name))
        .Node(Transition("Open", 100, 10, 11, {BoolCondition("open", true).Set(JSON_Name, "open")})
                  .Remove(JSON_ParentID));
    return builder;
}

} // namespace

TEST(Decompile, MakesNamesUniqueAndKeepsIdsAndNamesOfTheDocument)
{
    EXPECT_EQ(SourceOf(Doors()), R"({
    "machine": "doors",
    "type": "prop",
    "memory": 200,
    "parameters": {
        "open": false
    },
    "start": "Door",
    "states": {
        "Door": {"id": 10, "go": [{"to": "Door 2", "when": "open", "name": "Open", "id": 100}]},
        "Door 2": {"name": "Door", "id": 11},
        "generic node 12": {"name": null, "id": 12}
    },
    "global": null
}
)");
}

TEST(Decompile, LeavesToTheCompilerWhatATidySourceNeedNotSay)
{
    EXPECT_EQ(SourceOf(Doors(), true), R"({
    "machine": "doors",
    "type": "prop",
    "parameters": {
        "open": false
    },
    "start": "Door",
    "states": {
        "Door": {"go": [{"to": "Door 2", "when": "open", "name": "Open"}]},
        "Door 2": {"name": "Door"},
        "generic node 12": {"name": null}
    }
}
)");
}

TEST(Decompile, CopiesWhatNoShortFormSays)
{
    DocumentBuilder builder = Doors();
    builder.Node(Generic("Odd", 13).Set("host", 5).Set(JSON_Children, Json::Array(Ids{99})))
        .Node(Transition("Stray", 101, 10, 11, {BoolCondition("open", true)}));

    const std::string source = SourceOf(builder);

    EXPECT_NE(source.find(R"("Odd": {"id": 13, "members": {"host": 5, "children": [99]}})"),
              std::string::npos)
        << source;
    EXPECT_NE(source.find(R"("nodes": [)"), std::string::npos) << source;
    EXPECT_TRUE(author::IsSameDocument(source::ReadText(builder.Text()),
                                       source::ReadText(CompileText(source).bytes)));
}

TEST(VellDecompile, GivesADocumentOfTheCompilerAgainByteByByte)
{
    const Folder folder;
    const std::string first = folder.Write(
        "a.hsm.json", SourceWith(R"("Fight": {"layer": "Arms", "start": "Jab",
            "states": {"Jab": {"clip": "jab", "attributes": {"force": 1.5}}, "Over": {"ends": true}},
            "go": [{"to": "Walk", "when": ["speed not in 1..2", "use == 'door'"], "blend": 0.1}]})",
                                 R"(, "interrupts": [{"to": "Stand", "when": "sees"}])"));
    ASSERT_EQ(CallVellAsIs({"compile", first, "-o", folder.PathOf("a.json")}).code, 0);

    const Outcome outcome =
        CallVellAsIs({"decompile", folder.PathOf("a.json"), "-o", folder.PathOf("b.hsm.json")});
    CallVellAsIs({"compile", folder.PathOf("b.hsm.json"), "-o", folder.PathOf("b.json")});

    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(folder.Read("b.json"), folder.Read("a.json"));
    EXPECT_EQ(CallVellAsIs({"fmt", "--check", folder.PathOf("b.hsm.json")}).code, 0);
    EXPECT_EQ(folder.Read("b.hsm.json").find("\"id\""), std::string::npos);
}

TEST(VellDecompile, RefusesWhatIsNoDocument)
{
    const Folder folder;

    EXPECT_EQ(CallVellAsIs({"decompile", folder.Write("a.json", "[1]")}).code, 1);
    EXPECT_EQ(CallVellAsIs({"decompile", folder.Write("b.json", "{")}).code, 1);
    EXPECT_EQ(CallVellAsIs({"decompile", folder.PathOf("none.json")}).code, 2);
    const std::string source = folder.Write("a.hsm.json", SourceWith(""));
    EXPECT_EQ(CallVellAsIs({"decompile", source}).errors, source + ": it is a source already\n");
}

TEST(VellFmt, GivesASourceALinePerStateAndLeavesItsMeaning)
{
    const Folder folder;
    const std::string source =
        SourceWith("/* fast */ \"Run\": {\"clip\": \"run\", \"go\": [{\"to\": \"Stand\", \"when\": "
                   "[\"speed in 1..2\", \"combo == 3\"], \"blend\": 0.25, \"priority\": 20}]},");
    folder.Write("a.hsm.json", source);

    EXPECT_EQ(CallVellAsIs({"fmt", folder.PathOf("a.hsm.json")}).code, 0);

    EXPECT_EQ(folder.Read("a.hsm.json"), R"({
    "machine": "test",
    "start": "Stand",
    "parameters": {
        "sees": false,
        "speed": 0.0,
        "combo": 0,
        "use": {"message": "door"},
        "stick": {"float2": [0, 0]}
    },
    "states": {
        "Stand": {},
        "Walk": {},
        /* fast */
        "Run": {
            "clip": "run",
            "go": [
                {
                    "to": "Stand",
                    "when": ["speed in 1..2", "combo == 3"],
                    "blend": 0.25,
                    "priority": 20
                }
            ]
        }
    }
}
)");
    EXPECT_EQ(CompileText(folder.Read("a.hsm.json")).bytes, CompileText(source).bytes);
    EXPECT_EQ(CallVellAsIs({"fmt", "--check", folder.PathOf("a.hsm.json")}).code, 0);
}

} // namespace vell::test
