// VELL: data-driven hierarchical state machines.
// tests/tools/NewCommandTest.cpp: `vell new` and `vell ids`.
#include "tests/tools/CommandRun.h"
#include "tests/tools/SourceFiles.h"
#include "tools/author/Templates.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{

TEST(VellNew, WritesASourceThatRunsByItsScriptAndHasNothingToFind)
{
    EXPECT_EQ(author::Templates().size(), 4u);
    for (const author::Template& each : author::Templates())
    {
        const Folder folder;
        const std::string path = folder.PathOf("hero");

        const Outcome outcome = CallVellAsIs({"new", path, "--template", each.name});

        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_EQ(outcome.out, "wrote " + path + ".hsm.json and " + path +
                                   ".script\nrun it with: vell run " + path +
                                   ".hsm.json --script " + path + ".script\n");
        const Outcome run = CallVellAsIs({"run", path + ".hsm.json", "--script", path + ".script"});
        EXPECT_EQ(run.code, 0) << each.name << run.errors << run.out;
        EXPECT_EQ(CallVellAsIs({"check", path + ".hsm.json"}).out, "nothing found in 1 document\n");
        EXPECT_EQ(folder.Read("hero.hsm.json").find("NAME"), std::string::npos);
        EXPECT_NE(folder.Read("hero.hsm.json").find("\"machine\": \"hero\""), std::string::npos);
    }
}

TEST(VellNew, WritesOverNothing)
{
    const Folder folder;
    folder.Write("a.script", "mine");

    const Outcome outcome = CallVellAsIs({"new", folder.PathOf("a")});

    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.errors, folder.PathOf("a.script") + ": there is such a file already\n");
    EXPECT_EQ(folder.Read("a.script"), "mine");
    EXPECT_EQ(folder.Read("a.hsm.json"), "");
    EXPECT_EQ(CallVellAsIs({"new", folder.PathOf("b"), "--template", "car"}).code, 2);
}

TEST(VellIds, WritesAConstantForEachStateTransitionAndParameter)
{
    const Folder folder;
    const std::string source = folder.Write(
        "my-guard.hsm.json",
        R"({"machine": "g", "start": "Patrol", "parameters": {"in sight": false}, "states": {
            "Patrol": {"start": "new", "states": {"new": {}, "Call help": {}},
                       "go": [{"to": "Patrol", "when": "'in sight'"},
                              {"to": "Patrol", "when": "'in sight'", "name": "PatrolToPatrol"}]}}})");
    const auto id = [](const std::string& path)
    {
        return std::to_string(ParameterId(path)) + "u;\n";
    };

    const Outcome outcome = CallVellAsIs({"ids", source, "--lang", "cpp"});

    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(outcome.out,
              "// The ids of the machine 'my-guard', written by `vell ids`.\n#pragma once\n\n"
              "namespace my_guard\n{\n\n"
              "/// The states.\nnamespace states\n{\n"
              "constexpr unsigned int Patrol = " +
                  id("Patrol") + "constexpr unsigned int Patrol_PatrolOut = " + id("Patrol/(out)") +
                  "constexpr unsigned int Patrol_new = " + id("Patrol/new") +
                  "constexpr unsigned int Patrol_Call_help = " + id("Patrol/Call help") +
                  "constexpr unsigned int Interrupts = " + id("(interrupts)") +
                  "} // namespace states\n\n/// The transitions.\nnamespace transitions\n{\n"
                  "constexpr unsigned int PatrolToPatrol = " +
                  id("Patrol -> Patrol") + "constexpr unsigned int PatrolToPatrol_2 = " +
                  id("Patrol -> Patrol (PatrolToPatrol)") +
                  "} // namespace transitions\n\n/// The parameters.\nnamespace parameters\n{\n"
                  "constexpr unsigned int in_sight = " +
                  id("in sight") + "} // namespace parameters\n\n} // namespace my_guard\n");
    EXPECT_NE(CallVellAsIs({"ids", source, "--namespace", "ids"}).out.find("namespace ids\n"),
              std::string::npos);
}

} // namespace vell::test
