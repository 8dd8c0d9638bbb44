// VELL: data-driven hierarchical state machines.
// tests/machine/HSMUninitTest.cpp: an Uninit that a host's part throws out of, and goes on.
#include <vell/BaseDef.h>
#include <vell/HSMAlloc.h>
#include <vell/Parameters.h>

#include "definitions/NodeDefTable.h"
#include "parameters/ParameterTable.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace vell::test
{
namespace
{

constexpr auto kHostBuilder = static_cast<__DURM_BUILDERS__>(40);

Ids uninits;
Ids throwers;

/// Notes the id, and throws for those of the throwers.
void NoteUninit(unsigned int id)
{
    uninits.push_back(id);
    for (const unsigned int thrower : throwers)
    {
        if (thrower == id)
        {
            throw std::runtime_error("a host's Uninit");
        }
    }
}

class HostDef : public BaseDef
{
public:
    static BaseDef* Create(const GenericValue&, HSMAlloc* alloc)
    {
        return alloc->New<HostDef>();
    }
    void Uninit() override
    {
        NoteUninit(id);
        BaseDef::Uninit();
    }
};

class HostParameter : public ParameterIntegerDef
{
public:
    void Uninit() override
    {
        NoteUninit(id);
        ParameterIntegerDef::Uninit();
    }
};

/// A machine with three definitions and three parameters of a host, whose ids are 10, 20, 30 and 1,
/// 2, 3.
class HSMUninit : public testing::Test
{
protected:
    void SetUp() override
    {
        uninits.clear();
        throwers.clear();
        openBefore = Tessel::GetOpenTableCount();
        DocumentBuilder document;
        document.Start(10);
        for (const unsigned int id : {10u, 20u, 30u})
        {
            document.Node(Node(kHostBuilder, "N" + std::to_string(id), id));
        }
        machine.emplace(document);
        machine->RegisterNodeDef(kHostBuilder, HostDef::Create);
        ASSERT_EQ(machine->Init(), 1);
        for (unsigned int id = 1; id <= 3; ++id)
        {
            auto* parameter = machine->alloc.New<HostParameter>();
            parameter->SetName(kNames[id - 1]);
            parameter->SetID(id);
            parameter->InitKVTable();
            ASSERT_EQ(machine->parameterTable->AddParameter(parameter), 1);
        }
        root = machine->GetKVTable();
    }

    /// Calls Uninit until it returns, and gives how many calls threw.
    int UninitAtLast()
    {
        for (int thrown = 0;; ++thrown)
        {
            try
            {
                EXPECT_EQ(machine->Uninit(), 1);
                return thrown;
            }
            catch (const std::runtime_error&)
            {
                EXPECT_NE(machine->alloc.block, nullptr) << "what is left still lives there";
                EXPECT_STREQ(Tessel::GetTableName(root), "HSM");
            }
        }
    }

    static constexpr const char* kNames[] = {"a", "b", "c"};

    LogRecorder log;
    unsigned int openBefore = 0;
    std::optional<TestMachine> machine;
    Tessel::KVTable root;
};

const Ids kOnceEach{1, 2, 3, 10, 20, 30};

} // namespace

TEST_F(HSMUninit, AsksEachDefinitionOnceInAscendingIdParametersFirstWhicheverThrows)
{
    for (const Ids& thrown : {Ids{}, Ids{20}, Ids{2}, kOnceEach})
    {
        machine.reset();
        SetUp();
        throwers = thrown;

        EXPECT_EQ(UninitAtLast(), static_cast<int>(thrown.size()));

        EXPECT_EQ(uninits, kOnceEach);
        EXPECT_EQ(machine->alloc.block, nullptr);
        EXPECT_EQ(Tessel::GetTableName(root), nullptr);
    }
}

TEST_F(HSMUninit, LeavesNoTableOpenWhateverThrew)
{
    throwers = kOnceEach;

    UninitAtLast();
    machine.reset();

    EXPECT_EQ(Tessel::GetOpenTableCount(), openBefore);
}

TEST_F(HSMUninit, MayBeLeftHalfDoneWhenTheMachineIsDeleted)
{
    throwers = {2};
    EXPECT_THROW(machine->Uninit(), std::runtime_error);

    machine.reset();

    EXPECT_EQ(uninits, (Ids{1, 2}));
    EXPECT_EQ(Tessel::GetOpenTableCount(), openBefore);
}

TEST_F(HSMUninit, LeavesTheRestOfTheTablesAsTheyWereWhenItThrows)
{
    throwers = {2};
    EXPECT_THROW(machine->Uninit(), std::runtime_error);

    EXPECT_EQ(machine->parameterTable->GetParameterCount(), 1);
    EXPECT_EQ(machine->parameterTable->GetParameterIDByIndex(0), 3u);
    EXPECT_EQ(machine->nodeDefTable->nodes.size(), 3u);
    machine->Uninit();
}

} // namespace vell::test
