// VELL: data-driven hierarchical state machines.
// tests/docs/HostGuideDocTest.cpp: the log says what docs/host-guide.md tells that it says.
#include <vell/Action.h>
#include <vell/IParameterTable.h>

#include "tests/docs/Pages.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Scene.h"
#include "tests/support/TempFile.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <regex>
#include <sstream>
#include <string>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

/// A row of a table that begins with "What happened".
struct Row
{
    std::string happened;
    std::string result; ///< what `Init` gives; empty where the table does not tell
    TextLines texts;    ///< what the log says
};

std::string Trim(const std::string& cell)
{
    const std::size_t first = cell.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : cell.substr(first, cell.find_last_not_of(' ') - first + 1);
}

/// The texts of `cell` that stand between backticks.
TextLines Quoted(const std::string& cell)
{
    TextLines texts;
    std::istringstream pieces(cell);
    bool isInside = false;
    for (std::string piece; std::getline(pieces, piece, '`'); isInside = !isInside)
    {
        if (isInside)
        {
            texts.push_back(piece);
        }
    }
    return texts;
}

std::vector<Row> ReadRows()
{
    std::vector<Row> rows;
    bool isInside = false;
    for (const std::string& line : ReadProse("docs/host-guide.md"))
    {
        const bool isHead = line.rfind("| What happened |", 0) == 0;
        isInside = isHead || (isInside && line.rfind("|", 0) == 0);
        if (!isInside || isHead || line.rfind("| ---", 0) == 0)
        {
            continue;
        }
        std::vector<std::string> cells;
        std::istringstream stream(line.substr(1));
        for (std::string cell; std::getline(stream, cell, '|');)
        {
            cells.push_back(Trim(cell));
        }
        rows.push_back({cells.front(), cells.size() == 3 ? cells[1] : "", Quoted(cells.back())});
    }
    return rows;
}

/// A line of the page as an expression: words in capitals stand for what differs.
std::regex Expression(const std::string& text)
{
    std::string pattern = std::regex_replace(text, std::regex("[.()]"), "\\$&");
    pattern = std::regex_replace(pattern, std::regex("LINE"), "#");
    pattern = std::regex_replace(pattern, std::regex("NUMBER|CODE"), "[0-9]+");
    pattern = std::regex_replace(pattern, std::regex("NAME"), ".+");
    return std::regex("[0-9] " + pattern);
}

bool Says(const Lines& log, const std::string& text)
{
    const std::regex expression = Expression(text);
    return std::any_of(log.begin(), log.end(),
                       [&](const std::string& line)
                       {
                           return std::regex_match(line, expression);
                       });
}

DocumentBuilder Document(const std::vector<Json>& conditions = {Holds("go")})
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(PulseParameter("go"))
        .Nodes({Generic("Stand", 10, {100}), Generic("Walk", 11)})
        .Node(Transition("Go", 100, 10, 11, conditions))
        .GlobalNode(Global("Global", 50));
    return document;
}

struct Seen
{
    int result = 0;
    Lines log;
};

Seen LoadedText(const std::string& text)
{
    LogRecorder log;
    TestMachine machine(text);
    const int result = machine.Init();
    return {result, log.Take()};
}

Seen Loaded(const DocumentBuilder& document)
{
    return LoadedText(document.Text());
}

Seen LoadedFile(const std::string& content)
{
    LogRecorder log;
    const TempFile file(content);
    TestMachine machine;
    machine.filePath = file.Path();
    machine.Create();
    const int result = machine.Init();
    return {result, log.Take()};
}

Seen LoadedHead(__JSONTYPES__ member, const Json& value)
{
    DocumentBuilder document = Document();
    document.Head().Set(member, value);
    return Loaded(document);
}

/// What the log says when `act` meets a machine that has loaded `document`.
Seen After(const DocumentBuilder& document, const std::function<void(TestMachine&)>& act)
{
    Scene scene(document, MakeState<ShutState>);
    act(scene.machine);
    return {1, scene.log.Take()};
}

Seen AfterStart(const DocumentBuilder& document)
{
    return After(document,
                 [](TestMachine& machine)
                 {
                     machine.Start();
                 });
}

using Scenes = std::map<std::string, std::function<Seen()>>;

Scenes CreateScenes()
{
    return {
        {"No such file, or an empty one",
         []
         {
             return LoadedFile("");
         }},
        {"A syntax error in a file",
         []
         {
             return LoadedFile("{");
         }},
        {"A syntax error in a text",
         []
         {
             return LoadedText("{");
         }},
        {"No head",
         []
         {
             return Loaded(Document().LeaveOut(JSON_Head));
         }},
        {"A head that is not an object",
         []
         {
             DocumentBuilder document = Document();
             document.Root().Set(JSON_Head, 5);
             return Loaded(document);
         }},
        {"A head without a machine type",
         []
         {
             return LoadedHead(JSON_HeadMachineType, 5);
         }},
        {"Memory that is too small or refused",
         []
         {
             return LoadedHead(JSON_HeadMemory, 1);
         }},
    };
}

Scenes InitScenes()
{
    const Json noParameter = BoolParameter("bad", true).Remove(JSON_ParameterType);
    const Json noNode = Generic("Bad", 12).Set(JSON_BuilderType, "no such kind");
    const Json painted =
        Generic("Painted", 12).Set(JSON_Attributes, Json::Array({Attribute("a", "QColor", 1)}));
    return {
        {"No `layers`",
         []
         {
             return Loaded(Document().LeaveOut(JSON_Layers));
         }},
        {"No `parameters`",
         []
         {
             return Loaded(Document({}).LeaveOut(JSON_Parameters));
         }},
        {"A parameter that cannot be created",
         [=]
         {
             return Loaded(Document().Parameter(noParameter));
         }},
        {"A parameter whose name or id is taken",
         []
         {
             return Loaded(Document().Parameter(PulseParameter("go")));
         }},
        {"A node that cannot be built",
         [=]
         {
             return Loaded(Document().Node(noNode));
         }},
        {"Two nodes with the same id",
         []
         {
             return Loaded(Document().Node(Generic("Twin", 10)));
         }},
        {"An entry node of 0",
         []
         {
             return LoadedHead(JSON_HeadEnterNode, 0);
         }},
        {"An entry node that does not exist",
         []
         {
             return LoadedHead(JSON_HeadEnterNode, 999);
         }},
        {"Bad conditions of a transition",
         []
         {
             return Loaded(Document({Json(5)}));
         }},
        {"A bool condition on a parameter that does not exist",
         []
         {
             return Loaded(Document({Holds("none")}));
         }},
        {"An attribute of an unknown type",
         [=]
         {
             return Loaded(Document().Node(painted));
         }},
    };
}

Seen TargetThatIsNotThere()
{
    DocumentBuilder document = Document();
    document.Node(Transition("Lost", 101, 12, 999, {Holds("go")})).Node(Generic("Edge", 12, {101}));
    return After(document.Start(12),
                 [](TestMachine& machine)
                 {
                     machine.Start();
                     machine.SetBool("go", true);
                     machine.Update(Scene::kStep);
                 });
}

Seen SecondActionOfOneId()
{
    Action first;
    Action second;
    first.id = second.id = 7;
    return After(Document(),
                 [&](TestMachine& machine)
                 {
                     machine.RegisterAction(&first);
                     machine.RegisterAction(&second);
                 });
}

Seen ContextWithAnUnknownId()
{
    Tessel::KVTable context = Tessel::CreateTable("context");
    context->AddTable("stackStates", 1)->PushUInt(999, 1);
    const Seen seen = After(Document(),
                            [&](TestMachine& machine)
                            {
                                machine.SetContextInfo(context);
                            });
    Tessel::CloseTable(context);
    return seen;
}

Scenes RunScenes()
{
    const auto trigger = [](IHSM*, SMState*)
    {
        return true;
    };
    return {
        {"No global node, at `Start`",
         []
         {
             return AfterStart(Document().LeaveOut(JSON_Global));
         }},
        {"No start state",
         []
         {
             DocumentBuilder document = Document();
             document.Head().Remove(JSON_HeadSubstateRoot);
             return AfterStart(document);
         }},
        {"A target that does not exist or cannot run", TargetThatIsNotThere},
        {"A substate whose enter or exit node does not exist",
         []
         {
             return AfterStart(Document().Node(Substate("Level", 20, 998, 999)).Start(20));
         }},
        {"A state that refuses to be entered",
         []
         {
             return AfterStart(Document().Node(Node(kOwnBuilder, "Shut", 12)).Start(12));
         }},
        {"An unknown parameter name",
         []
         {
             return After(Document(),
                          [](TestMachine& machine)
                          {
                              machine.GetParameterTable()->FindParameter("none");
                          });
         }},
        {"An unknown node name",
         []
         {
             return After(Document(),
                          [](TestMachine& machine)
                          {
                              machine.FindDef("None");
                          });
         }},
        {"An unknown node id",
         []
         {
             return After(Document(),
                          [](TestMachine& machine)
                          {
                              machine.FindDef(999u);
                          });
         }},
        {"A trigger for an unknown transition name",
         [=]
         {
             return After(Document(),
                          [=](TestMachine& machine)
                          {
                              machine.AssignTrigger("None", trigger);
                          });
         }},
        {"A second action with the same id", SecondActionOfOneId},
        {"A context with an unknown state id", ContextWithAnUnknownId},
    };
}

} // namespace

TEST(HostGuidePage, TellsWhatTheLogSaysAndWhetherInitSucceeds)
{
    Scenes scenes = CreateScenes();
    scenes.merge(InitScenes());
    scenes.merge(RunScenes());

    for (const Row& row : ReadRows())
    {
        const auto scene = scenes.find(row.happened);
        ASSERT_NE(scene, scenes.end()) << row.happened;
        const Seen seen = scene->second();
        scenes.erase(scene);

        EXPECT_FALSE(row.texts.empty()) << row.happened;
        for (const std::string& text : row.texts)
        {
            EXPECT_TRUE(Says(seen.log, text)) << row.happened << ": " << text << "\nthe log:\n"
                                              << testing::PrintToString(seen.log);
        }
        if (!row.result.empty())
        {
            EXPECT_EQ(std::to_string(seen.result), row.result) << row.happened;
        }
    }
    EXPECT_TRUE(scenes.empty()) << scenes.begin()->first << " is missing on the page";
}

TEST(HostGuidePage, TellsWhichLineEndsEveryFailedInit)
{
    for (const Scenes& scenes : {CreateScenes(), InitScenes()})
    {
        for (const auto& [happened, scene] : scenes)
        {
            const Seen seen = scene();
            const bool hasEnd = !seen.log.empty() && seen.log.back() == "3 Parsing JSON file has "
                                                                        "caused an exception";
            EXPECT_EQ(hasEnd, seen.result == 0) << happened;
        }
    }
}

} // namespace vell::test
