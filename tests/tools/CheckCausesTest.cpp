// VELL: data-driven hierarchical state machines.
// tests/tools/CheckCausesTest.cpp: mistakes with many consequences, which are one finding.
#include "tests/support/DocumentBuilder.h"
#include "tests/tools/SampleMistakes.h"

#include <gtest/gtest.h>

namespace vell::test
{

TEST(CheckCauses, AMisspeltListOfParametersIsOneFinding)
{
    ExpectFound({
        {"",
         R"("parameters": [)",
         R"("params": [)",
         {"13:5: error VELL021: the document has no member 'parameters'; did you misspell it "
          "'params'?"}},
        {"",
         R"("parameters": [)",
         R"("parameters": null, "parameter": [)",
         {"13:19: error VELL022: 'parameters' must be an array, not null",
          "13:25: warning VELL025: the document does not read the member 'parameter'; it belongs "
          "in a condition"}},
    });
}

TEST(CheckCauses, AMisspeltListOfNodesIsOneFinding)
{
    ExpectFound({
        {"",
         R"("global": [)",
         R"("globals": [)",
         {"91:5: warning VELL020: unknown member 'globals'; did you mean 'global'?"}},
        {"Stand",
         R"("children": [1020])",
         R"("childs": [1020])",
         {"34:88: warning VELL020: unknown member 'childs'; did you mean 'children'?"}},
    });
}

TEST(CheckCauses, AnIdThatIsWrittenWronglyIsOneFinding)
{
    ExpectFound({
        {"Stand",
         R"("id": 1010)",
         R"("id": "1010")",
         {R"(34:41: error VELL022: 'id' must be a whole number, not the text "1010"; write 1010 without quotes)"}},
        {"Stand",
         R"("id": 1010)",
         R"("id": 1010.0)",
         {"34:41: error VELL024: 'id' must be a whole number: the library reads 1010.0 as 0; write "
          "1010"}},
        {"Stand",
         R"("id": 1010)",
         R"("id": -1010)",
         {"34:41: error VELL023: 'id' must be from 0 to 4294967295, not -1010"}},
        {"Stand",
         R"("id": 1010)",
         R"("id": null)",
         {"34:41: error VELL022: 'id' must be a whole number, not null"}},
        {"Stand",
         R"("id": 1010, )",
         "",
         {"34:26: error VELL050: 'Stand' has no id: nothing can refer to it; write 1010, which is "
          "referred to"}},
    });
}

TEST(CheckCauses, AListOfChildrenThatIsWrittenWronglyIsOneFinding)
{
    ExpectFound({
        {"Stand",
         R"("children": [1020])",
         R"("children": 1020)",
         {"34:100: error VELL022: 'children' must be an array of ids, not 1020; put it in [ ]"}},
        {"Stand",
         R"("children": [1020])",
         R"("children": "1020")",
         {R"(34:100: error VELL022: 'children' must be an array of ids, not the text "1020")"}},
        {"Stand",
         R"("children": [1020])",
         R"("children": ["1020"])",
         {R"(34:101: error VELL022: an element of 'children' must be a whole number, not the text "1020"; write 1020 without quotes)"}},
        {"Stand",
         R"("children": [1020])",
         R"("children": ["StandToWalk"])",
         {R"(34:101: error VELL056: an element of 'children' must be a whole number, not the text "StandToWalk"; the id of 'StandToWalk' is 1020)"}},
        {"Stand",
         R"("children": [1020])",
         R"("children": [{"id": 1020}])",
         {"34:101: error VELL022: an element of 'children' must be a whole number, not an object"}},
    });
}

TEST(CheckCauses, LayersThatAreNoListAreOneFinding)
{
    ExpectFound({
        {"",
         R"("layers": [
)",
         R"("layers": null, "others": [
)",
         {"25:15: error VELL022: 'layers' must be an array, not null",
          "25:21: warning VELL020: unknown member 'others'"}},
        {"",
         R"("layers": [
)",
         R"("layers": "all", "others": [
)",
         {R"(25:15: error VELL022: 'layers' must be an array, not the text "all")",
          "25:22: warning VELL020: unknown member 'others'"}},
        {"",
         R"("layers": [
)",
         R"("layers": {}, "others": [
)",
         {"25:15: error VELL022: 'layers' must be an array, not an object; put it in [ ]",
          "25:19: warning VELL020: unknown member 'others'"}},
        {"",
         R"("layers": [
)",
         R"("layers": [],
    "others": [
)",
         {"25:15: error VELL094: there are no layers, so there is nothing to run",
          "26:5: warning VELL020: unknown member 'others'"}},
        {"",
         R"("nodes": [)",
         R"("nodes": null, "others": [)",
         {"28:22: error VELL022: 'nodes' must be an array, not null",
          "28:28: warning VELL020: unknown member 'others'"}},
    });
}

TEST(CheckCauses, AWrongIdOfAParameterIsOneFinding)
{
    ExpectFound({
        {"speed",
         R"("id": 254213878)",
         R"("id": 254213879)",
         {"14:33: error VELL092: the id of parameter 'speed' is 254213879, but 4 conditions test "
          "254213878; it should be 254213878, the CRC of its name"}},
        {"speed",
         R"("id": 254213878)",
         R"("id": "254213878")",
         {R"(14:33: error VELL022: 'id' must be a whole number, not the text "254213878"; write 254213878 without quotes)"}},
        {"combo",
         R"("id": 2973511754, )",
         "",
         {"18:18: error VELL052: parameter 'combo' has no id, so it is left out, and 3 conditions "
          "test it in vain; it should be 2973511754, the CRC of its name"}},
        {"combo",
         R"("id": 2973511754)",
         R"("id": 2971444007)",
         {"18:33: error VELL053: parameter 'combo' has the id of 'armed' and is left out, and 3 "
          "conditions test it in vain; it should be 2973511754, the CRC of its name",
          "  16:33: the first parameter with this id"}},
        {"armed",
         R"("id": 2971444007)",
         R"("id": 0)",
         {"16:33: error VELL052: the id of parameter 'armed' is 0, so it is left out, and 2 "
          "conditions test it in vain; it should be 2971444007, the CRC of its name"}},
    });
}

TEST(CheckCauses, WhatIsOutOfReachBecauseOfAGlobalNodeOrAnEndIsNotTold)
{
    ExpectFound({
        {"Interruptions",
         R"("builder": "global")",
         R"("builder": "generic")",
         {"91:15: warning VELL097: 'global' has no node with the builder 'global', so nothing "
          "interrupts the machine"}},
        {"Interruptions",
         R"("children": [5001, 5002]})",
         R"("children": [5001, 5002]}, {"name": "Others", "id": 5999, "builder": "global"})",
         {"92:18: warning VELL096: global node 'Interruptions' (5000) has no effect: of several "
          "global nodes the last counts",
          "  92:119: a later one"}},
        {"Locomotion",
         R"("enter": 1001)",
         R"("enter": 2001)",
         {"48:65: warning VELL086: enter node 'CombatEnter' (2001) is the enter node of "
          "'Locomotion' (1000), but its parentId is 2000",
          "  29:125: named here",
          "50:59: warning VELL080: state 'Guard' (2010) runs in 'Locomotion' (1000), but its "
          "parentId is 2000, so 'Locomotion' (1000) does not resume it; parentId should be 1000"}},
    });
}

TEST(CheckCauses, NodesInThePlaceOfLayersAreOneFinding)
{
    std::string text = ReadDocument("samples/locomotion.json");
    const std::size_t begin = text.find('{', text.find("\"layers\""));
    const std::size_t nodes = text.find('{', begin + 1);
    const std::size_t end = text.rfind(']', text.rfind(']') - 1);
    text = text.substr(0, begin) + text.substr(nodes, end - nodes) + "]}";

    const Lines found = FindingsOf(text);

    ASSERT_EQ(found.size(), 1u) << found.back();
    EXPECT_NE(found[0].find("error VELL021: the elements of 'layers' are layers, and this is a "
                            "node; write \"layers\": [{\"nodes\": [...]}]"),
              std::string::npos)
        << found[0];
}

} // namespace vell::test
