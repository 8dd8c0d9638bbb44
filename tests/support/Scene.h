// VELL: data-driven hierarchical state machines.
// tests/support/Scene.h: a running machine and everything that it tells.
#pragma once

#include <vell/BaseDef.h>
#include <vell/HSMAlloc.h>
#include <vell/SMState.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <memory>

namespace vell::test
{

/// The condition that the bool parameter is true.
inline JsonObject Holds(const char* parameter)
{
    return BoolCondition(parameter, true);
}

/// A builder number that the vocabulary does not name.
constexpr auto kOwnBuilder = static_cast<__DURM_BUILDERS__>(40);

/// A factory for states of a test's own class.
template <class T>
SMState* MakeState(unsigned int, HSMAlloc* alloc)
{
    return alloc->New<T>();
}

/// A state that cannot be entered.
class ShutState : public SMState
{
public:
    int Enter() override
    {
        LogRecorder::Note("asked to enter");
        return 0;
    }
};

/// A document, the machine it describes, and what the machine tells.
class Scene
{
public:
    static constexpr float kStep = 0.5f; ///< the time of each tick

    /// Nodes of the builder number kOwnBuilder run as what `own` makes.
    explicit Scene(const DocumentBuilder& document, StateFactory own = nullptr) : machine(document)
    {
        machine.RegisterNodeDef(kOwnBuilder, BaseDef::Create);
        machine.RegisterState(kOwnBuilder, own);
        EXPECT_EQ(machine.Init(), 1);
        recorder = std::make_unique<MachineRecorder>(machine);
        log.Clear();
    }

    /// Starts the machine and ticks it `ticks` times, forgetting what it tells.
    void Run(int ticks)
    {
        machine.Start();
        for (int i = 0; i < ticks; ++i)
        {
            machine.Update(kStep);
        }
        log.Clear();
    }

    /// Ticks once and gives what the machine told.
    Lines Tick()
    {
        machine.Update(kStep);
        return log.Take();
    }

    /// Ticks once with the parameter `name` true.
    Lines TickWith(const char* name)
    {
        machine.SetBool(name, true);
        return Tick();
    }

    LogRecorder log;
    TestMachine machine;

private:
    std::unique_ptr<MachineRecorder> recorder;
};

} // namespace vell::test
