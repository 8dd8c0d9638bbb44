// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterTableTest.cpp: finding, filing and releasing of parameters.
#include <vell/Parameters.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LoadedParameters.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"
#include "tests/support/WriteCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

/// Two parameters of which the first has the higher id.
std::vector<Json> TwoParameters()
{
    return {FloatParameter("high", 1.0).Set(JSON_ID, 900).Set(JSON_ParameterAssign, AssignName(30)),
            IntParameter("low", 2).Set(JSON_ID, 20).Set(JSON_ParameterAssign, AssignName(3))};
}

/// A parameter for AddParameter, without a table of its own until `InitKVTable`.
struct LooseParameter : ParameterFloatDef
{
    LooseParameter(const char* newName, unsigned int newId)
    {
        SetName(newName);
        SetID(newId);
    }
};

const std::string kAddParameter = "vell::ParameterTable::AddParameter";

} // namespace

TEST(ParameterTable, CountsItsParameters)
{
    LogRecorder log;
    LoadedParameters none{std::vector<Json>()};
    LoadedParameters two(TwoParameters());

    EXPECT_EQ(none.result, 1);
    EXPECT_EQ(none.table.GetParameterCount(), 0);
    EXPECT_EQ(two.result, 1);
    EXPECT_EQ(two.table.GetParameterCount(), 2);
}

TEST(ParameterTable, FindsByIdWithoutALogLine)
{
    LogRecorder log;
    LoadedParameters loaded(TwoParameters());
    log.Clear();

    EXPECT_STREQ(loaded.table.FindParameter(900u)->GetName(), "high");
    EXPECT_STREQ(loaded.table.FindParameter(20u)->GetName(), "low");
    EXPECT_EQ(loaded.table.FindParameter(21u), nullptr);
    EXPECT_EQ(loaded.table.FindParameter(0u), nullptr);
    EXPECT_EQ(log.Take(), Lines());
}

TEST(ParameterTable, FindsByNameAndLogsAnUnknownOne)
{
    LogRecorder log;
    LoadedParameters loaded(TwoParameters());
    log.Clear();

    EXPECT_EQ(loaded.table.FindParameter("high"), loaded.table.FindParameter(900u));
    EXPECT_EQ(log.Take(), Lines());
    EXPECT_EQ(loaded.table.FindParameter("High"), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::ParameterTable::FindParameter")}));
    EXPECT_EQ(loaded.table.FindParameter(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::ParameterTable::FindParameter")}));
}

TEST(ParameterTable, GivesNamesAndIdsWithoutALogLine)
{
    LogRecorder log;
    LoadedParameters loaded(TwoParameters());
    log.Clear();

    EXPECT_EQ(loaded.table.GetParameterID("low"), 20u);
    EXPECT_EQ(loaded.table.GetParameterID("lo"), 0u);
    EXPECT_EQ(loaded.table.GetParameterID(nullptr), 0u);
    EXPECT_STREQ(loaded.table.GetParameterName(20), "low");
    EXPECT_EQ(loaded.table.GetParameterName(19), nullptr);
    EXPECT_EQ(log.Take(), Lines());
}

TEST(ParameterTable, CountsIndicesInAscendingIdOrder)
{
    LogRecorder log;
    LoadedParameters loaded(TwoParameters());

    EXPECT_EQ(loaded.table.GetParameterIDByIndex(0), 20u);
    EXPECT_EQ(loaded.table.GetParameterIDByIndex(1), 900u);
    EXPECT_EQ(loaded.table.GetParameterIDByIndex(2), 0u) << "the index is the count";
    EXPECT_EQ(loaded.table.GetParameterIDByIndex(0xffffffffu), 0u);
}

TEST(ParameterTable, GivesBindingsAndTheirClasses)
{
    LogRecorder log;
    LoadedParameters loaded(TwoParameters());
    log.Clear();

    EXPECT_EQ(loaded.table.GetParameterAssign(900), 30);
    EXPECT_EQ(loaded.table.GetParameterAssignClass(900), 1);
    EXPECT_EQ(loaded.table.GetParameterAssign(20), 3);
    EXPECT_EQ(loaded.table.GetParameterAssignClass(20), 4);
    EXPECT_EQ(loaded.table.GetParameterAssign(1), 0);
    EXPECT_EQ(loaded.table.GetParameterAssignClass(1), 0);
    EXPECT_EQ(log.Take(), Lines());
}

TEST(ParameterTable, GivesAParameterAsTheListenerOfItsInput)
{
    LogRecorder log;
    LoadedParameters loaded(TwoParameters());
    IBroadcastListener* listener = loaded.table.GetBroadcastListener(900);
    ASSERT_NE(listener, nullptr);
    const float bare = 0.75f;

    EXPECT_EQ(listener->OnBroadcastEvent(6, &bare), 1);

    EXPECT_EQ(loaded.Find<ParameterFloatDef>("high")->GetValue(), 0.75f);
    EXPECT_EQ(loaded.table.GetBroadcastListener(901), nullptr);
}

TEST(ParameterTable, AttachesEachParameterUnderTheDecimalTextOfItsId)
{
    LogRecorder log;
    LoadedParameters loaded({FloatParameter("speed", 1.0).Set(JSON_ID, 4000000000u)});

    Tessel::KVTable root = loaded.table.GetKVTable();
    EXPECT_STREQ(Tessel::GetTableName(root), "parameterTable");
    Tessel::KVTable child = root->GetTable("4000000000");
    EXPECT_EQ(child, loaded.Find<ParameterFloatDef>("speed")->GetKVTable());
    EXPECT_EQ(child->GetUInt("id"), 4000000000u);
    EXPECT_EQ(child->GetFloat("value"), 1.0f);
    EXPECT_STREQ(child->GetString("type"), ParameterTypeName(3).c_str());
    EXPECT_EQ(child->FindValue("name"), nullptr) << "for run-time parameters only";
    EXPECT_EQ(child->FindValue("dynamic"), nullptr);
}

TEST(ParameterTable, RefusesNullAndTheIdZero)
{
    LogRecorder log;
    ParameterTable table;
    LooseParameter nobody("nobody", 0);

    EXPECT_EQ(table.AddParameter(nullptr), 0);
    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kAddParameter)}));
    EXPECT_EQ(table.AddParameter(&nobody), 0);
    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kAddParameter)}));
    EXPECT_EQ(table.GetParameterCount(), 0);
    EXPECT_EQ(table.GetParameterID("nobody"), 0u);
}

TEST(ParameterTable, RefusesASecondParameterOfTheSameName)
{
    LogRecorder log;
    ParameterTable table;
    LooseParameter first("twin", 1);
    LooseParameter second("twin", 2);
    ASSERT_EQ(table.AddParameter(&first), 1);

    EXPECT_EQ(table.AddParameter(&second), 0);

    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kAddParameter)}));
    EXPECT_EQ(table.GetParameterCount(), 1);
    EXPECT_EQ(table.GetParameterID("twin"), 1u);
    EXPECT_EQ(table.FindParameter(2u), nullptr);
}

TEST(ParameterTable, KeepsTheNameOfAParameterWhoseIdIsTaken)
{
    LogRecorder log;
    ParameterTable table;
    LooseParameter first("first", 1);
    LooseParameter second("second", 1);
    ASSERT_EQ(table.AddParameter(&first), 1);

    EXPECT_EQ(table.AddParameter(&second), 0);

    EXPECT_EQ(log.Take(), (Lines{AssertBreak(kAddParameter)}));
    EXPECT_EQ(table.GetParameterCount(), 1);
    EXPECT_EQ(table.GetParameterID("second"), 1u);
    EXPECT_EQ(table.FindParameter("second"), &first);
    EXPECT_STREQ(table.GetParameterName(1), "first");
}

TEST(ParameterTable, TakesAParameterWithoutATableAndWorksWithoutOneItself)
{
    LogRecorder log;
    ParameterTable bare;
    ParameterTable table;
    LooseParameter def("loose", 7);
    LooseParameter published("published", 8);
    published.InitKVTable();
    table.CreateKVTable();

    EXPECT_EQ(bare.AddParameter(&published), 1);
    EXPECT_EQ(table.AddParameter(&def), 1);

    EXPECT_FALSE(static_cast<bool>(bare.GetKVTable()));
    EXPECT_FALSE(static_cast<bool>(table.GetKVTable()->GetTable("7")));
    EXPECT_EQ(log.Take(), Lines());
    table.Uninit();
}

TEST(ParameterTable, ListensToEachParametersTableWithoutEffect)
{
    LogRecorder log;
    LoadedParameters loaded({MessageParameter("jump", "now")});
    auto* def = loaded.Find<ParameterMessageDef>("jump");
    Tessel::KVTable child = def->GetKVTable();
    Tessel::KVListener* listener = child->GetTableListener();
    ASSERT_NE(listener, nullptr);
    ASSERT_NE(listener->function, nullptr);

    EXPECT_EQ(listener->object, &loaded.table);
    EXPECT_EQ(listener->function(listener->object, Tessel::opResult_ValueChanged, child, "value"),
              1);
    EXPECT_EQ(listener->function(listener->object, Tessel::opResult_None, child, "value"), 1);
    EXPECT_EQ(listener->function(listener->object, Tessel::opResult_ValueChanged, Tessel::KVTable(),
                                 "value"),
              1);
    EXPECT_EQ(def->GetValue(), "");
}

TEST(ParameterTable, MakesItsTreeTableOnce)
{
    LogRecorder log;
    ParameterTable table;

    EXPECT_EQ(table.CreateKVTable(), 1);
    Tessel::KVTable first = table.GetKVTable();
    EXPECT_EQ(log.Take(), Lines());
    EXPECT_EQ(table.CreateKVTable(), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::ParameterTable::CreateKVTable")}));
    EXPECT_EQ(table.GetKVTable(), first);
    table.Uninit();
}

TEST(ParameterTable, UninitForgetsParametersButNotTheirNames)
{
    LogRecorder log;
    LoadedParameters loaded(TwoParameters());
    Tessel::KVTable root = loaded.table.GetKVTable();
    Tessel::KVTable child = root->GetTable("900");
    log.Clear();

    loaded.table.Uninit();

    EXPECT_EQ(loaded.table.GetParameterCount(), 0);
    EXPECT_EQ(loaded.table.GetParameterID("high"), 900u);
    EXPECT_EQ(loaded.table.FindParameter(900u), nullptr);
    EXPECT_EQ(loaded.table.FindParameter("high"), nullptr);
    EXPECT_EQ(log.Take(), Lines()) << "the name is known";
    EXPECT_EQ(Tessel::GetTableName(root), nullptr) << "closed";
    EXPECT_EQ(Tessel::GetTableName(child), nullptr) << "closed";
    EXPECT_EQ(loaded.table.GetKVTable(), root) << "the handle stays";
}

TEST(ParameterTable, ResetsABoolByWhateverWayItGotItsValue)
{
    LogRecorder log;
    LoadedParameters loaded({PulseParameter("pulse")});
    auto& pulse = *loaded.Find<ParameterBoolDef>("pulse");
    auto& value = *static_cast<bool*>(pulse.GetValuePtr());
    const Tessel::KVTable table = pulse.GetKVTable();

    pulse.SetValue(true);
    loaded.table.ResetFrameParameters();
    EXPECT_FALSE(value) << "set";

    value = true;
    loaded.table.ResetFrameParameters();
    EXPECT_FALSE(value) << "stored at its address";

    table->SetInt("value", 1, 1);
    loaded.table.ResetFrameParameters();
    EXPECT_FALSE(value) << "written by a tool";
    EXPECT_EQ(table->GetInt("value"), 0);

    pulse.SetDefaultValue(true);
    loaded.table.ResetFrameParameters();
    EXPECT_TRUE(value) << "another default";
    EXPECT_EQ(table->GetInt("value"), 1);
}

TEST(ParameterTable, WritesAllButABoolAgainWhenTheyHaveTheirDefaults)
{
    LogRecorder log;
    const auto resetting = [](JsonObject parameter)
    {
        return Json(parameter.Set(JSON_ParameterResetEachFrame, true));
    };
    LoadedParameters loaded(
        {resetting(BoolParameter("bool", true)), resetting(IntParameter("int", 1)),
         resetting(FloatParameter("float", 1.0)), resetting(VectorParameter(4, "vector", "3,4")),
         resetting(MessageParameter("message", "text"))});
    const auto writesOf = [&](const char* name)
    {
        WriteCounter writes(loaded.Find<ParameterDef>(name)->GetKVTable(), "value");
        loaded.table.ResetFrameParameters();
        loaded.table.ResetFrameParameters();
        return writes.Take();
    };

    EXPECT_EQ(writesOf("bool"), 0);
    EXPECT_EQ(writesOf("int"), 2);
    EXPECT_EQ(writesOf("float"), 2);
    EXPECT_EQ(writesOf("vector"), 2);
    EXPECT_EQ(writesOf("message"), 2);
}

TEST(ParameterTable, UninitAgainDoesNothing)
{
    LogRecorder log;
    LoadedParameters loaded(TwoParameters());

    loaded.table.Uninit();
    loaded.table.Uninit();
    loaded.table.ResetFrameParameters();

    EXPECT_EQ(loaded.table.GetParameterCount(), 0);
}

TEST(ParameterTable, UninitialisesItsParametersInAscendingIdOrder)
{
    struct Recording : LooseParameter
    {
        Recording(const char* newName, unsigned int newId, std::vector<unsigned int>& target)
            : LooseParameter(newName, newId), order(target)
        {
        }
        void Uninit() override
        {
            order.push_back(GetID());
        }
        std::vector<unsigned int>& order;
    };
    std::vector<unsigned int> order;
    Recording c("c", 3, order);
    Recording a("a", 4000000000u, order);
    Recording b("b", 2, order);
    ParameterTable table;
    for (ParameterDef* def : {&c, &a, &b})
    {
        table.AddParameter(def);
    }

    table.Uninit();

    EXPECT_EQ(order, (std::vector<unsigned int>{2, 3, 4000000000u}));
}

TEST(ParameterTable, ResetsAParameterAsLongAsItSaysSoAlsoAfterAnAssignment)
{
    LogRecorder log;
    StartedMachine machine(DocumentBuilder()
                               .Start(10)
                               .Parameter(PulseParameter("pulse"))
                               .Parameter(BoolParameter("flag", false))
                               .Node(Generic("Stand", 10)));
    IParameterTable& table = *machine.GetParameterTable();
    auto& pulse = dynamic_cast<ParameterBoolDef&>(*table.FindParameter("pulse"));
    auto& flag = dynamic_cast<ParameterBoolDef&>(*table.FindParameter("flag"));
    IParameterBoolDef* created = nullptr;
    ASSERT_EQ(table.CreateBoolParameter("created", false, &created), 1);
    auto& runtime = dynamic_cast<ParameterBoolDef&>(*created);
    const ParameterBoolDef wasFlag = flag;

    flag = pulse;
    runtime = pulse;
    pulse = wasFlag;
    for (ParameterBoolDef* parameter : {&pulse, &flag, &runtime})
    {
        parameter->SetValue(true);
    }
    machine.Update(0.5f);

    EXPECT_TRUE(pulse.GetValue());
    EXPECT_FALSE(flag.GetValue());
    EXPECT_FALSE(runtime.GetValue());
    // Each table belongs to one parameter again.
    pulse = ParameterBoolDef();
    flag = ParameterBoolDef();
    runtime = ParameterBoolDef();
}

namespace
{

/// Assigns one parameter to another when it hears of a write, and counts the writes.
struct Assigning
{
    explicit Assigning(ParameterIntegerDef& heard) : table(heard.GetKVTable())
    {
        *table->GetValueListener("value") = {
            this, [](void* object, Tessel::opResult, Tessel::KVTable, const char*)
            {
                auto& self = *static_cast<Assigning*>(object);
                *self.to = *self.from;
                return ++self.writes;
            }};
    }

    Tessel::KVTable table;
    ParameterIntegerDef* to = nullptr;
    const ParameterIntegerDef* from = nullptr;
    int writes = 0;
};

/// Four parameters with the ids 1 to 4, of which some reset each frame.
std::vector<Json> FourParameters(const std::vector<bool>& resetting)
{
    std::vector<Json> parameters;
    for (const char* name : {"first", "second", "third", "fourth"})
    {
        const std::size_t index = parameters.size();
        parameters.push_back(IntParameter(name, 0)
                                 .Set(JSON_ID, static_cast<int>(index + 1))
                                 .Set(JSON_ParameterResetEachFrame, bool(resetting[index])));
    }
    return parameters;
}

} // namespace

TEST(ParameterTable, ResetsEachOneOnceWhenAListenerAssignsAnEarlierOneMeanwhile)
{
    const struct
    {
        std::vector<bool> resetting;
        const char* source;
    } cases[] = {{{true, true, true, false}, "fourth"}, {{false, true, true, true}, "fourth"}};
    for (const auto& example : cases)
    {
        LogRecorder log;
        LoadedParameters loaded(FourParameters(example.resetting));
        const auto find = [&](const char* name)
        {
            return loaded.Find<ParameterIntegerDef>(name);
        };
        for (const char* name : {"first", "second", "third"})
        {
            find(name)->SetValue(9);
        }
        const bool wasResetting = example.resetting[0];
        Assigning assigning(*find("second"));
        assigning.to = find("first");
        assigning.from = find(example.source);
        WriteCounter third(find("third")->GetKVTable(), "value");

        loaded.table.ResetFrameParameters();

        EXPECT_EQ(find("first")->IsResetEachFrame(), !wasResetting);
        EXPECT_EQ(find("second")->GetValue(), 0);
        EXPECT_EQ(assigning.writes, 1) << wasResetting;
        EXPECT_EQ(find("third")->GetValue(), 0) << wasResetting;
        EXPECT_EQ(third.Take(), 1) << wasResetting;
        *find("first") = ParameterIntegerDef();
    }
}

} // namespace vell::test
