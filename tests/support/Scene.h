// VELL: data-driven hierarchical state machines.
// tests/support/Scene.h: a running machine and everything that it tells.
#pragma once

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

/// A document, the machine it describes, and what the machine tells.
class Scene
{
public:
    static constexpr float kStep = 0.5f; ///< the time of each tick

    explicit Scene(const DocumentBuilder& document) : machine(document)
    {
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
