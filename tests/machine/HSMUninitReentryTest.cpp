// VELL: data-driven hierarchical state machines.
// tests/machine/HSMUninitReentryTest.cpp: an action whose destructor uninitialises a machine's
// tables while they are being uninitialised.
#include <vell/ParameterDef.h>

#include "parameters/ParameterTable.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestAction.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace vell::test
