// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterTableLoadTest.cpp: the parameters of a document, good and bad.
#include <vell/Parameters.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LoadedParameters.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

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

} // namespace

TEST(ParameterTableLoad, GivesABoolItsDefaultTwiceAndOnlyForTheLiteralTrue)
{
    LogRecorder log;
    LoadedParameters loaded({BoolParameter("on", true), BoolParameter("off", false),
                             Parameter(1, "one", 1), Parameter(1, "text", "true"),
                             BoolParameter("none", true).Remove(JSON_ParameterDefault)});

    EXPECT_TRUE(loaded.Find<ParameterBoolDef>("on")->GetDefaultValue());
    EXPECT_TRUE(loaded.Find<ParameterBoolDef>("on")->GetValue());
    for (const char* name : {"off", "one", "text", "none"})
    {
        EXPECT_FALSE(loaded.Find<ParameterBoolDef>(name)->GetDefaultValue()) << name;
        EXPECT_FALSE(loaded.Find<ParameterBoolDef>(name)->GetValue()) << name;
    }
}

TEST(ParameterTableLoad, GivesAnIntegerItsDefaultTwiceWithoutATypeTest)
{
    LogRecorder log;
    LoadedParameters loaded({IntParameter("negative", -7),
                             IntParameter("none", 3).Remove(JSON_ParameterDefault),
                             Parameter(2, "large", 4294967295u), Parameter(2, "text", "5")});

    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded.Find<ParameterIntegerDef>("negative")->GetDefaultValue(), -7);
    EXPECT_EQ(loaded.Find<ParameterIntegerDef>("negative")->GetValue(), -7);
    EXPECT_EQ(loaded.Find<ParameterIntegerDef>("none")->GetValue(), 0);
    EXPECT_EQ(loaded.Find<ParameterIntegerDef>("large")->GetValue(), -1);
    EXPECT_EQ(loaded.Find<ParameterIntegerDef>("text")->GetValue(), 0);
}

TEST(ParameterTableLoad, GivesAFloatItsDefaultTwiceFromAnyFormOfNumber)
{
    LogRecorder log;
    LoadedParameters loaded({FloatParameter("real", 0.1), Parameter(3, "int", -3),
                             Parameter(3, "unsigned", 4294967295u),
                             Parameter(3, "int64", Json::Raw("-9000000000000000000")),
                             Parameter(3, "unsigned64", Json::Raw("18000000000000000000")),
                             Parameter(3, "text", "1.5")});

    EXPECT_EQ(loaded.Find<ParameterFloatDef>("real")->GetDefaultValue(), 0.1f);
    EXPECT_EQ(loaded.Find<ParameterFloatDef>("real")->GetValue(), 0.1f);
    EXPECT_EQ(loaded.Find<ParameterFloatDef>("int")->GetValue(), -3.0f);
    EXPECT_EQ(loaded.Find<ParameterFloatDef>("unsigned")->GetValue(), 4294967296.0f);
    EXPECT_EQ(loaded.Find<ParameterFloatDef>("int64")->GetValue(), -9e18f);
    EXPECT_EQ(loaded.Find<ParameterFloatDef>("unsigned64")->GetValue(), 18e18f);
    EXPECT_EQ(loaded.Find<ParameterFloatDef>("text")->GetValue(), 0.0f);
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

TEST(ParameterTableLoad, LeavesTwoLinesForAnUnknownType)
{
    LogRecorder log;
    Single unknown(FloatParameter("x", 0.0).Set(JSON_ParameterType, "quaternion"));
    Single missing(FloatParameter("x", 0.0).Remove(JSON_ParameterType));

    EXPECT_EQ(unknown.def, nullptr);
    EXPECT_EQ(missing.def, nullptr);
    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kCreateDef), ErrorBreak(kCreateDef),
                                 AssertBreak(kCreateDef), ErrorBreak(kCreateDef)}));
}

TEST(ParameterTableLoad, RunsAFailingInitTwice)
{
    LogRecorder log;
    Single broken(BrokenParameter("x"));

    EXPECT_EQ(broken.def, nullptr);
    EXPECT_EQ(log.Take(), (BrokenRun("x") + BrokenRun("x") +
                           Lines{ErrorBreak(kCreateDef), ErrorBreak(kCreateDef)}));
}

TEST(ParameterTableLoad, RefusesAVectorThatIsNoArrayOrHasNoUsableText)
{
    JsonObject noText;
    noText.Set("VARIANT_Data", 5);
    JsonObject otherMember;
    otherMember.Set("VARIANT_Other", "1,2");
    const std::vector<Json> defaults = {Json("1,2"), Json::Raw("[]"), Json::Array({Json(5)}),
                                        Json::Array({Json(noText)}),
                                        Json::Array({Json(otherMember)})};
    for (const Json& value : defaults)
    {
        LogRecorder log;
        Single single(Parameter(4, "stick", value));

        EXPECT_EQ(single.def, nullptr) << value.Text();
        EXPECT_EQ(log.Take(),
                  (Lines{CreatedDef("stick"), ErrorBreak(kCreateDef), ErrorBreak(kCreateDef)}))
            << value.Text();
    }
}

TEST(ParameterTableLoad, RefusesAVectorTextWithTooFewPieces)
{
    LogRecorder log;
    Single two(VectorParameter(4, "a", "1,"));
    Single three(VectorParameter(5, "b", "1,2"));
    Single four(VectorParameter(6, "c", "1,,2,3"));

    EXPECT_EQ(two.def, nullptr);
    EXPECT_EQ(three.def, nullptr);
    EXPECT_EQ(four.def, nullptr);
    const Lines failed{ErrorBreak(kCreateDef), ErrorBreak(kCreateDef)};
    EXPECT_EQ(log.Take(), (Lines{CreatedDef("a")} + failed + Lines{CreatedDef("b")} + failed +
                           Lines{CreatedDef("c")} + failed));
}

TEST(ParameterTableLoad, RefusesAParameterWithoutANameAtTheEnd)
{
    LogRecorder log;
    Single nameless(FloatParameter("x", 0.0).Remove(JSON_Name));

    EXPECT_EQ(nameless.def, nullptr);
    EXPECT_EQ(log.Take(), (Loaded("", 3) + Lines{ErrorBreak(kCreateDef)}));
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

TEST(HSMParameterTable, IsNotThereWithoutTheMember)
{
    LogRecorder log;
    TestMachine machine(DocumentBuilder().LeaveOut(JSON_Parameters));
    log.Clear();

    EXPECT_EQ(machine.InitParameterTable(machine.document, &machine.alloc), 1);

    EXPECT_EQ(machine.GetParameterTable(), nullptr);
    EXPECT_EQ(log.Take(), Lines());
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

TEST(HSMParameterTable, NeedsRoomForItself)
{
    LogRecorder log;
    TestMachine tight(DocumentBuilder{});
    TestMachine fitting(DocumentBuilder{});
    log.Clear();
    const auto size = static_cast<unsigned int>(sizeof(ParameterTable));
    Arena shortArena(size - 1);
    Arena arena(size);

    EXPECT_EQ(tight.InitParameterTable(tight.document, &shortArena), 0);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kInitTable)}));
    EXPECT_EQ(tight.GetParameterTable(), nullptr);
    EXPECT_EQ(fitting.InitParameterTable(fitting.document, &arena), 1);
    fitting.Uninit();
}

TEST(HSMParameterTable, FailsWithTheLinesOfFourInitsOfWhichOnlyTheFirstReadsTheArray)
{
    LogRecorder log;
    DocumentBuilder document;
    document.Parameter(FloatParameter("a", 1.0)).Parameter(Json(5));
    TestMachine machine(document);
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
