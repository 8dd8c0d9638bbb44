// VELL: data-driven hierarchical state machines.
// tests/machine/HSMUninitReentryTest.cpp: an action whose destructor uninitialises a machine's
// tables while they are being uninitialised.
#include <durm/DURMBaseLib.h>
#include <vell/IParameterTable.h>
#include <vell/ParameterDef.h>

#include "parameters/ParameterTable.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestAction.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

TEST(UninitReentry, EndsTheUninitOfParametersInsideOfWhichAnotherOneRan)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument()
                                   .Parameter(BoolParameter("on", false))
                                   .Parameter(IntParameter("count", 0))
                                   .Parameter(FloatParameter("speed", 0.0)));
    const unsigned int first = machine.GetParameterTable()->GetParameterIDByIndex(0);
    auto* last = new TestAction("last");
    last->onDelete = [&machine]
    {
        machine.UninitParameterTable(&machine.alloc);
    };
    machine.GetParameterTable()->FindParameter(first)->RegisterExecute(last);

    machine.UninitParameterTable(&machine.alloc);

    EXPECT_EQ(machine.GetParameterTable()->GetParameterCount(), 0);
}

TEST(UninitReentry, UninitialisesAParameterThatTheLastOneCreatesBehindItself)
{
    LogRecorder log;
    InitialisedMachine machine(SmallDocument().Parameter(BoolParameter("on", false)));
    IParameterTable* parameters = machine.GetParameterTable();
    const unsigned int last = parameters->GetParameterIDByIndex(0);
    std::string name = "late";
    while (DURMBaseLib::ConvertStringToCRC(name) < last)
    {
        name += "r";
    }
    Tessel::KVTable table;
    auto* action = new TestAction("last");
    action->onDelete = [parameters, &name, &table]
    {
        IParameterIntDef* late = nullptr;
        parameters->CreateIntParameter(name.c_str(), 1, &late);
        table = parameters->FindParameter(name.c_str())->GetKVTable();
    };
    parameters->FindParameter(last)->RegisterExecute(action);

    machine.UninitParameterTable(&machine.alloc);

    EXPECT_EQ(parameters->GetParameterCount(), 0);
    EXPECT_TRUE(table);
    EXPECT_EQ(Tessel::GetTableName(table), nullptr) << "closed";
}

} // namespace
} // namespace vell::test
