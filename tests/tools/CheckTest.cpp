// VELL: data-driven hierarchical state machines.
// tests/tools/CheckTest.cpp: what the check finds in the members and words of a document.
#include "tools/check/Check.h"

#include "tools/check/Nearest.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vell::test
{
namespace
{

using Lines = std::vector<std::string>;

/// A document without mistakes, each member on a line of its own.
const char* const kDocument = R"({
    "head": {
        "version": 3,
        "guid": "one",
        "machineType": "character",
        "memory": 1000,
        "enterNode": 10,
        "substateRoot": 10
    },
    "parameters": [
        {
            "name": "speed",
            "id": 254213878,
            "parameterType": "float",
            "assign": "leftStick",
            "default": 1
        },
        {
            "name": "direction",
            "id": 1045090739,
            "parameterType": "float2",
            "default": [{"VARIANT_Data": "0, 1"}]
        }
    ],
    "layers": [
        {
            "name": "Base",
            "nodes": [
                {
                    "name": "Stand",
                    "id": 10,
                    "builder": "generic",
                    "children": [100],
                    "attributes": [
                        {"name": "blend", "ATTRIB_Data": [{"attributeType": "int", "value": 5}]}
                    ]
                },
                {
                    "name": "Again",
                    "id": 100,
                    "builder": "transition",
                    "source": 10,
                    "target": 10,
                    "priority": 1,
                    "disabled": false,
                    "switchArgument": 0.5,
                    "conditions": [
                        {
                            "conditionType": "float",
                            "parameter": 254213878,
                            "operator": "less",
                            "operand": [{"value": 0.5}]
                        }
                    ]
                }
            ]
        }
    ]
}
)";

/// Gives the lines of all findings of the families Text, Members and Words.
Lines FindingsOf(const std::string& text)
{
    const source::Text read = source::ReadText(text);
    const check::Document document{read, read.root};
    check::Findings findings;
    check::CheckText(document, findings);
    check::CheckMembers(document, findings);
    check::CheckWords(document, findings);
    Lines lines;
    for (const check::Finding& finding : findings.list)
    {
        lines.push_back(std::to_string(finding.where.begin.line) + ":" +
                        std::to_string(finding.where.begin.column) + " " +
                        check::NameOf(finding.code) + " " + finding.message +
                        (finding.hint.empty() ? "" : "; " + finding.hint));
    }
    return lines;
}

std::string Replaced(std::string text, const std::string& old, const std::string& now)
{
    const std::size_t at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return at == std::string::npos ? text : text.replace(at, old.size(), now);
}

/// A piece of the document, what is there instead, and what is found.
struct Case
{
    const char* old;
    const char* now;
    Lines found;
};

void ExpectFound(const std::vector<Case>& cases)
{
    for (const Case& entry : cases)
    {
        EXPECT_EQ(FindingsOf(Replaced(kDocument, entry.old, entry.now)), entry.found) << entry.now;
    }
}

} // namespace

TEST(Check, FindsNothingInADocumentWithoutMistakes)
{
    EXPECT_EQ(FindingsOf(kDocument), Lines{});
}

TEST(Check, FindsUnknownAndMisplacedMembers)
{
    ExpectFound({
        {"\"children\"",
         "\"childs\"",
         {"33:21 VELL020 unknown member 'childs'; did you mean 'children'?"}},
        {"\"memory\"",
         "\"Memory\"",
         {"6:9 VELL020 unknown member 'Memory'; did you mean 'memory'?"}},
        {"\"switchArgument\"", "\"colour\"", {"46:21 VELL020 unknown member 'colour'"}},
        {"\"children\"",
         "\"target\": 10, \"children\"",
         {"33:21 VELL025 the generic node 'Stand' does not read the member 'target'; it belongs in "
          "a transition"}},
        {"\"enterNode\"",
         "\"enter\": 1, \"enterNode\"",
         {"7:9 VELL025 the head does not read the member 'enter'; it belongs in a substate"}},
        {"\"switchArgument\"",
         "\"tagArgument\": 1, \"switchArgument\"",
         {"46:21 VELL028 'tagArgument' is read only beside 'tag'"}},
        {"\"name\": \"Stand\"", "\"$comment\": [], \"$allow\": []", {}},
        {"{\n    \"head\"", "{\n    \"$schema\": \"a\", \"head\"", {}},
        {"\"guid\"", "\"$schema\": 1, \"guid\"", {"4:9 VELL020 unknown member '$schema'"}},
        {"\"guid\"",
         "\"$allow\": [\"VELL999\", 1], \"guid\"",
         {"4:20 VELL033 unknown code 'VELL999'", "4:31 VELL033 unknown code 1"}},
        {"\"guid\"",
         "\"$allow\": \"VELL020\", \"guid\"",
         {"4:19 VELL022 '$allow' must be an array of codes, not the text \"VELL020\"; write "
          "[\"VELL020\"]"}},
    });
}

TEST(Check, LeavesTheMembersOfAHostsOwnNodeAlone)
{
    ExpectFound({{"\"generic\"", "\"1000\", \"speed\": 1, \"target\": 3", {}}});
}

TEST(Check, FindsMissingMembers)
{
    ExpectFound({
        {"        \"version\": 3,\n", "", {"2:13 VELL021 the head has no member 'version'"}},
        {",\n        \"substateRoot\": 10",
         "",
         {"2:13 VELL021 the head has no member 'substateRoot'"}},
        {"\"builder\": \"generic\",",
         "",
         {"29:17 VELL021 the node 'Stand' has no member 'builder'"}},
        {"\"target\": 10,", "", {"38:17 VELL021 the transition 'Again' has no member 'target'"}},
        {"\"value\": 0.5", "", {"52:41 VELL021 the operand has no member 'value'"}},
        {",\n            \"default\": [{\"VARIANT_Data\": \"0, 1\"}]",
         "",
         {"18:9 VELL021 the parameter 'direction' has no member 'default'"}},
        {"\"attributeType\": \"int\", ",
         "",
         {"35:59 VELL021 the attribute's data has no member 'attributeType'"}},
    });
}

TEST(Check, TakesAMisspeltMemberForTheMissingOne)
{
    ExpectFound({
        {"\"target\"",
         "\"Target\"",
         {"43:21 VELL021 the transition 'Again' has no member 'target'; did you misspell it "
          "'Target'?"}},
        {"\"builder\"",
         "\"buidler\"",
         {"32:21 VELL021 the node 'Stand' has no member 'builder'; did you misspell it "
          "'buidler'?"}},
    });
}

TEST(Check, LeavesOutWhatFollowsFromLostNodesOrFromAWrongType)
{
    const auto codesOf = [](const std::string& old, const std::string& now)
    {
        const source::Text text = source::ReadText(Replaced(kDocument, old, now));
        Lines codes;
        for (const check::Finding& finding : check::CheckDocument(text).list)
        {
            if (check::GetEntry(finding.code).severity == check::Severity::Error)
            {
                codes.push_back(check::NameOf(finding.code));
            }
        }
        return codes;
    };

    EXPECT_EQ(codesOf("\"layers\"", "\"layer\""), Lines{"VELL021"});
    EXPECT_EQ(codesOf("\"nodes\"", "\"node\""), Lines{"VELL021"});
    EXPECT_EQ(codesOf("\"generic\"", "\"state\""), Lines{"VELL040"});
    EXPECT_EQ(codesOf("\"target\": 10", "\"target\": 10.0"), Lines{"VELL024"});
    EXPECT_EQ(codesOf("\"substateRoot\": 10", "\"substateRoot\": 10.0"), Lines{"VELL024"});
}

TEST(Check, FindsValuesOfTheWrongType)
{
    ExpectFound({
        {"\"target\": 10",
         "\"target\": \"10\"",
         {"43:31 VELL022 'target' must be a whole number, not the text \"10\"; write 10 without "
          "quotes"}},
        {"\"priority\": 1",
         "\"priority\": \"high\"",
         {"44:33 VELL022 'priority' must be a whole number, not the text \"high\""}},
        {"\"priority\": 1",
         "\"priority\": 1.0",
         {"44:33 VELL024 'priority' must be a whole number: the library reads 1.0 as 0; write 1"}},
        {"\"priority\": 1",
         "\"priority\": 1.5",
         {"44:33 VELL024 'priority' must be a whole number: the library reads 1.5 as 0"}},
        {"\"priority\": 1",
         "\"priority\": 4294967297",
         {"44:33 VELL023 'priority' must be from -2147483648 to 2147483647, not 4294967297"}},
        {"\"target\": 10",
         "\"target\": -10",
         {"43:31 VELL023 'target' must be from 0 to 4294967295, not -10"}},
        {"false",
         "\"true\"",
         {"45:33 VELL022 'disabled' must be true or false, not the text \"true\"; write true "
          "without quotes"}},
        {"false", "1", {"45:33 VELL022 'disabled' must be true or false, not 1; write true"}},
        {"\"name\": \"Stand\"",
         "\"name\": 7",
         {"30:29 VELL022 'name' must be a text, not 7; write \"7\""}},
        {"\"name\": \"Stand\"",
         "\"name\": null",
         {"30:29 VELL022 'name' must be a text, not null; leave the member out"}},
        {"\"switchArgument\": 0.5",
         "\"switchArgument\": \"0.5\"",
         {"46:39 VELL022 'switchArgument' must be a number, not the text \"0.5\"; write 0.5 "
          "without "
          "quotes"}},
        {"\"switchArgument\": 0.5",
         "\"switchArgument\": 1e39",
         {"46:39 VELL023 'switchArgument' must fit a float, and 1e39 does not"}},
        {"[100]",
         "100",
         {"33:33 VELL022 'children' must be an array of ids, not 100; put it in [ ]"}},
        {"[100]",
         "[\"100\"]",
         {"33:34 VELL022 an element of 'children' must be a whole number, not the text \"100\"; "
          "write 100 without quotes"}},
        {"[{\"value\": 0.5}]",
         "{\"value\": 0.5}",
         {"52:40 VELL022 'operand' must be an array with one object, not an object; put it in [ "
          "]"}},
        {"[{\"value\": 0.5}]",
         "[0.5]",
         {"52:41 VELL022 an element of 'operand' must be an object, not 0.5; write {\"value\": "
          "0.5}"}},
        {"[{\"value\": 0.5}]", "[]", {"52:40 VELL032 'operand' is empty, and needs an operand"}},
        {"[{\"value\": 0.5}]",
         "[{\"value\": 0.5}, 1]",
         {"52:57 VELL031 only the first element of 'operand' is read"}},
        {"\"value\": 5",
         "\"value\": \"5\"",
         {"35:93 VELL022 'value' must be a whole number, not the text \"5\"; write 5 without "
          "quotes"}},
        {"\"default\": 1",
         "\"default\": true",
         {"16:24 VELL022 'default' must be a number, not true"}},
    });
    EXPECT_EQ(FindingsOf("[]"), Lines{"1:1 VELL022 the document must be an object, not an array"});
}

TEST(Check, FindsTextsThatTheLibraryDropsOrMisreads)
{
    const std::string longText = "\"" + std::string(70, 'g') + "\"";
    ExpectFound({
        {"\"one\"",
         longText.c_str(),
         {"4:17 VELL026 'guid' must have fewer than 70 bytes, and has 70"}},
        {"\"version\": 3",
         "\"version\": 1",
         {"3:20 VELL029 a head of version 1 does not read 'guid'; write 3"}},
        {"\"0, 1\"",
         "\"0; 1\"",
         {"22:42 VELL030 'VARIANT_Data' must be a text of 2 numbers such as \"0, 1\", and has 1"}},
        {"\"0, 1\"",
         "\"0, x\"",
         {"22:42 VELL030 'VARIANT_Data' has ' x', which the library reads as 0"}},
        {"\"0, 1\"",
         "1",
         {"22:42 VELL022 'VARIANT_Data' must be a text of 2 numbers such as \"0, 1\", not 1"}},
        {"\"int\", \"value\": 5",
         "\"qvector3d\", \"value\": \"1,2\"",
         {"35:99 VELL030 'value' must be a text of 3 numbers such as \"0, 1, 0\", and has 2"}},
    });
}

TEST(Check, FindsUnknownWordsWithTheNearestOnes)
{
    ExpectFound({
        {"\"generic\"",
         "\"Generic\"",
         {"32:32 VELL040 unknown builder 'Generic'; did you mean 'generic'?"}},
        {"\"less\"",
         "\"lessThan\"",
         {"51:41 VELL041 unknown operator 'lessThan'; did you mean 'less'?"}},
        {"\"less\"", "\"<\"", {"51:41 VELL041 unknown operator '<'; did you mean 'less'?"}},
        {"\"less\"",
         "\"below\"",
         {"51:41 VELL041 unknown operator 'below'; expected 'equal', 'notEqual', 'greater', "
          "'greaterOrEqual', 'less', 'lessOrEqual' or 'range'"}},
        {"\"parameterType\": \"float\"",
         "\"parameterType\": \"flaot\"",
         {"14:30 VELL042 unknown parameter type 'flaot'; did you mean 'float'?"}},
        {"\"parameterType\": \"float\",",
         "\"parameterType\": \"text\",",
         {"16:24 VELL022 'default' must be a text, not 1; write \"1\"",
          "14:30 VELL048 do not use the type 'text'; write 'message'"}},
        {"\"conditionType\": \"float\"",
         "\"conditionType\": \"float2\"",
         {"49:46 VELL043 a condition cannot test a parameter of type 'float2'; expected 'bool', "
          "'integer', 'float' or 'message'"}},
        {"\"leftStick\"",
         "\"stickLeft\"",
         {"15:23 VELL044 unknown input 'stickLeft'; did you mean 'leftStick'?"}},
        {"\"leftStick\"",
         "\"mouse\"",
         {"15:23 VELL044 unknown input 'mouse'; did you mean 'mouseMove'?"}},
        {"\"character\"",
         "\"Charakter\"",
         {"5:24 VELL045 unknown machine type 'Charakter'; did you mean 'character'?"}},
        {"\"generic\"",
         "\"connector\", \"connectorType\": \"inn\"",
         {"32:62 VELL046 unknown connector type 'inn'; did you mean 'in'?"}},
        {"\"int\"",
         "\"integer\"",
         {"35:77 VELL047 unknown attribute type 'integer'; did you mean 'int'?"}},
    });
}

TEST(Check, ProposesNoWordThatIsFar)
{
    EXPECT_EQ(check::DidYouMean("jump", {"equal", "less"}), "");
    EXPECT_EQ(check::DidYouMean("", {"a"}), "");
    EXPECT_EQ(check::DidYouMean("aaab", {"aaaa", "aaac", "aaad", "aaae"}),
              "did you mean 'aaaa', 'aaac' or 'aaad'?");
}

TEST(Check, LeavesOutWhatAnObjectAllowsWithinIt)
{
    const std::string wrong = Replaced(kDocument, "\"switchArgument\"", "\"colour\"");
    const auto countAllowed = [](const std::string& text)
    {
        const source::Text read = source::ReadText(text);
        std::size_t count = 0;
        for (const check::Finding& finding : check::CheckDocument(read).list)
        {
            count += finding.code == check::Code::UnknownMember ? 1 : 0;
        }
        return count;
    };

    EXPECT_EQ(countAllowed(wrong), 1u);
    const std::string allow = "\"$allow\": [\"VELL020\"], ";
    EXPECT_EQ(countAllowed(Replaced(wrong, "\"name\": \"Again\"", allow + "\"name\": \"Again\"")),
              0u);
    EXPECT_EQ(countAllowed(Replaced(wrong, "\"head\"", allow + "\"head\"")), 0u);
    EXPECT_EQ(countAllowed(Replaced(wrong, "\"name\": \"Stand\"", allow + "\"name\": \"Stand\"")),
              1u);
}

} // namespace vell::test
