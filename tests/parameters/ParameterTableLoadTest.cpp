// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterTableLoadTest.cpp: the parameters of a document, good and bad.
#include <vell/Parameters.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/HeapWatch.h"
#include "tests/support/LoadedParameters.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

const std::string kInit = "vell::ParameterTable::Init";
const std::string kCreateDef = "vell::ParameterTable::CreateParameterDef";
const std::string kCreateTable = "vell::ParameterTable::CreateKVTable";
const std::string kInitTable = "vell::HSM::InitParameterTable";

/// The lines of a parameter that loads well.
Lines Loaded(const std::string& name, int type)
{
    return {CreatedDef(name), "6 " + ParameterTypeName(type)};
}

/// A parameter whose common members fail to load.
JsonObject BrokenParameter(const std::string& name)
{
    return FloatParameter(name, 1.0).Set(JSON_Children, 5);
}

/// The two lines of one failed run over the common members.
Lines BrokenRun(const std::string& name)
{
    return {ErrorBreak("vell::BaseDef::Init"), FailedDef(name)};
}

/// Bytes that a parameter of a type takes in the arena.
unsigned int SizeOf(int type)
{
    const std::size_t sizes[] = {sizeof(ParameterBoolDef),    sizeof(ParameterIntegerDef),
                                 sizeof(ParameterFloatDef),   sizeof(ParameterAnalogDef),
                                 sizeof(ParameterFloat3Def),  sizeof(ParameterFloat4Def),
                                 sizeof(ParameterMessageDef), sizeof(ParameterMessageDef)};
    return static_cast<unsigned int>(sizes[type - 1]);
}

/// A well-formed parameter of each type.
JsonObject AnyParameter(int type)
{
    switch (type)
    {
    case 1:
        return BoolParameter("any", true);
    case 2:
        return IntParameter("any", 3);
    case 3:
        return FloatParameter("any", 0.5);
    case 7:
    case 8:
        return Parameter(type, "any", "text");
    default:
        return VectorParameter(type, "any", "1,2,3,4");
    }
}

/// Makes one parameter, not taken into a table.
struct Single
{
    explicit Single(const Json& json, unsigned int arenaSize = 65536)
        : alloc(arenaSize), node(json), def(table.CreateParameterDef(*node, &alloc))
    {
    }

    Arena alloc;
    ParsedJson node;
    ParameterTable table;
    ParameterDef* def;
};

JsonObject WithoutDefault(JsonObject parameter)
{
    return parameter.Remove(JSON_ParameterDefault);
}

/// Expects that each parameter starts with its number as its default and its value.
template <class Class, class Value>
void ExpectStarts(const std::vector<std::pair<Json, Value>>& cases)
{
    LogRecorder log;
    for (const auto& [json, value] : cases)
    {
        SCOPED_TRACE(json.Text());
        Single single(json);
        auto* def = dynamic_cast<Class*>(single.def);

        ASSERT_NE(def, nullptr);
        EXPECT_EQ(def->GetDefaultValue(), value);
        EXPECT_EQ(def->GetValue(), value);
    }
}

} // namespace

TEST(ParameterTableLoad, GivesABoolItsDefaultTwiceAndOnlyForTheLiteralTrue)
{
    ExpectStarts<ParameterBoolDef, bool>({{BoolParameter("x", true), true},
                                          {BoolParameter("x", false), false},
                                          {Parameter(1, "x", 1), false},
                                          {Parameter(1, "x", "true"), false},
                                          {WithoutDefault(BoolParameter("x", true)), false}});
}

TEST(ParameterTableLoad, GivesAnIntegerItsDefaultTwiceWithoutATypeTest)
{
    ExpectStarts<ParameterIntegerDef, int>({{IntParameter("x", -7), -7},
                                            {Parameter(2, "x", 4294967295u), -1},
                                            {Parameter(2, "x", "5"), 0},
                                            {WithoutDefault(IntParameter("x", 3)), 0}});
}

TEST(ParameterTableLoad, GivesAFloatItsDefaultTwiceFromAnyFormOfNumber)
{
    ExpectStarts<ParameterFloatDef, float>(
        {{FloatParameter("x", 0.1), 0.1f},
         {Parameter(3, "x", -3), -3.0f},
         {Parameter(3, "x", 4294967295u), 4294967296.0f},
         {Parameter(3, "x", Json::Raw("-9000000000000000000")), -9e18f},
         {Parameter(3, "x", Json::Raw("18000000000000000000")), 18e18f},
         {Parameter(3, "x", "1.5"), 0.0f}});
}

TEST(ParameterTableLoad, ReadsVectorsFromTextsAndComputesTheirMagnitude)
{
    LogRecorder log;
    LoadedParameters loaded({VectorParameter(4, "two", "3,4"), VectorParameter(5, "three", "2,3,6"),
                             VectorParameter(6, "four", "1,-2,0.5,1e2")});

    auto* two = loaded.Find<ParameterAnalogDef>("two");
    EXPECT_EQ(two->GetDefaultValue().y, 4.0f);
    EXPECT_EQ(two->GetValue().x, 3.0f);
    EXPECT_EQ(two->GetMagnitude(), 5.0f);
    auto* three = loaded.Find<ParameterFloat3Def>("three");
    EXPECT_EQ(three->GetDefaultValue().z, 6.0f);
    EXPECT_EQ(three->GetValue().y, 3.0f);
    EXPECT_EQ(three->GetMagnitude(), 7.0f);
    auto* four = loaded.Find<ParameterFloat4Def>("four");
    EXPECT_EQ(four->GetDefaultValue().w, 100.0f);
    EXPECT_EQ(four->GetValue().y, -2.0f);
    EXPECT_EQ(four->GetValue().z, 0.5f);
}

TEST(ParameterTableLoad, ReadsPiecesOfAVectorTextAsNumbersOrZero)
{
    LogRecorder log;
    LoadedParameters loaded({VectorParameter(4, "words", "up, 2x"),
                             VectorParameter(4, "more", "1,2,3,4,5"),
                             VectorParameter(4, "empty", ",,1,,2,")});

    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded.Find<ParameterAnalogDef>("words")->GetValue().x, 0.0f);
    EXPECT_EQ(loaded.Find<ParameterAnalogDef>("words")->GetValue().y, 2.0f);
    EXPECT_EQ(loaded.Find<ParameterAnalogDef>("more")->GetValue().y, 2.0f);
    EXPECT_EQ(loaded.Find<ParameterAnalogDef>("empty")->GetValue().x, 1.0f);
    EXPECT_EQ(loaded.Find<ParameterAnalogDef>("empty")->GetValue().y, 2.0f);
}

TEST(ParameterTableLoad, TakesAVectorTextOf127CharactersAndRefusesOneMore)
{
    LogRecorder log;
    const std::string fits = "1," + std::string(124, '0') + "2";
    ASSERT_EQ(fits.size(), 127u);

    Single good(VectorParameter(4, "stick", fits));
    log.Clear();
    Single bad(VectorParameter(4, "stick", "0" + fits));

    ASSERT_NE(good.def, nullptr);
    EXPECT_EQ(dynamic_cast<ParameterAnalogDef*>(good.def)->GetValue().y, 2.0f);
    EXPECT_EQ(bad.def, nullptr);
    EXPECT_EQ(log.Take(),
              (Lines{CreatedDef("stick"), ErrorBreak(kCreateDef), ErrorBreak(kCreateDef)}));
}

TEST(ParameterTableLoad, StartsAMessageEmptyWithItsTextAsTheDefault)
{
    LogRecorder log;
    LoadedParameters loaded({MessageParameter("jump", "now")});

    auto* jump = loaded.Find<ParameterMessageDef>("jump");
    EXPECT_EQ(jump->GetDefaultValue(), "now");
    EXPECT_EQ(jump->GetValue(), "");
    EXPECT_EQ(jump->GetParamType(), 8);
    EXPECT_STREQ(jump->GetKVTable()->GetString("value"), "");
}

TEST(ParameterTableLoad, StartsAParameterOfTheTextTypeEmptyToo)
{
    LogRecorder log;
    LoadedParameters loaded({Parameter(PARAM_Text, "note", "now")});

    auto* note = loaded.Find<ParameterMessageDef>("note");
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(note->GetParamType(), 7);
    EXPECT_EQ(note->GetDefaultValue(), "now");
    EXPECT_EQ(note->GetValue(), "");
    EXPECT_STREQ(note->GetKVTable()->GetString("type"), ParameterTypeName(7).c_str());
}

TEST(ParameterTableLoad, ReadsAMessageWithoutATextAsEmpty)
{
    LogRecorder log;
    LoadedParameters loaded({Parameter(8, "number", 5)});

    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded.Find<ParameterMessageDef>("number")->GetDefaultValue(), "");
}

TEST(ParameterTableLoad, ResetsEachFrameForTheLiteralTrueAlone)
{
    LogRecorder log;
    LoadedParameters loaded({FloatParameter("yes", 0.0).Set(JSON_ParameterResetEachFrame, true),
                             FloatParameter("no", 0.0).Set(JSON_ParameterResetEachFrame, false),
                             FloatParameter("one", 0.0).Set(JSON_ParameterResetEachFrame, 1),
                             FloatParameter("none", 0.0)});

    EXPECT_TRUE(loaded.table.FindParameter("yes")->IsResetEachFrame());
    EXPECT_FALSE(loaded.table.FindParameter("no")->IsResetEachFrame());
    EXPECT_FALSE(loaded.table.FindParameter("one")->IsResetEachFrame());
    EXPECT_FALSE(loaded.table.FindParameter("none")->IsResetEachFrame());
}

TEST(ParameterTableLoad, ClassesABindingByItsNumber)
{
    for (int binding = 1; binding <= 52; ++binding)
    {
        LogRecorder log;
        Single single(FloatParameter("x", 0.0).Set(JSON_ParameterAssign, AssignName(binding)));
        ASSERT_NE(single.def, nullptr);
        const bool analog = binding >= 2 && binding <= 7;
        const bool button = (binding >= 10 && binding <= 23) || (binding >= 26 && binding <= 51);

        EXPECT_EQ(single.def->GetAssign(), binding);
        EXPECT_EQ(single.def->GetAssignClass(), analog ? 4 : button ? 1 : 0) << binding;
    }
}

TEST(ParameterTableLoad, GivesAMissingBindingTheNumberAndTheClassZero)
{
    LogRecorder log;
    Single none(FloatParameter("x", 0.0));
    Single unknown(FloatParameter("x", 0.0).Set(JSON_ParameterAssign, "steering wheel"));

    EXPECT_EQ(none.def->GetAssign(), 0);
    EXPECT_EQ(none.def->GetAssignClass(), 0);
    EXPECT_EQ(unknown.def->GetAssign(), 0);
}

TEST(ParameterTableLoad, KeepsTheNameAsAPointerIntoTheDocument)
{
    LogRecorder log;
    Single single(FloatParameter("speed", 0.0).Set(JSON_ParentID, 5));

    EXPECT_EQ(single.def->GetName(), (*single.node)[GetJsonName(JSON_Name)].GetString());
    EXPECT_EQ(single.def->GetID(), ParameterId("speed"));
    EXPECT_EQ(single.def->GetParentID(), 5u);
    EXPECT_EQ(single.def->GetType(), DefTypeParameter);
    EXPECT_EQ(single.def->GetFlags(), 4u);
}

TEST(ParameterTableLoad, MakesEachTypeWithRoomAndRefusesItAByteShort)
{
    for (int type = 1; type <= 8; ++type)
    {
        LogRecorder log;
        Single room(AnyParameter(type), SizeOf(type));
        EXPECT_EQ(log.Take(), (Loaded("any", type)));
        Single tight(AnyParameter(type), SizeOf(type) - 1);

        ASSERT_NE(room.def, nullptr) << type;
        EXPECT_EQ(room.def->GetParamType(), type);
        EXPECT_EQ(room.alloc.used, SizeOf(type));
        EXPECT_EQ(tight.def, nullptr) << type;
        EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kCreateDef), ErrorBreak(kCreateDef)})) << type;
    }
}

TEST(ParameterTableLoad, RefusesToMakeAParameterOfNoObjectOrWithoutAnArena)
{
    LogRecorder log;
    ParameterTable table;
    Arena alloc;
    ParsedJson good(FloatParameter("x", 0.0));
    ParsedJson number(5);

    EXPECT_EQ(table.CreateParameterDef(*good, nullptr), nullptr);
    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kCreateDef)}));
    EXPECT_EQ(table.CreateParameterDef(*number, &alloc), nullptr);
    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kCreateDef)}));
}

TEST(ParameterTableLoad, RefusesAParameterThatItCannotReadWithItsLines)
{
    const Lines refused{ErrorBreak(kCreateDef), ErrorBreak(kCreateDef)};
    const Lines unknown{AssertBreak(kCreateDef), ErrorBreak(kCreateDef)};
    const Lines noVector = Lines{CreatedDef("x")} + refused;
    const auto vectorOf = [](const std::string& member, const Json& value)
    {
        return Parameter(4, "x", Json::Array({JsonObject().Set(member, value)}));
    };
    const struct
    {
        const char* what;
        Json parameter;
        Lines lines;
    } cases[] = {
        {"an unknown type", FloatParameter("x", 0).Set(JSON_ParameterType, "quaternion"), unknown},
        {"no type", FloatParameter("x", 0).Remove(JSON_ParameterType), unknown},
        {"no name", FloatParameter("x", 0).Remove(JSON_Name),
         Loaded("", 3) + Lines{ErrorBreak(kCreateDef)}},
        {"a vector that is a text", Parameter(4, "x", "1,2"), noVector},
        {"a vector of nothing", Parameter(4, "x", Json::Raw("[]")), noVector},
        {"a vector of a number", Parameter(4, "x", Json::Array({Json(5)})), noVector},
        {"a vector whose text is a number", vectorOf("VARIANT_Data", 5), noVector},
        {"a vector without its text", vectorOf("VARIANT_Other", "1,2"), noVector},
        {"one number of two", VectorParameter(4, "x", "1,"), noVector},
        {"two numbers of three", VectorParameter(5, "x", "1,2"), noVector},
        {"three numbers of four", VectorParameter(6, "x", "1,,2,3"), noVector}};
    for (const auto& example : cases)
    {
        SCOPED_TRACE(example.what);
        LogRecorder log;
        Single single(example.parameter);

        EXPECT_EQ(single.def, nullptr);
        EXPECT_EQ(log.Take(), example.lines);
    }
}

TEST(ParameterTableLoad, RunsAFailingInitTwice)
{
    LogRecorder log;
    Single broken(BrokenParameter("x"));

    EXPECT_EQ(broken.def, nullptr);
    EXPECT_EQ(log.Take(), (BrokenRun("x") + BrokenRun("x") +
                           Lines{ErrorBreak(kCreateDef), ErrorBreak(kCreateDef)}));
}

TEST(ParameterTableLoad, LogsEachGoodParameterByCreationAndTypeName)
{
    LogRecorder log;
    LoadedParameters loaded({FloatParameter("speed", 0.0), BoolParameter("grounded", true)});

    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(log.Take(), (Loaded("speed", 3) + Loaded("grounded", 1)));
}

TEST(ParameterTableLoad, SucceedsWithAnEmptyArray)
{
    LogRecorder log;
    LoadedParameters loaded{std::vector<Json>()};

    EXPECT_EQ(loaded.result, 1);
    EXPECT_TRUE(static_cast<bool>(loaded.table.GetKVTable()));
    EXPECT_EQ(log.Take(), Lines());
}

TEST(ParameterTableLoad, LeavesOutADuplicateIdOrNameAndSucceeds)
{
    LogRecorder log;
    LoadedParameters loaded(
        {FloatParameter("a", 1.0).Set(JSON_ID, 1), FloatParameter("b", 2.0).Set(JSON_ID, 1),
         FloatParameter("a", 3.0).Set(JSON_ID, 2), FloatParameter("zero", 4.0).Set(JSON_ID, 0),
         FloatParameter("c", 5.0).Set(JSON_ID, 3)});

    EXPECT_EQ(loaded.result, 1);
    const Lines refused{AssertBreak("vell::ParameterTable::AddParameter")};
    EXPECT_EQ(log.Take(), (Loaded("a", 3) + Loaded("b", 3) + refused + Loaded("a", 3) + refused +
                           Loaded("zero", 3) + refused + Loaded("c", 3)));
    EXPECT_EQ(loaded.table.GetParameterCount(), 2);
    EXPECT_EQ(loaded.Find<ParameterFloatDef>("a")->GetValue(), 1.0f);
    EXPECT_EQ(loaded.table.GetParameterID("b"), 1u);
    EXPECT_EQ(loaded.table.GetParameterID("c"), 3u);
}

TEST(ParameterTableLoad, FailsWithoutAnArenaOrAnArray)
{
    LogRecorder log;
    ParsedJson array(Json::Raw("[]"));
    ParsedJson number(5);
    ParsedJson null(Json::Null());
    Arena alloc;
    for (const bool hasArena : {false, true})
    {
        for (ParsedJson* json : {&array, &number, &null})
        {
            if (hasArena && json == &array)
            {
                continue;
            }
            ParameterTable table;

            EXPECT_EQ(table.Init(**json, hasArena ? &alloc : nullptr), 0);
            EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInit)}));
            EXPECT_EQ(Tessel::GetTableName(table.GetKVTable()), nullptr) << "closed";
        }
    }
}

TEST(ParameterTableLoad, FailsAtAnElementThatIsNoObjectAndForgetsThoseBefore)
{
    LogRecorder log;
    LoadedParameters loaded({FloatParameter("a", 1.0), Json(5), FloatParameter("b", 2.0)});

    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(log.Take(), (Loaded("a", 3) + Lines{ErrorGoto(kInit)}));
    EXPECT_EQ(loaded.table.GetParameterCount(), 0);
    EXPECT_EQ(loaded.table.GetParameterID("a"), ParameterId("a")) << "names stay known";
    EXPECT_EQ(loaded.table.GetParameterID("b"), 0u);
}

TEST(ParameterTableLoad, TakesNoMemoryForElementsThatItHasNotRead)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson array(Json::Array(std::vector<Json>(100000, Json(5))));
    ParameterTable table;

    const HeapWatch heap;
    EXPECT_EQ(table.Init(*array, &alloc), 0);

    EXPECT_LT(heap.MostBytes(), 100000u);
    table.Uninit();
}

TEST(ParameterTableLoad, FailsAtAParameterThatCannotBeMade)
{
    LogRecorder log;
    LoadedParameters loaded({FloatParameter("a", 1.0), BrokenParameter("x")});

    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(log.Take(),
              (Loaded("a", 3) + BrokenRun("x") + BrokenRun("x") +
               Lines{ErrorBreak(kCreateDef), ErrorBreak(kCreateDef), ErrorGoto(kInit)}));
    EXPECT_EQ(loaded.table.GetParameterCount(), 0);
}

TEST(ParameterTableLoad, CannotBeInitialisedTwice)
{
    LogRecorder log;
    LoadedParameters loaded({FloatParameter("a", 1.0)});
    log.Clear();

    EXPECT_EQ(loaded.table.Init(*loaded.array, &loaded.alloc), 0);

    EXPECT_EQ(log.Take(),
              (Lines{ErrorBreak(kCreateTable), ErrorBreak(kCreateTable), ErrorBreak(kInit)}));
    EXPECT_EQ(loaded.table.GetParameterCount(), 0);
}

TEST(HSMParameterTable, IsMadeOnce)
{
    LogRecorder log;
    TestMachine machine(DocumentBuilder().Parameter(FloatParameter("a", 1.0)));
    EXPECT_EQ(machine.GetParameterTable(), nullptr);

    ASSERT_EQ(machine.InitParameterTable(machine.document, &machine.alloc), 1);
    IParameterTable* table = machine.GetParameterTable();
    EXPECT_EQ(table->GetParameterCount(), 1);
    EXPECT_EQ(machine.InitParameterTable(machine.document, &machine.alloc), 0);

    EXPECT_EQ(machine.GetParameterTable(), table);
}

TEST(HSMParameterTable, FailsWithTheLinesOfFourInitsOfWhichOnlyTheFirstReadsTheArray)
{
    LogRecorder log;
    TestMachine machine(DocumentBuilder().Parameter(FloatParameter("a", 1.0)).Parameter(Json(5)));
    log.Clear();

    EXPECT_EQ(machine.Init(), 0);

    const Lines again{ErrorBreak(kCreateTable), ErrorBreak(kCreateTable), ErrorBreak(kInit)};
    EXPECT_EQ(log.Take(), (Loaded("a", 3) + Lines{ErrorGoto(kInit)} + again +
                           Lines{ErrorBreak(kInitTable)} + again + again +
                           Lines{ErrorBreak(kInitTable), ErrorBreak("vell::HSM::Init"),
                                 "3 Parsing JSON file has caused an exception"}));
    EXPECT_EQ(machine.GetParameterTable()->GetParameterCount(), 0);
}

} // namespace vell::test
