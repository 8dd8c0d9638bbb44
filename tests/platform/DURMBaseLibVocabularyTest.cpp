// VELL: data-driven hierarchical state machines.
// tests/platform/DURMBaseLibVocabularyTest.cpp: names and numbers of the machine document.
#include <durm/DURMBaseLib.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace DURMBaseLib;

namespace
{
// The numbers are an interface: a tool writes documents and a site may bring its own vocabulary.
const std::vector<std::pair<int, __JSONTYPES__>> kMemberNumbers = {
    {0x00, JSON_Name},
    {0x01, JSON_ID},
    {0x02, JSON_ParentID},
    {0x05, JSON_BuilderType},
    {0x06, JSON_GUID},
    {0x0d, JSON_Attributes},
    {0x11, JSON_ClipName},
    {0x15, JSON_ClipFlag},
    {0x20, JSON_ConditionType},
    {0x21, JSON_ConditionParameter},
    {0x23, JSON_ConditionEvaluation},
    {0x24, JSON_ConditionValue},
    {0x2b, JSON_ConnectorType},
    {0x2d, JSON_ParameterType},
    {0x2e, JSON_ParameterDefault},
    {0x2f, JSON_ParameterAssign},
    {0x32, JSON_ParameterResetEachFrame},
    {0x3b, JSON_TransitionSwitchArgument},
    {0x3d, JSON_Conditions},
    {0x43, JSON_TransitionSource},
    {0x44, JSON_TransitionTarget},
    {0x45, JSON_TransitionUnread},
    {0x46, JSON_TransitionTagArgument},
    {0x47, JSON_TransitionTag},
    {0x49, JSON_TransitionPriority},
    {0x4a, JSON_TransitionDisabled},
    {0x4c, JSON_Parameters},
    {0x4f, JSON_Nodes},
    {0x51, JSON_Skeleton},
    {0x55, JSON_Layers},
    {0x5f, JSON_Value},
    {0x60, JSON_AttributeType},
    {0x61, JSON_SkeletonFileName},
    {0x62, JSON_ModelFileName},
    {0x65, JSON_Children},
    {0x66, JSON_EntryTarget},
    {0x67, JSON_ExitConnector},
    {0x79, JSON_ScriptName},
    {0x7e, JSON_Head},
    {0x7f, JSON_HeadEnterLayer},
    {0x80, JSON_HeadEnterNode},
    {0x82, JSON_HeadMachineType},
    {0x83, JSON_HeadVersion},
    {0x84, JSON_HeadValue84},
    {0x85, JSON_HeadSubstateRoot},
    {0x86, JSON_HeadMemory},
    {0x87, JSON_Global},
    {0x89, JSON_SkeletonValue89},
    {0x90, JSON_SubstateEnter},
    {0x91, JSON_SubstateExit},
    {0x9a, JSON_HeadBuildID},
    {0xa5, JSON_ClipSecondaryB},
    {0xa6, JSON_ClipSecondaryA},
};

std::string ToLower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c)
                   {
                       return static_cast<char>(std::tolower(c));
                   });
    return text;
}

bool IsLowerCamelCase(const std::string& text)
{
    const auto isWordByte = [](unsigned char c)
    {
        return std::isalnum(c) != 0;
    };
    return !text.empty() && std::islower(static_cast<unsigned char>(text[0])) != 0 &&
           std::all_of(text.begin(), text.end(), isWordByte);
}

unsigned Crc(std::string text)
{
    return ConvertStringToCRC(text);
}
} // namespace

TEST(JsonNames, EnumeratorsHaveTheirFixedNumbers)
{
    ASSERT_EQ(kMemberNumbers.size(), 53U);
    for (const auto& [number, enumerator] : kMemberNumbers)
    {
        EXPECT_EQ(static_cast<int>(enumerator), number);
    }
}

TEST(JsonNames, EveryMemberHasALowerCamelCaseTextOfItsOwn)
{
    std::set<std::string> texts;
    for (const auto& [number, enumerator] : kMemberNumbers)
    {
        const char* text = GetJsonName(enumerator);
        ASSERT_NE(text, nullptr) << number;
        EXPECT_TRUE(IsLowerCamelCase(text)) << text;
        EXPECT_TRUE(texts.insert(text).second) << text;
    }
}

TEST(JsonNames, TheSameTextIsHandedOutEachTime)
{
    const char* first = GetJsonName(JSON_HeadMemory);

    EXPECT_EQ(GetJsonName(JSON_HeadMemory), first);
}

TEST(JsonNames, NumbersThatAreNoMemberGiveNull)
{
    std::set<int> members;
    for (const auto& member : kMemberNumbers)
    {
        members.insert(member.first);
    }

    for (int number = -300; number <= 300; ++number)
    {
        const char* text = GetJsonName(static_cast<__JSONTYPES__>(number));
        EXPECT_EQ(text != nullptr, members.count(number) == 1) << number;
    }
    EXPECT_EQ(GetJsonName(static_cast<__JSONTYPES__>(0x7fffffff)), nullptr);
}

TEST(VocabularyEnumerations, EnumerationsHaveAnIntBeneath)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<__JSONTYPES__>, int>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<__ePARAMTYPE__>, int>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<__DURM_BUILDERS__>, int>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<__CONNECTOR_TYPES__>, int>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<__STATE_MACHINE_TYPES__>, int>));
}

TEST(ParameterTypeNames, EachOfTheEightHasANameThatLeadsBackToItsNumber)
{
    std::set<std::string> names;
    for (int number = 1; number <= 8; ++number)
    {
        const char* name = GetParameterName(static_cast<__ePARAMTYPE__>(number));
        ASSERT_NE(name, nullptr) << number;
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(GetParameterName(name), number);
        EXPECT_EQ(GetParameterTypeByName(name), static_cast<__ePARAMTYPE__>(number));
    }
}

TEST(ParameterTypeNames, EnumeratorsHaveTheirFixedNumbers)
{
    EXPECT_EQ(PARAM_Bool, 1);
    EXPECT_EQ(PARAM_Integer, 2);
    EXPECT_EQ(PARAM_Float, 3);
    EXPECT_EQ(PARAM_Float2, 4);
    EXPECT_EQ(PARAM_Float3, 5);
    EXPECT_EQ(PARAM_Float4, 6);
    EXPECT_EQ(PARAM_Text, 7);
    EXPECT_EQ(PARAM_Message, 8);
}

TEST(ParameterTypeNames, UnknownNumbersHaveNoName)
{
    EXPECT_EQ(GetParameterName(PARAM_None), nullptr);
    EXPECT_EQ(GetParameterName(static_cast<__ePARAMTYPE__>(9)), nullptr);
    EXPECT_EQ(GetParameterName(static_cast<__ePARAMTYPE__>(-1)), nullptr);
}

TEST(ParameterTypeNames, UnknownAndNullTextsGiveZero)
{
    const char* none = nullptr;

    EXPECT_EQ(GetParameterName(none), 0);
    EXPECT_EQ(GetParameterName(""), 0);
    EXPECT_EQ(GetParameterName("boolean"), 0);
    EXPECT_EQ(GetParameterName("boo"), 0);
    EXPECT_EQ(GetParameterName("Bool"), 0);
    EXPECT_EQ(GetParameterTypeByName(none), 0);
    EXPECT_EQ(GetParameterTypeByName("nothing"), 0);
}

TEST(BuilderNames, TheTenStandardNamesGiveTheirNumbers)
{
    EXPECT_EQ(GetBuilderIndex("base"), BUILDER_Base);
    EXPECT_EQ(GetBuilderIndex("connector"), BUILDER_Connector);
    EXPECT_EQ(GetBuilderIndex("transition"), BUILDER_Transition);
    EXPECT_EQ(GetBuilderIndex("condition"), BUILDER_Condition);
    EXPECT_EQ(GetBuilderIndex("enter"), BUILDER_Enter);
    EXPECT_EQ(GetBuilderIndex("exit"), BUILDER_Exit);
    EXPECT_EQ(GetBuilderIndex("generic"), BUILDER_Generic);
    EXPECT_EQ(GetBuilderIndex("animClip"), BUILDER_AnimClip);
    EXPECT_EQ(GetBuilderIndex("global"), BUILDER_Global);
    EXPECT_EQ(GetBuilderIndex("substate"), BUILDER_Substate);
}

TEST(BuilderNames, EnumeratorsHaveTheirFixedNumbers)
{
    EXPECT_EQ(BUILDER_Base, 1);
    EXPECT_EQ(BUILDER_Connector, 2);
    EXPECT_EQ(BUILDER_Transition, 4);
    EXPECT_EQ(BUILDER_Condition, 5);
    EXPECT_EQ(BUILDER_Enter, 8);
    EXPECT_EQ(BUILDER_Exit, 9);
    EXPECT_EQ(BUILDER_Generic, 10);
    EXPECT_EQ(BUILDER_AnimClip, 21);
    EXPECT_EQ(BUILDER_Global, 23);
    EXPECT_EQ(BUILDER_Substate, 24);
}

TEST(BuilderNames, ADecimalTextIsItsOwnNumber)
{
    EXPECT_EQ(GetBuilderIndex("7"), 7);
    EXPECT_EQ(GetBuilderIndex("1000"), 1000);
    EXPECT_EQ(GetBuilderIndex("0042"), 42);
    EXPECT_EQ(GetBuilderIndex("2147483647"), 2147483647);
}

TEST(BuilderNames, TextsThatAreNoNameAndNoDecimalNumberGiveZero)
{
    const std::vector<const char*> texts = {
        nullptr,      "",           "0",    "Generic",
        "state",      "12a",        "a12",  " 12",
        "12 ",        "-12",        "+12",  "1.5",
        "2147483648", "4294967306", "0x1a", "99999999999999999999"};
    for (const char* text : texts)
    {
        EXPECT_EQ(GetBuilderIndex(text), 0) << (text != nullptr ? text : "null");
    }
}

TEST(AssignNames, NamesReachBothSidesOfEveryClassBoundary)
{
    // Parameters take their class from 2 to 7, 10 to 23 and 26 to 51; all else has none.
    const std::map<int, const char*> names = {
        {1, "host"},           {2, "leftStick"},    {7, "mouseWheel"}, {8, "gyro"},
        {9, "accelerometer"},  {10, "buttonSouth"}, {23, "select"},    {24, "touchPosition"},
        {25, "touchPressure"}, {26, "keyA"},        {51, "keyZ"},      {52, "pointer"},
    };

    for (const auto& [number, name] : names)
    {
        EXPECT_EQ(GetAssignName(name), number) << name;
    }
}

TEST(AssignNames, UnknownAndNullTextsGiveZero)
{
    EXPECT_EQ(GetAssignName(nullptr), 0);
    EXPECT_EQ(GetAssignName(""), 0);
    EXPECT_EQ(GetAssignName("keyAA"), 0);
    EXPECT_EQ(GetAssignName("zzz"), 0);
    EXPECT_EQ(GetAssignName("12"), 0);
}

TEST(ConnectorNames, TheFourNamesDifferFromEachOtherAndFromEnterAndExitInAnyCase)
{
    std::set<std::string> names = {"enter", "exit"};

    for (int number = 1; number <= 4; ++number)
    {
        const char* name = GetConnectorName(static_cast<__CONNECTOR_TYPES__>(number));
        ASSERT_NE(name, nullptr) << number;
        EXPECT_TRUE(names.insert(ToLower(name)).second) << name;
    }
}

TEST(ConnectorNames, UnknownNumbersHaveNoName)
{
    EXPECT_EQ(GetConnectorName(CONNECTOR_None), nullptr);
    EXPECT_EQ(GetConnectorName(static_cast<__CONNECTOR_TYPES__>(5)), nullptr);
    EXPECT_EQ(GetConnectorName(static_cast<__CONNECTOR_TYPES__>(-1)), nullptr);
}

TEST(OperatorNames, NamesGiveTheNumbersOfTheTests)
{
    EXPECT_EQ(GetEvaluationEnum("equal"), 1);
    EXPECT_EQ(GetEvaluationEnum("notEqual"), 2);
    EXPECT_EQ(GetEvaluationEnum("greater"), 3);
    EXPECT_EQ(GetEvaluationEnum("greaterOrEqual"), 4);
    EXPECT_EQ(GetEvaluationEnum("less"), 5);
    EXPECT_EQ(GetEvaluationEnum("lessOrEqual"), 6);
    EXPECT_EQ(GetEvaluationEnum("range"), 10);
}

TEST(OperatorNames, UnknownAndNullTextsGiveZero)
{
    EXPECT_EQ(GetEvaluationEnum(nullptr), 0);
    EXPECT_EQ(GetEvaluationEnum(""), 0);
    EXPECT_EQ(GetEvaluationEnum("=="), 0);
    EXPECT_EQ(GetEvaluationEnum("Equal"), 0);
}

TEST(MachineTypeNames, NamesGiveTheirNumbersAndOneIsNotTheStartingValue)
{
    EXPECT_EQ(GetStateMachineTypeByName("character"), HSMTYPE_Character);
    EXPECT_EQ(GetStateMachineTypeByName("prop"), HSMTYPE_Prop);
    EXPECT_EQ(GetStateMachineTypeByName("camera"), HSMTYPE_Camera);
    EXPECT_EQ(HSMTYPE_Character, 1);
    EXPECT_NE(HSMTYPE_Prop, 1);
}

TEST(MachineTypeNames, UnknownAndNullTextsGiveZero)
{
    EXPECT_EQ(GetStateMachineTypeByName(nullptr), HSMTYPE_None);
    EXPECT_EQ(GetStateMachineTypeByName(""), HSMTYPE_None);
    EXPECT_EQ(GetStateMachineTypeByName("vehicle"), HSMTYPE_None);
}

TEST(ConvertStringToCRC, GivesTheCheckValueOfTheStandard)
{
    EXPECT_EQ(Crc("123456789"), 0xCBF43926U);
}

TEST(ConvertStringToCRC, CountsEveryByteAlsoZeroAndHighOnes)
{
    EXPECT_EQ(Crc(""), 0U);
    EXPECT_EQ(Crc("a"), 0xE8B7BE43U);
    EXPECT_EQ(Crc(std::string(1, '\0')), 0xD202EF8DU);
    EXPECT_EQ(Crc(std::string(4, '\xff')), 0xFFFFFFFFU);
}

TEST(ConvertStringToCRC, LeavesTheTextAsItWas)
{
    std::string text = "speed";

    ConvertStringToCRC(text);

    EXPECT_EQ(text, "speed");
}
