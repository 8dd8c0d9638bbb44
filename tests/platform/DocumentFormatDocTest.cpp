// VELL: data-driven hierarchical state machines.
// tests/platform/DocumentFormatDocTest.cpp: docs/document-format.md says what the vocabulary says.
#include <durm/DURMBaseLib.h>

#include "platform/durm/Vocabulary.h"
#include "tests/support/SourceDir.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace DURMBaseLib;

namespace
{
using Lines = std::vector<std::string>;
using Row = std::vector<std::string>;

std::string ReadPage()
{
    std::ifstream file(std::string(vell::test::SourceDir()) + "/docs/document-format.md");
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

/// A cell of a table without its blanks and backticks.
std::string Trim(const std::string& cell)
{
    const std::size_t first = cell.find_first_not_of(" `");
    const std::size_t last = cell.find_last_not_of(" `");
    return first == std::string::npos ? "" : cell.substr(first, last - first + 1);
}

/// The rows of all tables below the heading `## title` whose first cell is in backticks.
std::vector<Row> ReadRows(const std::string& title)
{
    std::istringstream page(ReadPage());
    std::vector<Row> rows;
    bool isInside = false;
    for (std::string line; std::getline(page, line);)
    {
        if (line.rfind("## ", 0) == 0)
        {
            isInside = line == "## " + title;
        }
        if (!isInside || line.rfind("| `", 0) != 0)
        {
            continue;
        }
        Row row;
        std::istringstream cells(line.substr(1));
        for (std::string cell; std::getline(cells, cell, '|');)
        {
            row.push_back(Trim(cell));
        }
        rows.push_back(row);
    }
    return rows;
}

/// The rows of a table as "number name", in the order of the page.
Lines ReadWords(const std::string& title)
{
    Lines words;
    for (const Row& row : ReadRows(title))
    {
        words.push_back(row.size() > 1 ? row[1] + " " + row[0] : "a row too short");
    }
    return words;
}

template <std::size_t Count>
Lines WordsOf(const Word (&table)[Count])
{
    Lines words;
    for (const Word& word : table)
    {
        words.push_back(std::to_string(word.number) + " " + word.text);
    }
    return words;
}

std::string ReadExample()
{
    const std::string page = ReadPage();
    const std::string opening = "```json\n";
    const std::size_t begin = page.rfind(opening);
    const std::size_t end = page.find("\n```", begin);
    if (begin == std::string::npos || end == std::string::npos)
    {
        return "";
    }
    return page.substr(begin + opening.size(), end - begin - opening.size());
}

using Value = rapidjson::Value;

/// The member `type` of an object; null when there is none.
const Value& Get(const Value& object, __JSONTYPES__ type)
{
    static const Value missing;
    if (!object.IsObject())
    {
        return missing;
    }
    const auto member = object.FindMember(GetJsonName(type));
    return member != object.MemberEnd() ? member->value : missing;
}

void CollectMembers(const Value& value, std::set<std::string>& members)
{
    if (value.IsObject())
    {
        for (const auto& member : value.GetObject())
        {
            members.insert(member.name.GetString());
            CollectMembers(member.value, members);
        }
    }
    else if (value.IsArray())
    {
        for (const Value& element : value.GetArray())
        {
            CollectMembers(element, members);
        }
    }
}

std::size_t CountNodes(const Value& nodes, __DURM_BUILDERS__ builder)
{
    std::size_t count = 0;
    for (const Value& node : nodes.GetArray())
    {
        count += GetBuilderIndex(Get(node, JSON_BuilderType).GetString()) == builder ? 1U : 0U;
    }
    return count;
}

std::set<unsigned> CollectIds(const Value& objects)
{
    std::set<unsigned> ids;
    for (const Value& object : objects.GetArray())
    {
        EXPECT_TRUE(ids.insert(Get(object, JSON_ID).GetUint()).second);
    }
    return ids;
}

class DocumentExample : public testing::Test
{
protected:
    void SetUp() override
    {
        document.Parse(ReadExample().c_str());
        ASSERT_FALSE(document.HasParseError()) << document.GetErrorOffset();
        ASSERT_TRUE(Get(document, JSON_Head).IsObject());
        ASSERT_TRUE(Get(document, JSON_Parameters).IsArray());
        ASSERT_TRUE(Get(document, JSON_Global).IsArray());
        const Value& layers = Get(document, JSON_Layers);
        ASSERT_TRUE(layers.IsArray());
        ASSERT_EQ(layers.Size(), 1U);
        ASSERT_TRUE(Get(layers[0], JSON_Nodes).IsArray());
    }

    const Value& GetNodes() const
    {
        return Get(Get(document, JSON_Layers)[0], JSON_Nodes);
    }

    rapidjson::Document document;
};
} // namespace

TEST(DocumentFormatPage, ListsEveryMemberOnceWithItsNumberAndEnumeratorAndNoOther)
{
    Lines expected;
    for (const Member& member : kMembers)
    {
        char number[16];
        std::snprintf(number, sizeof(number), "0x%02x", static_cast<unsigned>(member.number));
        expected.push_back(std::string(number) + " " + member.enumerator + " " + member.text);
    }

    Lines listed;
    for (const Row& row : ReadRows("Members"))
    {
        ASSERT_EQ(row.size(), 8U) << row[0];
        listed.push_back(row[1] + " " + row[2] + " " + row[0]);
    }
    std::sort(listed.begin(), listed.end());

    EXPECT_EQ(listed, expected);
}

TEST(DocumentFormatPage, ListsEveryNameWithItsNumberAndNoOther)
{
    EXPECT_EQ(ReadWords("Builders"), WordsOf(kBuilders));
    EXPECT_EQ(ReadWords("Parameter types"), WordsOf(kParameterTypes));
    EXPECT_EQ(ReadWords("Operators"), WordsOf(kOperators));
    EXPECT_EQ(ReadWords("Inputs"), WordsOf(kAssigns));
    EXPECT_EQ(ReadWords("Connectors"), WordsOf(kConnectors));
    EXPECT_EQ(ReadWords("Machine types"), WordsOf(kMachineTypes));
}

TEST(DocumentFormatPage, ListsTheTypesOfAttributesWithTheirParameterTypes)
{
    const Lines expected = {"1 bool",      "2 int",       "3 double", "4 QVector2D",
                            "5 QVector3D", "6 QVector4D", "8 QString"};

    EXPECT_EQ(ReadWords("Attributes"), expected);
}

TEST(DocumentFormatPage, GivesEachInputItsClass)
{
    const auto classOf = [](int number)
    {
        const bool isButton = (number >= 10 && number <= 23) || (number >= 26 && number <= 51);
        return number >= 2 && number <= 7 ? "4" : isButton ? "1" : "0";
    };

    const std::vector<Row> rows = ReadRows("Inputs");
    ASSERT_EQ(rows.size(), std::size(kAssigns));
    for (const Row& row : rows)
    {
        ASSERT_EQ(row.size(), 3U) << row[0];
        EXPECT_EQ(row[2], classOf(std::stoi(row[1]))) << row[0];
    }
}

TEST_F(DocumentExample, UsesMembersOfTheVocabularyOnly)
{
    std::set<std::string> known = {"ATTRIB_Data", "VARIANT_Data"};
    for (const Member& member : kMembers)
    {
        known.insert(member.text);
    }

    std::set<std::string> used;
    CollectMembers(document, used);

    Lines unknown;
    std::set_difference(used.begin(), used.end(), known.begin(), known.end(),
                        std::back_inserter(unknown));
    EXPECT_EQ(unknown, Lines());
    EXPECT_EQ(used.count("ATTRIB_Data"), 1U);
    EXPECT_EQ(used.count("VARIANT_Data"), 1U);
}

TEST_F(DocumentExample, HasTwoPlainStatesTwoTransitionsAndAGlobalNode)
{
    EXPECT_EQ(CountNodes(GetNodes(), BUILDER_Generic), 2U);
    EXPECT_EQ(CountNodes(GetNodes(), BUILDER_Transition), 2U);
    EXPECT_EQ(GetNodes().Size(), 4U);
    EXPECT_EQ(CountNodes(Get(document, JSON_Global), BUILDER_Global), 1U);
}

TEST_F(DocumentExample, GivesEveryParameterTheCrcOfItsNameAndNamesTheLibraryKnows)
{
    ASSERT_GT(Get(document, JSON_Parameters).Size(), 0U);
    for (const Value& parameter : Get(document, JSON_Parameters).GetArray())
    {
        std::string name = Get(parameter, JSON_Name).GetString();
        EXPECT_EQ(Get(parameter, JSON_ID).GetUint(), ConvertStringToCRC(name)) << name;
        EXPECT_NE(GetParameterName(Get(parameter, JSON_ParameterType).GetString()), 0) << name;
        const Value& assign = Get(parameter, JSON_ParameterAssign);
        EXPECT_TRUE(assign.IsNull() || GetAssignName(assign.GetString()) != 0) << name;
    }
}

TEST_F(DocumentExample, StartsAtANodeAndNamesItsMachineType)
{
    const Value& head = Get(document, JSON_Head);
    const std::set<unsigned> ids = CollectIds(GetNodes());

    EXPECT_EQ(ids.count(Get(head, JSON_HeadEnterNode).GetUint()), 1U);
    EXPECT_EQ(ids.count(Get(head, JSON_HeadSubstateRoot).GetUint()), 1U);
    EXPECT_GE(Get(head, JSON_HeadVersion).GetUint(), 3U);
    EXPECT_GT(Get(head, JSON_HeadMemory).GetUint(), 0U);
    EXPECT_NE(GetStateMachineTypeByName(Get(head, JSON_HeadMachineType).GetString()), HSMTYPE_None);
}

TEST_F(DocumentExample, RefersToNodesAndParametersThatAreThere)
{
    const std::set<unsigned> nodeIds = CollectIds(GetNodes());
    const std::set<unsigned> parameterIds = CollectIds(Get(document, JSON_Parameters));

    std::size_t conditionCount = 0;
    for (const Value& node : GetNodes().GetArray())
    {
        if (GetBuilderIndex(Get(node, JSON_BuilderType).GetString()) != BUILDER_Transition)
        {
            ASSERT_EQ(Get(node, JSON_Children).Size(), 1U);
            EXPECT_EQ(nodeIds.count(Get(node, JSON_Children)[0].GetUint()), 1U);
            continue;
        }
        EXPECT_EQ(nodeIds.count(Get(node, JSON_TransitionSource).GetUint()), 1U);
        EXPECT_EQ(nodeIds.count(Get(node, JSON_TransitionTarget).GetUint()), 1U);
        for (const Value& condition : Get(node, JSON_Conditions).GetArray())
        {
            ++conditionCount;
            EXPECT_EQ(parameterIds.count(Get(condition, JSON_ConditionParameter).GetUint()), 1U);
            EXPECT_NE(GetParameterTypeByName(Get(condition, JSON_ConditionType).GetString()), 0);
            EXPECT_NE(GetEvaluationEnum(Get(condition, JSON_ConditionEvaluation).GetString()), 0);
            EXPECT_FALSE(Get(Get(condition, JSON_ConditionValue)[0], JSON_Value).IsNull());
        }
    }
    EXPECT_EQ(conditionCount, 3U);
}
