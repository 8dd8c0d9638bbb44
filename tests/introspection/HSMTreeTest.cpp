// VELL: data-driven hierarchical state machines.
// tests/introspection/HSMTreeTest.cpp: the tree after a load and after a run.
#include <vell/BaseDef.h>
#include <vell/Factories.h>
#include <vell/IParameterTable.h>

#include "tests/introspection/RichDocument.h"
#include "tests/introspection/TreeModel.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SourceDir.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

namespace vell::test
{
namespace
{

const std::string kSamples = std::string(SourceDir()) + "/samples/";

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// A small document with one of each: a node, an attribute, a parameter.
DocumentBuilder SmallDocument()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(FloatParameter("speed", 0.5))
        .Node(Generic("Idle", 10)
                  .Set(JSON_Attributes, Json::Array({Attribute("length", "double", 0.75)})));
}

class HSMTree : public testing::Test
{
protected:
    void Load(const DocumentBuilder& document)
    {
        machine.Load(document.Text());
        ASSERT_EQ(machine.Init(), 1);
        log.Clear();
    }

    Lines Tree() const
    {
        return TreeLines(machine.GetKVTable());
    }

    LogRecorder log;
    TestMachine machine;
};

} // namespace

TEST_F(HSMTree, ShowsASmallMachineLineByLine)
{
    Load(SmallDocument());

    const std::string speed = ParameterPath("speed");
    EXPECT_EQ(Tree(), (Lines{
                          "(root) table HSM",
                          "contextInfo table contextInfo",
                          "contextInfo/nextState uint 0",
                          "contextInfo/previousState uint 0",
                          "contextInfo/stackBlip table stackBlip",
                          "contextInfo/stackStates table stackStates",
                          "contextInfo/transitionTriggered uint 0",
                          "nodeDefTable table nodeDefTable",
                          "nodeDefTable/10 table baseDef",
                          "nodeDefTable/10/attribs table attribs",
                          "nodeDefTable/10/attribs/id uint 10",
                          "nodeDefTable/10/attribs/length table attribBase",
                          "nodeDefTable/10/attribs/length/name text \"length\"",
                          "nodeDefTable/10/attribs/length/nodeID uint 10",
                          "nodeDefTable/10/attribs/length/type text \"float\"",
                          "nodeDefTable/10/attribs/length/value float 0.75",
                          "nodeDefTable/10/id uint 10",
                          "nodeDefTable/buildID text \"build-of-the-test\"",
                          "nodeDefTable/hsmID text \"guid-of-the-test\"",
                          "parameterTable table parameterTable",
                          speed + " table baseDef",
                          speed + "/attribs table attribs",
                          speed + "/attribs/id uint " + std::to_string(ParameterId("speed")),
                          speed + "/id uint " + std::to_string(ParameterId("speed")),
                          speed + "/type text \"float\"",
                          speed + "/value float 0.5",
                      }));
}

TEST_F(HSMTree, ShowsEveryKindOfNodeParameterAndAttributeLineByLine)
{
    const DocumentBuilder document = RichDocument();
    Load(document);

    const Lines expected = ModelTree(document.Text(), "");

    EXPECT_GT(expected.size(), 150u);
    EXPECT_EQ(Tree(), expected);
}

TEST_F(HSMTree, ShowsEachSampleDocumentLineByLine)
{
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(kSamples))
    {
        const std::string path = entry.path().string();
        const bool isSource = entry.path().stem().extension() == ".hsm";
        if (entry.path().extension() != ".json" || isSource)
        {
            continue;
        }
        ++found;
        const std::unique_ptr<IHSM> sample(CreateHSM(path.c_str(), nullptr));
        ASSERT_EQ(sample->Init(), 1) << path;
        EXPECT_EQ(TreeLines(sample->GetKVTable()), ModelTree(ReadFile(path), path));
        sample->Uninit();
        sample->Destroy();
    }
    EXPECT_GE(found, 2);
}

TEST_F(HSMTree, ShowsTheSampleCharacterAfterARunByItsContextAndValuesAlone)
{
    const std::string path = kSamples + "character.json";
    machine.Load(ReadFile(path));
    ASSERT_EQ(machine.Init(), 1);
    const Lines before = Tree();

    machine.Start();
    machine.Update(0.1f);
    machine.Update(0.1f);

    Lines stack;
    for (const unsigned int id : machine.StackInTree("stackStates"))
    {
        stack.push_back("+ contextInfo/stackStates[" + std::to_string(stack.size()) + "] uint " +
                        std::to_string(id));
    }
    EXPECT_GE(stack.size(), 2u);
    EXPECT_EQ(Differences(before, Tree()), stack);
}

TEST_F(HSMTree, ShowsARunByItsContextAndValuesAlone)
{
    Load(RichDocument());
    const Lines before = Tree();

    machine.Start();
    machine.TickWith("fight");
    machine.Update(0.1f);
    machine.TickWith("hit");

    ASSERT_EQ(machine.MainStack(), "Combat/Guard");
    ASSERT_EQ(machine.BlipStack(), "Flinch");
    Lines expected{
        "- " + ParameterPath("fight") + "/value int 0",
        "- " + ParameterPath("hit") + "/value int 0",
        "- contextInfo/nextState uint 0",
        "- contextInfo/previousState uint 0",
        "- contextInfo/transitionTriggered uint 0",
        "+ " + ParameterPath("fight") + "/value int 1",
        "+ " + ParameterPath("hit") + "/value int 1",
        "+ contextInfo/nextState uint 20",
        "+ contextInfo/previousState uint 10",
        "+ contextInfo/stackBlip[0] uint 12",
        "+ contextInfo/stackStates[0] uint 20",
        "+ contextInfo/stackStates[1] uint 23",
        "+ contextInfo/transitionTriggered uint 500",
    };
    EXPECT_EQ(Differences(expected, Differences(before, Tree())), Lines());
}

TEST_F(HSMTree, ShowsRunTimeParametersWithTheirNames)
{
    Load(SmallDocument());
    const Lines before = Tree();
    IParameterBoolDef* boolDef = nullptr;
    IParameterIntDef* intDef = nullptr;
    IParameterFloatDef* floatDef = nullptr;
    IParameterMessageDef* messageDef = nullptr;

    IParameterTable* table = machine.GetParameterTable();
    ASSERT_EQ(table->CreateBoolParameter("rb", true, &boolDef), 1);
    ASSERT_EQ(table->CreateIntParameter("ri", -7, &intDef), 1);
    ASSERT_EQ(table->CreateFloatParameter("rf", 2.5f, &floatDef), 1);
    ASSERT_EQ(table->CreateMessageParameter("rm", "hello", &messageDef), 1);

    Lines expected;
    const auto expectParameter =
        [&expected](const std::string& name, const std::string& type, const std::string& value)
    {
        const std::string path = "+ " + ParameterPath(name);
        const std::string id = "uint " + std::to_string(ParameterId(name));
        for (const std::string& line :
             {path + " table baseDef", path + "/attribs table attribs", path + "/attribs/id " + id,
              path + "/dynamic int 1", path + "/id " + id, path + "/name text \"" + name + "\"",
              path + "/type text \"" + type + "\"", path + "/value " + value})
        {
            expected.push_back(line);
        }
    };
    expectParameter("rb", "bool", "int 1");
    expectParameter("ri", "integer", "int -7");
    expectParameter("rf", "float", "float 2.5");
    expectParameter("rm", "message", "text \"hello\"");
    EXPECT_EQ(Differences(expected, Differences(before, Tree())), Lines());
}

TEST_F(HSMTree, ShowsADefinitionAsDynamicWithItsNameWhenAHostAsks)
{
    Load(SmallDocument());
    const Lines before = Tree();
    auto* def = dynamic_cast<BaseDef*>(machine.FindDef(10u));
    ASSERT_NE(def, nullptr);

    EXPECT_EQ(def->TabSetDynamic(0), 1);
    EXPECT_EQ(Differences(before, Tree()), (Lines{"+ nodeDefTable/10/dynamic int 0"}));

    EXPECT_EQ(def->TabSetDynamic(1), 1);
    EXPECT_EQ(Differences(before, Tree()),
              (Lines{"+ nodeDefTable/10/dynamic int 1", "+ nodeDefTable/10/name text \"Idle\""}));
}

TEST_F(HSMTree, HoldsTheFirstOfTwoNodesWithOneId)
{
    Load(SmallDocument().Node(Clip("Twin", 10, "twin.anim")).Node(Generic("After", 11)));

    EXPECT_EQ(Tree(), ModelTree(SmallDocument().Text(), ""));
}

TEST_F(HSMTree, HoldsTheFirstOfTwoParametersWithOneName)
{
    Load(SmallDocument().Parameter(IntParameter("speed", 9)));

    EXPECT_EQ(Tree(), ModelTree(SmallDocument().Text(), ""));
}

TEST_F(HSMTree, LeavesOutIdentityTextsOfSeventyCharacters)
{
    DocumentBuilder document = SmallDocument();
    document.Head().Set(JSON_GUID, std::string(70, 'g'));
    document.Head().Set(JSON_HeadBuildID, std::string(69, 'b'));
    Load(document);

    Tessel::KVTable nodes = TableAt(machine.GetKVTable(), "nodeDefTable");
    EXPECT_EQ(nodes->FindValue("hsmID"), nullptr);
    EXPECT_EQ(nodes->GetString("buildID"), std::string(69, 'b'));
}

TEST_F(HSMTree, RepeatsTheGuidAsTheBuildIdOfAHeadWithoutOne)
{
    DocumentBuilder document = SmallDocument();
    document.Head().Remove(JSON_HeadBuildID);
    Load(document);

    EXPECT_STREQ(TableAt(machine.GetKVTable(), "nodeDefTable")->GetString("buildID"),
                 "guid-of-the-test");
}

TEST_F(HSMTree, LeavesOutIdentityTextsOfAVersionOneHead)
{
    DocumentBuilder document = SmallDocument();
    document.Head().Set(JSON_HeadVersion, 1);
    Load(document);

    Tessel::KVTable nodes = TableAt(machine.GetKVTable(), "nodeDefTable");
    EXPECT_EQ(nodes->FindValue("hsmID"), nullptr);
    EXPECT_EQ(nodes->FindValue("buildID"), nullptr);
}

TEST_F(HSMTree, LeavesOutEmptyFileNamesOfTheSkeleton)
{
    Load(SmallDocument().Skeleton(
        JsonObject().Set(JSON_ModelFileName, "").Set(JSON_SkeletonFileName, "")));

    EXPECT_EQ(Tree(), ModelTree(SmallDocument().Text(), ""));
}

TEST_F(HSMTree, HasNoFileNameForAMachineMadeFromText)
{
    const std::string text = SmallDocument().Text();
    const std::unique_ptr<IHSM> made(CreateHSMJson(text.c_str()));
    ASSERT_EQ(made->Init(), 1);

    EXPECT_EQ(made->GetKVTable()->FindValue("filename"), nullptr);
    EXPECT_EQ(TreeLines(made->GetKVTable()), ModelTree(text, ""));
}

TEST_F(HSMTree, HasNoFileNameForAnEmptyPath)
{
    machine.filePath = "";
    Load(SmallDocument());

    EXPECT_EQ(machine.GetKVTable()->FindValue("filename"), nullptr);
}

TEST_F(HSMTree, HasTheFileNameAsItWasWhenTheDocumentWasRead)
{
    char path[] = "host's.json";
    machine.filePath = path;
    machine.Load(SmallDocument().Text());
    path[0] = 'X';

    ASSERT_EQ(machine.Init(), 1);

    EXPECT_STREQ(machine.GetKVTable()->GetString("filename"), "host's.json");
}

TEST_F(HSMTree, ShowsATextAttributeWithoutATextByAMissingValue)
{
    JsonObject data;
    data.Set(JSON_AttributeType, "QString");
    JsonObject withoutValue;
    withoutValue.Set(JSON_Name, "none").Set("ATTRIB_Data", Json::Array({data}));
    DocumentBuilder document;
    document.Start(10).Node(
        Generic("Idle", 10)
            .Set(JSON_Attributes,
                 Json::Array({withoutValue, Attribute("long", "QString", std::string(1024, 'x')),
                              Attribute("fits", "QString", std::string(1023, 'x'))})));
    Load(document);

    const std::string attribs = "nodeDefTable/10/attribs/";
    EXPECT_EQ(TreeLines(TableAt(machine.GetKVTable(), attribs + "none")),
              (Lines{"(root) table attribBase", "name text \"none\"", "nodeID uint 10",
                     "type text \"message\""}));
    EXPECT_EQ(TreeLines(TableAt(machine.GetKVTable(), attribs + "long")),
              (Lines{"(root) table attribBase", "name text \"long\"", "nodeID uint 10",
                     "type text \"message\""}));
    EXPECT_EQ(TableAt(machine.GetKVTable(), attribs + "fits")->GetString("value"),
              std::string(1023, 'x'));
}

TEST_F(HSMTree, ShowsTheAttributesOfAParameterToo)
{
    DocumentBuilder document;
    document.Start(10)
        .Node(Generic("Idle", 10))
        .Parameter(BoolParameter("armed", true)
                       .Set(JSON_Attributes, Json::Array({Attribute("shown", "bool", false)})));
    Load(document);

    EXPECT_EQ(Tree(), ModelTree(document.Text(), ""));
}

} // namespace vell::test
