// VELL: data-driven hierarchical state machines.
// tests/host/HostUpdateMachinesTest.cpp: a host that ticks many machines by one call.
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/LogTest.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

using HostUpdateMachines = LogTest;
using Crowd = std::vector<std::unique_ptr<IHSM>>;

/// Walks to and fro, two substates deep, while "go" is true; "hit" interrupts.
std::string Document()
{
    return DocumentBuilder()
        .Start(20)
        .Parameter(BoolParameter("go", false))
        .Parameter(BoolParameter("hit", false).Set(JSON_ParameterResetEachFrame, true))
        .Level("Outer", 20, 30)
        .Level("Inner", 30, 10, {}, 20)
        .Node(Generic("To", 10, {100}, 30))
        .Node(Generic("Fro", 11, {101}, 30))
        .Node(Generic("Hurt", 12))
        .GlobalNode(Global("Global", 13, {102}))
        .Node(Transition("Go", 100, 10, 11, {BoolCondition("go", true)}))
        .Node(Transition("Return", 101, 11, 10, {BoolCondition("go", true)}))
        .Node(Transition("Hit", 102, 13, 12, {BoolCondition("hit", true)}))
        .Text();
}

std::unique_ptr<IHSM> Load()
{
    return std::unique_ptr<IHSM>(CreateHSMJson(Document().c_str()));
}

std::unique_ptr<IHSM> Start()
{
    std::unique_ptr<IHSM> machine = Load();
    EXPECT_EQ(machine->Init(), 1);
    machine->Start();
    return machine;
}

void Set(IHSM& machine, const char* name, bool value)
{
    auto* parameter =
        dynamic_cast<IParameterBoolDef*>(machine.GetParameterTable()->FindParameter(name));
    ASSERT_NE(parameter, nullptr);
    parameter->SetValue(value);
}

std::vector<IHSM*> Pointers(const Crowd& crowd)
{
    std::vector<IHSM*> pointers;
    for (const auto& machine : crowd)
    {
        pointers.push_back(machine.get());
    }
    return pointers;
}

/// A host's machine with a tick of its own.
class CountingMachine : public HSM
{
public:
    explicit CountingMachine(std::string name, Lines& lines) : own(std::move(name)), notes(lines)
    {
    }
    void Update(float timeStep) override
    {
        notes.push_back(own + " " + std::to_string(static_cast<int>(timeStep)));
        if (next != nullptr)
        {
            *next = other;
        }
        if (throws)
        {
            throw std::runtime_error(own);
        }
        HSM::Update(timeStep);
    }

    bool throws = false;
    IHSM** next = nullptr; ///< where `other` is put
    IHSM* other = nullptr;

private:
    std::string own;
    Lines& notes;
};

} // namespace

TEST_F(HostUpdateMachines, IsTheSameAsALoopOfUpdates)
{
    Crowd looped;
    Crowd together;
    for (Crowd* crowd : {&looped, &together})
    {
        for (int i = 0; i < 15; ++i)
        {
            crowd->push_back(i % 7 == 4 ? Load() : Start());
        }
    }
    const std::vector<IHSM*> pointers = Pointers(together);
    for (int tick = 0; tick < 12; ++tick)
    {
        for (Crowd* crowd : {&looped, &together})
        {
            const auto chosen = static_cast<std::size_t>(tick % 3);
            Set(*(*crowd)[chosen], "go", tick % 4 == 0);
            Set(*(*crowd)[chosen + 1], "hit", tick == 7);
        }
        log.Clear();
        for (const auto& machine : looped)
        {
            machine->Update(0.1f);
        }
        const Lines lines = log.Take();

        UpdateMachines(pointers.data(), pointers.size(), 0.1f);

        EXPECT_EQ(log.Take(), lines);
        for (std::size_t i = 0; i < looped.size(); ++i)
        {
            EXPECT_EQ(TreeLines(together[i]->GetKVTable()), TreeLines(looped[i]->GetKVTable()));
        }
    }
}

TEST_F(HostUpdateMachines, CallsTheUpdateOfAHostsClassInOrder)
{
    Lines notes;
    CountingMachine first("first", notes);
    CountingMachine second("second", notes);
    const std::unique_ptr<IHSM> between = Start();
    IHSM* const machines[] = {&first, between.get(), &second, &first};

    UpdateMachines(machines, 4, 2.0f);

    EXPECT_EQ(notes, (Lines{"first 2", "second 2", "first 2"}));
}

TEST_F(HostUpdateMachines, DoesNothingForNone)
{
    UpdateMachines(nullptr, 0, 1.0f);

    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(HostUpdateMachines, StopsAtAMachineWhoseUpdateThrows)
{
    Lines notes;
    CountingMachine first("first", notes);
    CountingMachine second("second", notes);
    CountingMachine third("third", notes);
    second.throws = true;
    IHSM* const machines[] = {&first, &second, &third};

    EXPECT_THROW(UpdateMachines(machines, 3, 1.0f), std::runtime_error);

    EXPECT_EQ(notes, (Lines{"first 1", "second 1"}));
}

TEST_F(HostUpdateMachines, ReadsAPlaceWhenItsTurnComes)
{
    Lines notes;
    CountingMachine first("first", notes);
    CountingMachine second("second", notes);
    CountingMachine other("other", notes);
    IHSM* machines[] = {&first, &second};
    first.next = &machines[1];
    first.other = &other;

    UpdateMachines(machines, 2, 1.0f);

    EXPECT_EQ(notes, (Lines{"first 1", "other 1"}));
}

} // namespace vell::test
