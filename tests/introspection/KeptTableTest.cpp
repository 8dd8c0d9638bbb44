// VELL: data-driven hierarchical state machines.
// tests/introspection/KeptTableTest.cpp: tables that a tool keeps longer than their objects.
#include <vell/AttribBase.h>
#include <vell/ConditionDef.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/TransitionDef.h>

#include "tests/support/Scene.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace vell::test
{
namespace
{

constexpr unsigned int kGo = 100;

/// Two parameters, two attributes of Stand, and one of the condition of Go.
DocumentBuilder Document()
{
    JsonObject condition = Holds("go");
    condition.Set(JSON_Attributes, Json::Array(std::vector<Json>{Attribute("a", "int", 3)}));
    return DocumentBuilder()
        .Start(10)
        .Parameter(BoolParameter("go", false))
        .Parameter(BoolParameter("other", false))
        .Node(Generic("Stand", 10, {kGo})
                  .Set(JSON_Attributes,
                       Json::Array(std::vector<Json>{Attribute("first", "int", 1),
                                                     Attribute("second", "int", 2)})))
        .Node(Transition("Go", kGo, 10, 10, {condition}));
}

AttribBase& AttribOf(TestMachine& machine, const char* name)
{
    return *machine.FindDef(10u)->GetAttrib(name);
}

ParameterBoolDef& ParameterOf(TestMachine& machine, const char* name)
{
    return dynamic_cast<ParameterBoolDef&>(*machine.GetParameterTable()->FindParameter(name));
}

ConditionDef& ConditionOf(TestMachine& machine)
{
    return *dynamic_cast<TransitionDef*>(machine.FindDef(kGo))->conditions.front();
}

/// What a host does that parts a table from its object. Gives the table.
struct Parting
{
    const char* name;
    Tessel::KVTable (*part)(TestMachine& machine);
};

constexpr Parting kPartings[] = {
    {"nothing, the attribute is a condition's",
     [](TestMachine& machine)
     {
         return ConditionOf(machine).GetAttrib("a")->GetKVTable();
     }},
    {"the assignment of a parameter",
     [](TestMachine& machine)
     {
         const Tessel::KVTable table = ParameterOf(machine, "go").GetKVTable();
         ParameterOf(machine, "go") = ParameterOf(machine, "other");
         return table;
     }},
    {"the assignment of an attribute",
     [](TestMachine& machine)
     {
         const Tessel::KVTable table = AttribOf(machine, "first").GetKVTable();
         AttribOf(machine, "first") = AttribOf(machine, "second");
         return table;
     }},
    {"a further table of an attribute",
     [](TestMachine& machine)
     {
         const Tessel::KVTable table = AttribOf(machine, "first").GetKVTable();
         AttribOf(machine, "first").CreateKVTable();
         return table;
     }},
    {"a further Init of a parameter",
     [](TestMachine& machine)
     {
         const Tessel::KVTable table = ParameterOf(machine, "go").GetKVTable();
         GenericDocument node;
         node.Parse("{}");
         ParameterOf(machine, "go").Init(node, &machine.alloc);
         return table;
     }},
};

} // namespace

TEST(KeptTable, TakesWritesUntilTheMachineIsGoneAndIsClosedThen)
{
    for (const Parting& parting : kPartings)
    {
        SCOPED_TRACE(parting.name);
        LogRecorder log;
        const unsigned int before = Tessel::GetOpenTableCount();
        Tessel::KVTable kept;
        {
            InitialisedMachine machine(Document());
            kept = parting.part(machine);
            ASSERT_TRUE(kept);
            kept->SetInt("value", 1, 1);
            machine.Uninit();
            kept->SetInt("value", 2, 1);
        }
        kept->SetInt("value", 3, 1);

        EXPECT_EQ(Tessel::GetOpenTableCount(), before);
    }
}

TEST(KeptTable, OfACopiedConditionIsSharedWhoeverAsksFirst)
{
    LogRecorder log;
    InitialisedMachine machine(Document());
    ConditionDef& condition = ConditionOf(machine);
    const BaseDef copy(condition);

    EXPECT_EQ(copy.GetKVTable(), condition.GetKVTable());
    EXPECT_TRUE(condition.GetKVTable());
}

} // namespace vell::test
