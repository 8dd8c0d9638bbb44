// VELL: data-driven hierarchical state machines.
// tests/docs/WrongMembersDocTest.cpp: docs/document-format.md tells what a wrong member does.
#include <vell/TransitionDef.h>

#include "definitions/NodeDefTable.h"
#include "tests/docs/Pages.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Scene.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

/// The cells "Absent or wrong" in small letters, by the member of their row.
std::map<std::string, std::string> ReadConsequences()
{
    std::map<std::string, std::string> consequences;
    for (const std::string& line : ReadProse("docs/document-format.md"))
    {
        const bool isMember =
            line.rfind("| `", 0) == 0 && std::count(line.begin(), line.end(), '|') == 9;
        if (isMember)
        {
            std::string cell = line.substr(line.rfind('|', line.size() - 2) + 1);
            std::transform(cell.begin(), cell.end(), cell.begin(),
                           [](unsigned char letter)
                           {
                               return static_cast<char>(std::tolower(letter));
                           });
            consequences[line.substr(3, line.find('`', 3) - 3)] = cell;
        }
    }
    return consequences;
}

Json Stand(const Json& attributeType = "int")
{
    const Json data = JsonObject().Set(JSON_AttributeType, attributeType).Set(JSON_Value, 5);
    const Json attribute =
        JsonObject().Set(JSON_Name, "steps").Set("ATTRIB_Data", Json::Array({data}));
    return Generic("Stand", 10, {100}).Set(JSON_Attributes, Json::Array({attribute}));
}

DocumentBuilder DocumentOf(const Json& stand, const Json& condition)
{
    DocumentBuilder document;
    document.Start(10)
        .Parameter(PulseParameter("go"))
        .Nodes({stand, Generic("Walk", 11), Transition("Go", 100, 10, 11, {condition})});
    return document;
}

DocumentBuilder Document()
{
    return DocumentOf(Stand(), Holds("go"));
}

/// What comes of a document, in the page's words.
std::string OutcomeOf(const DocumentBuilder& document)
{
    LogRecorder log;
    TestMachine machine(document);
    if (machine.nodeDefTable == nullptr)
    {
        return machine.Init() == 0 ? "no machine" : "a machine out of nothing";
    }
    if (machine.Init() == 0)
    {
        return "load fails";
    }
    auto* stand = dynamic_cast<BaseDef*>(machine.FindDef(10u));
    const auto* go = dynamic_cast<TransitionDef*>(machine.FindDef(100u));
    if (machine.nodeDefTable->nodes.empty() || stand == nullptr || go == nullptr)
    {
        return "node fails";
    }
    if (go->conditions.empty())
    {
        return "condition fails";
    }
    return stand->GetAttrib("steps") == nullptr ? "attribute fails" : "loads";
}

struct Case
{
    __JSONTYPES__ member;
    DocumentBuilder document;
};

Case RootCase(__JSONTYPES__ member, const Json& value)
{
    DocumentBuilder document = Document();
    document.Root().Set(member, value);
    return {member, document};
}

Case HeadCase(__JSONTYPES__ member, const Json& value)
{
    DocumentBuilder document = Document();
    document.Head().Set(member, value);
    return {member, document};
}

Case NodeCase(__JSONTYPES__ member, const Json& node)
{
    return {member, Document().Node(node)};
}

Case ParameterCase(__JSONTYPES__ member, const Json& parameter)
{
    return {member, Document().Parameter(parameter)};
}

Case ConditionCase(__JSONTYPES__ member, const Json& condition)
{
    return {member, DocumentOf(Stand(), condition)};
}

std::vector<Case> SectionCases()
{
    return {
        {JSON_Head, Document().LeaveOut(JSON_Head)},
        {JSON_Parameters, Document().LeaveOut(JSON_Parameters)},
        RootCase(JSON_Parameters, 5),
        RootCase(JSON_Parameters, Json::Array({Json(5)})),
        {JSON_Layers, Document().LeaveOut(JSON_Layers)},
        RootCase(JSON_Layers, 5),
        RootCase(JSON_Skeleton, 5),
        RootCase(JSON_Global, 5),
        HeadCase(JSON_HeadMachineType, 5),
        HeadCase(JSON_HeadMemory, 0),
        HeadCase(JSON_HeadEnterNode, 0),
        ParameterCase(JSON_Name, BoolParameter("bad", true).Remove(JSON_Name)),
        ParameterCase(JSON_ParameterType, BoolParameter("bad", true).Set(JSON_ParameterType, "?")),
        ParameterCase(JSON_ParameterDefault, VectorParameter(PARAM_Float3, "bad", "1,2")),
    };
}

std::vector<Case> NodeCases()
{
    const auto level = []
    {
        return Substate("Bad", 12, 13, 14);
    };
    return {
        NodeCase(JSON_BuilderType, Generic("Bad", 12).Remove(JSON_BuilderType)),
        NodeCase(JSON_BuilderType, Generic("Bad", 12).Set(JSON_BuilderType, "no such kind")),
        NodeCase(JSON_Children, Generic("Bad", 12).Set(JSON_Children, 5)),
        NodeCase(JSON_Children, Generic("Bad", 12, {11, 0})),
        NodeCase(JSON_ScriptName, Generic("Bad", 12).Set(JSON_ScriptName, 5)),
        NodeCase(JSON_ConnectorType, Connector("Bad", 12, "no such kind")),
        NodeCase(JSON_EntryTarget, Enter("Bad", 12, 0)),
        NodeCase(JSON_EntryTarget, Enter("Bad", 12, 11).Remove(JSON_EntryTarget)),
        NodeCase(JSON_SubstateEnter, level().Set(JSON_SubstateEnter, 0)),
        NodeCase(JSON_SubstateExit, level().Set(JSON_SubstateExit, 0)),
        ConditionCase(JSON_ConditionType, Holds("go").Set(JSON_ConditionType, "no such type")),
        ConditionCase(JSON_ConditionParameter, Holds("go").Set(JSON_ConditionParameter, 0)),
        ConditionCase(JSON_ConditionEvaluation, Holds("go").Remove(JSON_ConditionEvaluation)),
        ConditionCase(JSON_ConditionValue, Holds("go").Set(JSON_ConditionValue, 5)),
        ConditionCase(JSON_ConditionValue,
                      Holds("go").Set(JSON_ConditionValue, Json::Array({Json(5)}))),
        {JSON_AttributeType, DocumentOf(Stand("QColor"), Holds("go"))},
    };
}

} // namespace

TEST(DocumentFormatPage, TellsWhatAMissingOrWrongMemberDoes)
{
    const std::map<std::string, std::string> consequences = ReadConsequences();
    ASSERT_EQ(OutcomeOf(Document()), "loads");

    std::set<std::string> outcomes;
    for (const std::vector<Case>& cases : {SectionCases(), NodeCases()})
    {
        for (const Case& example : cases)
        {
            const std::string member = GetJsonName(example.member);
            ASSERT_EQ(consequences.count(member), 1u) << member;
            const std::string outcome = OutcomeOf(example.document);
            outcomes.insert(outcome);
            EXPECT_NE(consequences.at(member).find(outcome), std::string::npos)
                << member << ": " << outcome << ", and the page says" << consequences.at(member);
        }
    }
    EXPECT_EQ(outcomes, (std::set<std::string>{"attribute fails", "condition fails", "load fails",
                                               "no machine", "node fails"}));
}

} // namespace vell::test
