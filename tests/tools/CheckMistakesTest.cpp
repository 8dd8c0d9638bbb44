// VELL: data-driven hierarchical state machines.
// tests/tools/CheckMistakesTest.cpp: single mistakes in a document that works, and what is found.
#include "tests/tools/SampleMistakes.h"

#include <gtest/gtest.h>

namespace vell::test
{

TEST(CheckMistakes, AreNotFoundInTheSamples)
{
    EXPECT_EQ(FindingsOf(ReadDocument("tests/data/character.json")), Lines());
    EXPECT_EQ(FindingsOf(ReadDocument("samples/character.json")), Lines());
    EXPECT_EQ(FindingsOf(ReadDocument("samples/guard.json")), Lines());
    EXPECT_EQ(FindingsOf(ReadDocument("samples/locomotion.json")), Lines());
}

TEST(CheckMistakes, OfTheTextAreFound)
{
    ExpectFound({
        {"",
         R"("buildId": "1",)",
         R"("buildId": "1")",
         {"6:23: error VELL005: missing comma; add ',' behind this"}},
        {"",
         R"("substateRoot": 1000)",
         R"("substateRoot": 1000,)",
         {"11:29: error VELL004: trailing comma is not allowed; remove it"}},
        {"",
         R"("version": 3,)",
         R"("version": 3, // the newest)",
         {"4:23: error VELL003: a comment is not allowed; remove it"}},
        {"",
         R"("version": 3,)",
         R"("version": 3, "version": 2,)",
         {"4:23: warning VELL017: the member 'version' is already on line 4, and only the first "
          "counts; remove one of them",
          "  4:9: the first is here"}},
    });
}

TEST(CheckMistakes, OfMembersAndWordsAreFound)
{
    ExpectFound({
        {"StandToWalk",
         R"("target")",
         R"("Target")",
         {"37:94: error VELL021: the transition 'StandToWalk' has no member 'target'; did you "
          "misspell it 'Target'?"}},
        {"StandToWalk",
         R"("builder": "transition", )",
         "",
         {"37:17: error VELL021: the node 'StandToWalk' has no member 'builder'"}},
        {"StandToWalk",
         R"("target": 1011)",
         R"("target": "1011")",
         {R"(37:104: error VELL022: 'target' must be a whole number, not the text "1011"; write 1011 without quotes)"}},
        {"WalkToRun",
         R"("priority": 1)",
         R"("priority": "1")",
         {R"(38:120: error VELL022: 'priority' must be a whole number, not the text "1"; write 1 without quotes)"}},
        {"DrawWeapon",
         R"("value": true)",
         R"("value": "true")",
         {"30:264: error VELL106: the value of the condition of transition 'DrawWeapon' (1090) is "
          "neither true nor false and counts as false: the condition is of the type 'bool'; write "
          "true without quotes"}},
        {"",
         R"("memory": 1000)",
         R"("memory": 1000.0)",
         {"8:19: error VELL024: 'memory' must be a whole number: the library reads 1000.0 as 0; "
          "write 1000"}},
        {"",
         R"(        "enterNode": 1000,
)",
         "",
         {"2:13: error VELL021: the head has no member 'enterNode'"}},
        {"",
         R"("character")",
         R"("Character")",
         {"7:24: error VELL045: unknown machine type 'Character'; did you mean 'character'?"}},
        {"Run",
         R"("animClip")",
         R"("animclip")",
         {"36:74: error VELL040: unknown builder 'animclip'; did you mean 'animClip'?"}},
        {"speed",
         R"("leftTrigger")",
         R"("leftTriger")",
         {"14:96: error VELL044: unknown input 'leftTriger'; did you mean 'leftTrigger'?"}},
        {"combo",
         R"("integer")",
         R"("int")",
         {"18:62: error VELL042: unknown parameter type 'int'; did you mean 'integer'?"}},
        {"EndAttack",
         R"("less")",
         R"("lessThan")",
         {"53:234: error VELL041: unknown operator 'lessThan'; did you mean 'less'?"}},
        {"EndAttack",
         R"("integer")",
         R"("number")",
         {"53:186: error VELL043: unknown condition type 'number'; did you mean 'float'?"}},
        {"Walk",
         R"("double")",
         R"("float")",
         {"35:228: error VELL047: unknown attribute type 'float'; did you mean 'double'?"}},
    });
}

TEST(CheckMistakes, OfIdsAreFound)
{
    ExpectFound({
        {"Hook",
         R"("id": 2111)",
         R"("id": 0)",
         {"57:40: error VELL050: the id of 'Hook' is 0, which means none: nothing can refer to it; "
          "write 2111, which is referred to"}},
        {"Hook",
         R"("id": 2111, )",
         "",
         {"57:26: error VELL050: 'Hook' has no id: nothing can refer to it; write 2111, which is "
          "referred to"}},
        {"Hook",
         R"("id": 2111)",
         R"("id": 2110)",
         {"57:40: error VELL051: 'Hook' has the id 2110 of 'Jab': it and all nodes behind it in "
          "layer 'Combat' are not read",
          "  56:39: the first node with this id",
          "58:102: error VELL070: transition 'JabToHook' (2120) leads to node 2111, which does not "
          "exist"}},
        {"stick",
         R"("id": 1337666258)",
         R"("id": 1337666259)",
         {"15:33: warning VELL055: the id of parameter 'stick' is 1337666259; it should be "
          "1337666258, the CRC of its name"}},
        {"combo",
         R"("name": "combo")",
         R"("name": "armed")",
         {"18:18: error VELL054: there is a parameter 'armed' already: this one is left out",
          "  16:18: the first parameter of this name"}},
        {"StandToWalk",
         R"("parameter": 254213878)",
         R"("parameter": "speed")",
         {R"(37:213: error VELL056: 'parameter' must be a whole number, not the text "speed"; the id of 'speed' is 254213878)"}},
        {"StandToWalk",
         R"("target": 1011)",
         R"("target": "Walk")",
         {R"(37:104: error VELL056: 'target' must be a whole number, not the text "Walk"; the id of 'Walk' is 1011)"}},
    });
}

TEST(CheckMistakes, OfReferencesAreFound)
{
    ExpectFound({
        {"StandToWalk",
         R"("target": 1011)",
         R"("target": 1101)",
         {"37:104: error VELL070: transition 'StandToWalk' (1020) leads to node 1101, which does "
          "not exist; did you mean 1011, 'Walk'?"}},
        {"StandToWalk",
         R"("target": 1011)",
         R"("target": 1021)",
         {"37:104: error VELL071: transition 'StandToWalk' (1020) leads to 'WalkToRun' (1021), a "
          "transition, which cannot run",
          "  38:26: its target"}},
        {"StandToWalk",
         R"("target": 1011)",
         R"("target": 0)",
         {"37:104: error VELL072: transition 'StandToWalk' (1020) has the target 0, which means "
          "none: it never fires, and while it holds no transition behind it is tested"}},
        {"Walk",
         "[1021, 1022]",
         "[1021, 1122, 1022]",
         {"35:106: error VELL073: 'children' of state 'Walk' (1011) names node 1122, which does "
          "not exist; did you mean 1022, 'WalkToStand'?"}},
        {"Walk",
         "[1021, 1022]",
         "[1021, 0, 1022]",
         {"35:106: error VELL074: 'children' of state 'Walk' (1011) names 0, which means none, so "
          "all layers are lost"}},
        {"Walk",
         "[1021, 1022]",
         "[1021, 1102, 1022]",
         {"35:106: error VELL073: 'children' of state 'Walk' (1011) names node 1102, which does "
          "not exist"}},
        {"Walk",
         "[1021, 1022]",
         "[1021, 1002, 1022]",
         {"35:106: warning VELL075: 'children' of state 'Walk' (1011) names 'LocomotionExit' "
          "(1002), whose parentId is 1000",
          "  33:68: its parentId"}},
        {"Walk",
         "[1021, 1022]",
         "[1021]",
         {"39:26: warning VELL076: transition 'WalkToStand' (1022) is in no node's children, so it "
          "is never tested; add 1022 to those of 'Walk' (1011)"}},
        {"Run",
         "[1023]",
         "[1023, 1021]",
         {"38:26: warning VELL077: transition 'WalkToRun' (1021) is in the children of 'Walk' "
          "(1011) and of 'Run' (1012): both test it",
          "  36:98: the second list",
          "38:26: warning VELL127: transition 'WalkToRun' (1021) leads back to 'Run' (1012), which "
          "is left and entered in every tick in which it holds"}},
        {"StandToWalk",
         R"("source": 1010)",
         R"("source": 1011)",
         {"37:88: warning VELL079: the source of transition 'StandToWalk' (1020) is 'Walk' (1011), "
          "but the transition leaves 'Stand' (1010), whose children list it",
          "  34:100: the list"}},
        {"Jab",
         R"("parentId": 2011, )",
         "",
         {"56:26: warning VELL080: state 'Jab' (2110) runs in 'Attack' (2011), but it has no "
          "parentId, so 'Attack' (2011) does not resume it; parentId should be 2011"}},
        {"Hook",
         R"("parentId": 2011)",
         R"("parentId": 2000)",
         {"57:58: warning VELL080: state 'Hook' (2111) runs in 'Attack' (2011), but its parentId "
          "is 2000, so 'Attack' (2011) does not resume it; parentId should be 2011"}},
        {"JabToHook",
         R"("target": 2111)",
         R"("target": 2010)",
         {"57:26: warning VELL120: state 'Hook' (2111) is never entered: no transition in force "
          "leads to it from the start",
          "58:102: warning VELL081: transition 'JabToHook' (2120) leads to 'Guard' (2010), whose "
          "parentId is 2000, but there it runs in 'Attack' (2011); a transition stays in the level "
          "of its state; to leave a level, give its substate the transition",
          "  50:59: the parentId of the target"}},
        {"Attack",
         R"("enter": 2101)",
         R"("enter": 2110)",
         {"51:118: error VELL084: 'enter' of substate 'Attack' (2011) is 'Jab' (2110), a state and "
          "not an enter node: the substate cannot be entered",
          "  56:26: the node"}},
        {"Attack",
         R"("exit": 2102)",
         R"("exit": 2103)",
         {"51:132: error VELL085: 'exit' of substate 'Attack' (2011) is node 2103, which does not "
          "exist; did you mean 2102, 'AttackExit'?"}},
        {"AttackEnter",
         R"("entryTarget": 2110)",
         R"("entryTarget": 2120)",
         {"54:106: error VELL083: 'entryTarget' of enter node 'AttackEnter' (2101) is 'JabToHook' "
          "(2120), a transition, which cannot run",
          "  58:26: the node"}},
        {"",
         R"("enterNode": 1000)",
         R"("enterNode": 1004)",
         {"10:22: error VELL088: 'enterNode' is node 1004, which does not exist; did you mean "
          "1000, "
          "'Locomotion'?"}},
        {"",
         R"("substateRoot": 1000)",
         R"("substateRoot": 1020)",
         {"11:25: error VELL090: 'substateRoot' is 'StandToWalk' (1020), a transition, which "
          "cannot run: the machine starts nothing"}},
        {"",
         R"("version": 3)",
         R"("version": 2)",
         {"4:20: error VELL099: the machine starts nothing: 'substateRoot' is read from version 3 "
          "on, and the version is 2; write 3"}},
        {"StandToWalk",
         R"("parameter": 254213878)",
         R"("parameter": 254213887)",
         {"37:213: error VELL092: the condition of transition 'StandToWalk' (1020) tests parameter "
          "254213887, which does not exist; did you mean 254213878, 'speed'?"}},
        {"StandToWalk",
         R"([{"name": "speed greater", "conditionType": "float", "parameter": 254213878, "operator": "greater", "operand": [{"value": 0.1}]}])",
         "[]",
         {"37:147: error VELL098: transition 'StandToWalk' (1020) has no conditions: only a "
          "trigger of the host can make it fire"}},
    });
}

TEST(CheckMistakes, AcrossTypesAreFound)
{
    ExpectFound({
        {"StandToWalk",
         R"("conditionType": "float")",
         R"("conditionType": "bool")",
         {"37:191: error VELL100: the condition of transition 'StandToWalk' (1020) is of the type "
          "'bool', but 'speed' (254213878) is of the type 'float': it compares bytes of another "
          "kind; conditionType should be 'float'",
          "  14:61: the type of the parameter"}},
        {"HookToEnd",
         R"("3,9")",
         R"("3-9")",
         {R"(59:243: error VELL103: '3-9' is not a range, so the condition of transition 'HookToEnd' (2121) and those behind it are left out; write "3, 9")"}},
        {"HookToEnd",
         R"("3,9")",
         "3",
         {R"(59:243: error VELL102: the value of the condition of transition 'HookToEnd' (2121) is no text: the range of 'range' is written as "0, 2", and without it the condition and those behind it are left out)"}},
        {"ReachToOpen",
         R"("equal")",
         R"("greater")",
         {"71:235: warning VELL105: the condition of transition 'ReachToOpen' (3020) has the "
          "operator 'greater', but a message is always tested for equality; write 'equal'"}},
        {"BackToLocomotion",
         R"("operator": "equal", "operand": [{"value": false}])",
         R"("operator": "notEqual", "operand": [{"value": true}])",
         {"66:239: warning VELL105: the condition of transition 'BackToLocomotion' (3090) has the "
          "operator 'notEqual', but a bool is always tested for equality; write 'equal' and "
          "false"}},
        {"EndAttack",
         R"("value": 1)",
         R"("value": 1.5)",
         {"53:264: warning VELL108: the value of the condition of transition 'EndAttack' (2021) is "
          "not a whole number and counts as 0: the condition is of the type 'integer'"}},
        {"UseDoor",
         R"("value": "door")",
         R"("value": "")",
         {"31:263: error VELL107: the value of the condition of transition 'UseDoor' (1091) is an "
          "empty text, so it and those behind it are left out; no condition can test for a message "
          "that was not fired"}},
    });
}

TEST(CheckMistakes, OfMeaningAreFound)
{
    ExpectFound({
        {"JabToHook",
         R"("target": 2111)",
         R"("target": 2102)",
         {"57:26: warning VELL120: state 'Hook' (2111) is never entered: no transition in force "
          "leads to it from the start"}},
        {"WalkToStand",
         R"("lessOrEqual", "operand": [{"value": 0.1}])",
         R"("lessOrEqual", "operand": [{"value": 0.5}])",
         {"37:26: warning VELL126: transition 'StandToWalk' (1020) and 'WalkToStand' (1022) throw "
          "the machine from 'Stand' (1010) to 'Walk' (1011) and back in every tick: both hold for "
          "the same value of 'speed' (254213878)",
          "  39:26: the way back"}},
        {"UseDoor",
         R"("conditionType": "message", "parameter": 2494680139, "operator": "equal", "operand": [{"value": "door"}])",
         R"("conditionType": "bool", "parameter": 2971444007, "operator": "equal", "operand": [{"value": true}])",
         {"19:82: warning VELL132: message 'use' (2494680139) is fired as 'door', and no condition "
          "waits for that; the conditions wait for 'done'",
          "31:26: warning VELL125: transition 'UseDoor' (1091) is never taken from 'Locomotion' "
          "(1000): 'DrawWeapon' (1090) is tested before it and holds whenever it does; of equal "
          "priorities the order of 'children' counts",
          "  30:26: tested before it"}},
        {"EndAttack",
         R"("less", "operand": [{"value": 1}])",
         R"("lessOrEqual", "operand": [{"value": 2147483647}])",
         {"53:271: warning VELL124: the condition of transition 'EndAttack' (2021) always holds, "
          "whatever the value of 'combo' (2973511754)"}},
        {"EndAttack",
         R"("less", "operand": [{"value": 1}])",
         R"("greater", "operand": [{"value": 2147483647}])",
         {"53:267: warning VELL123: the condition of transition 'EndAttack' (2021) never holds, "
          "whatever the value of 'combo' (2973511754)"}},
        {"EndAttack",
         R"("less", "operand": [{"value": 1}])",
         R"("greater", "operand": [{"value": 1}])",
         {"58:26: warning VELL128: what transition 'JabToHook' (2120) enters is left in the same "
          "tick: a transition of 'Attack' (2011), around it, holds whenever it does",
          "  51:26: the substate around it",
          "59:26: warning VELL128: what transition 'HookToEnd' (2121) enters is left in the same "
          "tick: a transition of 'Attack' (2011), around it, holds whenever it does",
          "  51:26: the substate around it"}},
        {"TurnAround",
         R"("priority": 10)",
         R"("priority": 0)",
         {"93:113: warning VELL129: transition 'TurnAround' (5001) has the priority 0: a "
          "transition of the global node below 1 never starts a blip"}},
        {"HitSettles",
         R"("target": 5012)",
         R"("target": 5010)",
         {"79:26: warning VELL127: transition 'HitSettles' (5011) leads back to 'HitReaction' "
          "(5010), which is left and entered in every tick in which it holds",
          "80:26: warning VELL121: exit node 'HitDone' (5012) is the 'exit' of no substate and the "
          "target of no transition in force",
          "94:92: warning VELL130: the blip that transition 'TakeHit' (5002) starts never ends by "
          "itself: no exit node can be reached from 'HitReaction' (5010)",
          "  78:26: where the blip begins"}},
        {"combo",
         R"("name": "combo")",
         R"("name": "unused", "id": 2485930233, "parameterType": "bool"},
        {"name": "combo")",
         {"18:18: note VELL131: no condition tests parameter 'unused' (2485930233)"}},
        {"use",
         R"("default": "door")",
         R"("default": "gate")",
         {"19:82: warning VELL132: message 'use' (2494680139) is fired as 'gate', and no condition "
          "waits for that; the conditions wait for 'done'"}},
        {"use",
         R"("default": "door")",
         R"("default": "door", "resetEachFrame": true)",
         {"19:108: warning VELL133: 'resetEachFrame' of message 'use' (2494680139) fires it at the "
          "end of every tick, because its default is the text that it has when it is fired"}},
    });
}

TEST(CheckMistakes, OfMessagesThatAreFiredEmptyAreFound)
{
    ExpectFound({
        {"use",
         R"(, "default": "door")",
         "",
         {"19:18: warning VELL134: message 'use' (2494680139) has no default, so it is fired as an "
          "empty text and no condition can match it; write one of the texts that the conditions "
          "wait for"}},
    });
}

TEST(CheckMistakes, OfNodesThatAreNoStatesAreFound)
{
    ExpectFound({
        {"WalkToStand",
         R"("target": 1010)",
         R"("target": 1001)",
         {"39:104: warning VELL135: transition 'WalkToStand' (1022) leads to 'LocomotionEnter' "
          "(1001), an enter node: as a state it does nothing, and the machine stays there; write "
          "1010 to enter state 'Stand' (1010)"}},
        {"WalkToStand",
         R"("target": 1010)",
         R"("target": 5000)",
         {"39:104: warning VELL135: transition 'WalkToStand' (1022) leads to 'Interruptions' "
          "(5000), a global node: as a state it does nothing"}},
        {"LocomotionEnter",
         R"("entryTarget": 1010)",
         R"("entryTarget": 1001)",
         {"32:110: warning VELL135: 'entryTarget' of enter node 'LocomotionEnter' (1001) is the "
          "node itself: as a state it does nothing, and the machine stays there"}},
        {"LocomotionEnter",
         R"("entryTarget": 1010)",
         R"("entryTarget": 1000)",
         {"32:110: warning VELL135: 'entryTarget' of enter node 'LocomotionEnter' (1001) is its "
          "own substate 'Locomotion' (1000), which is then entered within itself and does "
          "nothing"}},
        {"LocomotionEnter",
         R"("entryTarget": 1010)",
         R"("entryTarget": 2001)",
         {"32:110: warning VELL135: 'entryTarget' of enter node 'LocomotionEnter' (1001) is "
          "'CombatEnter' (2001), an enter node: as a state it does nothing, and the machine stays "
          "there"}},
        {"",
         R"("substateRoot": 1000)",
         R"("substateRoot": 1001)",
         {"11:25: warning VELL135: 'substateRoot' is 'LocomotionEnter' (1001), an enter node: as a "
          "state it does nothing, and the machine stays there; write 1000 to enter substate "
          "'Locomotion' (1000)"}},
        {"",
         R"("substateRoot": 1000)",
         R"("substateRoot": 1002)",
         {"11:25: warning VELL135: 'substateRoot' is 'LocomotionExit' (1002), an exit node: as a "
          "state it does nothing, and the machine stays there"}},
        {"",
         R"("substateRoot": 1000)",
         R"("substateRoot": 5000)",
         {"11:25: warning VELL135: 'substateRoot' is 'Interruptions' (5000), a global node: as a "
          "state it does nothing"}},
    });
}

TEST(CheckMistakes, OfListsOfChildrenAreFound)
{
    ExpectFound({
        {"Walk",
         "[1021, 1022]",
         "[1021, 1022, 1022]",
         {"35:112: warning VELL136: 'children' of state 'Walk' (1011) names 'WalkToStand' (1022) "
          "twice; remove one of them",
          "  35:106: the first is here"}},
        {"Walk",
         "[1021, 1022]",
         "[1021, 1022, 254213878]",
         {"35:112: error VELL073: 'children' of state 'Walk' (1011) names 254213878, which is the "
          "parameter 'speed' and not a node"}},
    });
}

TEST(CheckMistakes, OfTheBoundsOfARangeAreFound)
{
    ExpectFound({
        {"HookToEnd",
         R"("3,9")",
         R"("3.5,9.7")",
         {"59:243: warning VELL108: '3.5' in the range of the condition of transition 'HookToEnd' "
          "(2121) is not a whole number and counts as 3: the condition is of the type 'integer'"}},
        {"HookToEnd",
         R"("3,9")",
         R"("3,99999999999")",
         {"59:243: warning VELL109: '99999999999' in the range of the condition of transition "
          "'HookToEnd' (2121) does not fit 32 bits and counts as 2147483647"}},
        {"HookToEnd",
         R"("3,9")",
         R"("-2--1")",
         {R"(59:243: error VELL103: '-2--1' is not a range, so the condition of transition 'HookToEnd' (2121) and those behind it are left out; write "-2, -1")"}},
        {"HookToEnd",
         R"("3,9")",
         R"("3..9")",
         {R"(59:243: error VELL103: '3..9' is not a range, so the condition of transition 'HookToEnd' (2121) and those behind it are left out; write "3, 9")"}},
        {"HookToEnd",
         R"("3,9")",
         R"("3 to -1")",
         {R"(59:243: error VELL103: '3 to -1' is not a range, so the condition of transition 'HookToEnd' (2121) and those behind it are left out; write "3, -1")"}},
        {"StandToWalk",
         R"("greater", "operand": [{"value": 0.1}])",
         R"("range", "operand": [{"value": "0.1,1e39"}])",
         {"37:26: warning VELL126: transition 'StandToWalk' (1020) and 'WalkToStand' (1022) throw "
          "the machine from 'Stand' (1010) to 'Walk' (1011) and back in every tick: both hold for "
          "the same value of 'speed' (254213878)",
          "  39:26: the way back",
          "37:267: warning VELL109: '1e39' in the range of the condition of transition "
          "'StandToWalk' (1020) does not fit a float and counts as infinite"}},
        {"StandToWalk",
         R"("greater", "operand": [{"value": 0.1}])",
         R"("range", "operand": [{"value": "inf,0.1"}])",
         {"37:26: warning VELL126: transition 'StandToWalk' (1020) and 'WalkToStand' (1022) throw "
          "the machine from 'Stand' (1010) to 'Walk' (1011) and back in every tick: both hold for "
          "the same value of 'speed' (254213878)",
          "  39:26: the way back",
          "37:267: warning VELL109: 'inf' in the range of the condition of transition "
          "'StandToWalk' (1020) does not fit a float and counts as infinite"}},
    });
}

TEST(CheckMistakes, ThatHaveACompleteHintAreFound)
{
    ExpectFound({
        {"",
         R"("memory": 1000)",
         R"("memory": -1)",
         {"8:19: error VELL023: 'memory' must be from 1 to 42949672, not -1"}},
        {"StandToWalk",
         R"("value": 0.1)",
         R"("value": "0.1")",
         {"37:269: error VELL106: the value of the condition of transition 'StandToWalk' (1020) is "
          "no number and counts as 0: the condition is of the type 'float'; write 0.1 without "
          "quotes"}},
        {"DrawWeapon",
         R"("value": true)",
         R"("value": 1)",
         {"30:264: error VELL106: the value of the condition of transition 'DrawWeapon' (1090) is "
          "neither true nor false and counts as false: the condition is of the type 'bool'; write "
          "true"}},
        {"stick",
         R"([{"VARIANT_Data": "0,0"}])",
         R"("0,0")",
         {R"(15:83: error VELL022: 'default' must be an array with one object, not the text "0,0"; write [{"VARIANT_Data": "0,0"}])"}},
        {"StandToWalk",
         R"([{"value": 0.1}])",
         "0.1",
         {R"(37:258: error VELL022: 'operand' must be an array with one object, not 0.1; write [{"value": 0.1}])"}},
        {"StandToWalk",
         R"([{"value": 0.1}])",
         "[0.1]",
         {R"(37:259: error VELL022: an element of 'operand' must be an object, not 0.1; write {"value": 0.1})"}},
        {"UseDoor",
         R"([{"value": "door"}])",
         R"("door")",
         {R"(31:252: error VELL022: 'operand' must be an array with one object, not the text "door"; write [{"value": "door"}])"}},
        {"StandToWalk",
         R"("parameter": 254213878)",
         R"("parameter": "sped")",
         {R"(37:213: error VELL022: 'parameter' must be a whole number, not the text "sped"; did you mean 'speed' (254213878)?)"}},
        {"StandToWalk",
         R"("target": 1011)",
         R"("target": "Wlak")",
         {R"(37:104: error VELL022: 'target' must be a whole number, not the text "Wlak"; did you mean 'Walk' (1011)?)"}},
        {"speed",
         R"("leftTrigger")",
         R"("aVeryOddInput")",
         {"14:96: error VELL044: unknown input 'aVeryOddInput'; for the list, see: vell check "
          "--explain VELL044"}},
        {"Stand",
         R"("id": 1010)",
         R"("id": 0x3F2)",
         {"34:41: error VELL013: this is not a number: 0x3F2; write 1010"}},
        {"WalkToStand",
         R"("target": 1010)",
         R"("target": 1000.0)",
         {"39:104: error VELL024: 'target' must be a whole number: the library reads 1000.0 as 0; "
          "write 1000"}},
        {"",
         R"("substateRoot": 1000)",
         R"("substateRoot": 1009)",
         {"11:25: error VELL090: 'substateRoot' is node 1009, which does not exist; did you mean "
          "1000, 'Locomotion'?"}},
    });
}

} // namespace vell::test
