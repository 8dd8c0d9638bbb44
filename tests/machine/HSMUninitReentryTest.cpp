// VELL: data-driven hierarchical state machines.
// tests/machine/HSMUninitReentryTest.cpp: an action whose destructor uninitialises a machine's
// tables while they are being uninitialised.
#include <vell/Action.h>
#include <vell/ParameterDef.h>

#include "parameters/ParameterTable.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace vell::test
{
namespace
{

/// Runs what a test says when it is deleted.
class LastAction : public Action
{
public:
    explicit LastAction(std::function<void()> function) : onDelete(std::move(function))
    {
    }
    ~LastAction() override
    {
        onDelete();
    }

private:
    std::function<void()> onDelete;
};

TEST(UninitReentry, EndsTheUninitOfParametersInsideOfWhichAnotherOneRan)
{
    LogRecorder log;
    TestMachine machine(DocumentBuilder()
                            .Start(10)
                            .Node(Generic("Stand", 10))
                            .Parameter(BoolParameter("on", false))
                            .Parameter(IntParameter("count", 0))
                            .Parameter(FloatParameter("speed", 0.0)));
    ASSERT_EQ(machine.Init(), 1);
    const unsigned int first = machine.GetParameterTable()->GetParameterIDByIndex(0);
    const auto uninit = [&machine]
    {
        machine.UninitParameterTable(&machine.alloc);
    };
    machine.GetParameterTable()->FindParameter(first)->RegisterExecute(new LastAction(uninit));

    machine.UninitParameterTable(&machine.alloc);

    EXPECT_EQ(machine.GetParameterTable()->GetParameterCount(), 0);
}

} // namespace
} // namespace vell::test
