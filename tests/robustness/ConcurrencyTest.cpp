// VELL: data-driven hierarchical state machines.
// tests/robustness/ConcurrencyTest.cpp: machines on threads of their own.
#include <durm/DURMBaseLib.h>
#include <tessel/Tessel.h>
#include <vell/HSM.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>

#include "tests/robustness/Conditions.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vell::test
{
namespace
{

constexpr unsigned int kMachines = 8;

template <class Interface, class Value>
void Set(HSM& machine, const char* name, const Value& value)
{
    if (auto* typed = dynamic_cast<Interface*>(machine.GetParameterTable()->FindParameter(name)))
    {
        typed->SetValue(value);
    }
}

/// Everything that a host and a tool do to one machine between its making and its deletion.
void Drive(HSM& machine, unsigned int number, unsigned int rounds)
{
    machine.Start();
    for (unsigned int i = 0; i < rounds; ++i)
    {
        const unsigned int turn = i + number;
        Set<IParameterIntDef>(machine, "count", static_cast<int>(turn % 4));
        Set<IParameterBoolDef>(machine, "go", turn % 3 == 0);
        Set<IParameterBoolDef>(machine, "hit", turn % 7 == 0);
        Set<IParameterFloatDef>(machine, "speed", turn % 5 == 0 ? 2.0f : -1.0f);
        Set<IParameterMessageDef>(machine, "shout", "text " + std::to_string(turn));
        machine.Update(0.1f);
        machine.PushState(turn % 2 == 0 ? 10u : 11u);
        machine.PopState();

        const Tessel::KVTable root = machine.GetKVTable();
        root->SetInt(("key" + std::to_string(turn % 50)).c_str(), static_cast<int>(turn), 1);
        const Tessel::KVTable own = Tessel::CreateTable("own");
        own->SetString("machine", "text", 1);
        root->AttachTable("own", own, 1);
        Tessel::CloseTable(own);
        DURMBaseLib::LogImpl(3, "a line of the host\n");
        DURMBaseLib::GetBuilderIndex("generic");
    }
}

/// Drives `count` machines, each on its own thread or one after the other, and gives where each
/// is at the end.
std::vector<unsigned int> DriveAll(unsigned int count, unsigned int rounds, bool atOnce)
{
    const std::string text = WholeDocument().Text();
    std::vector<std::unique_ptr<HSM>> machines;
    for (unsigned int i = 0; i < count; ++i)
    {
        machines.push_back(std::make_unique<HSM>(text.c_str()));
        EXPECT_EQ(machines.back()->Init(), 1);
    }
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < count; ++i)
    {
        HSM* machine = machines[i].get();
        threads.emplace_back(
            [machine, i, rounds]
            {
                Drive(*machine, i, rounds);
            });
        if (!atOnce)
        {
            threads.back().join();
        }
    }
    std::vector<unsigned int> ends;
    for (unsigned int i = 0; i < count; ++i)
    {
        if (atOnce)
        {
            threads[i].join();
        }
        SMState* current = machines[i]->GetCurrentState();
        ends.push_back(current == nullptr ? 0 : current->GetID());
    }
    for (const std::unique_ptr<HSM>& machine : machines)
    {
        machine->Uninit();
        machine->Destroy();
    }
    return ends;
}

} // namespace

TEST(MachinesOnThreads, RunAsTheyRunOneAfterTheOther)
{
    QuietLog log;
    const unsigned int rounds = Scaled(2000, 300);
    const unsigned int openBefore = Tessel::GetOpenTableCount();

    const std::vector<unsigned int> oneByOne = DriveAll(kMachines, rounds, false);
    const std::size_t lines = log.Lines();
    log.Clear();
    const std::vector<unsigned int> atOnce = DriveAll(kMachines, rounds, true);

    EXPECT_EQ(atOnce, oneByOne);
    EXPECT_EQ(log.Lines(), lines);
    EXPECT_GT(lines, kMachines * rounds);
    EXPECT_EQ(Tessel::GetOpenTableCount(), openBefore);
}

TEST(MachinesOnThreads, MayHandTheCallbackOnWhileTheyLog)
{
    QuietLog log;
    const std::string text = WholeDocument().Text();
    HSM first(text.c_str());
    HSM second(text.c_str());
    ASSERT_EQ(first.Init(), 1);
    ASSERT_EQ(second.Init(), 1);

    std::thread firstThread(
        [&]
        {
            Drive(first, 0, 100);
        });
    std::thread secondThread(
        [&]
        {
            Drive(second, 1, 100);
        });
    for (int i = 0; i < 100; ++i)
    {
        log.Resume();
    }
    firstThread.join();
    secondThread.join();
    first.Uninit();
    second.Uninit();

    EXPECT_GT(log.Lines(), 0u);
}

} // namespace vell::test
