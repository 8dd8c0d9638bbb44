// VELL: data-driven hierarchical state machines.
// tests/definitions/NodeDefTableReentryTest.cpp: a host's definition that empties the table while
// the table walks over it.
#include "tests/support/NodeTables.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace vell::test
{
namespace
{

constexpr auto kHostBuilder = static_cast<DURMBaseLib::__DURM_BUILDERS__>(100);

/// A host's definition, whose virtual operations run what the test says.
class CallingDef : public BaseDef
{
public:
    static BaseDef* Create(const GenericValue&, HSMAlloc* alloc)
    {
        RunOnce(onCreate);
        return alloc->New<CallingDef>();
    }
    const char* GetName() override
    {
        RunOnce(onName);
        return BaseDef::GetName();
    }
    unsigned int GetFlags() const override
    {
        RunOnce(onFlags);
        return BaseDef::GetFlags();
    }
    void Uninit() override
    {
        ++uninits;
        RunOnce(onUninit);
        BaseDef::Uninit();
    }

    static inline std::function<void()> onCreate;
    static inline std::function<void()> onName;
    static inline std::function<void()> onFlags;
    static inline std::function<void()> onUninit;
    static inline int uninits;

private:
    static void RunOnce(std::function<void()>& function)
    {
        const std::function<void()> running = std::exchange(function, nullptr);
        if (running)
        {
            running();
        }
    }
};

class NodeDefTableReentry : public NodeTableTest
{
protected:
    void SetUp() override
    {
        CallingDef::uninits = 0;
        table->RegisterNodeDef(kHostBuilder, &CallingDef::Create);
        Fill({Node(kHostBuilder, "Camera", 10), Generic("Walk", 11), Generic("Run", 12)});
    }
    void TearDown() override
    {
        CallingDef::onName = nullptr;
        CallingDef::onFlags = nullptr;
        CallingDef::onUninit = nullptr;
    }
    /// Lets a definition throw an int in its Uninit, after `others` that do not.
    static void ThrowInTheNextUninitBut(int others)
    {
        CallingDef::onUninit = [others]
        {
            if (others == 0)
            {
                throw 1;
            }
            ThrowInTheNextUninitBut(others - 1);
        };
    }
    std::function<void()> EmptyTable()
    {
        return [this]
        {
            table->Uninit();
        };
    }
};

TEST_F(NodeDefTableReentry, FindsNothingByNameInATableThatANameEmptied)
{
    CallingDef::onName = EmptyTable();

    EXPECT_EQ(table->FindByName("Run"), nullptr);
    EXPECT_TRUE(table->nodes.empty());
}

TEST_F(NodeDefTableReentry, EndsAWalkThatADefinitionsFlagsEmptied)
{
    CallingDef::onFlags = EmptyTable();

    EXPECT_EQ(table->FindFirst(DefTypesState), nullptr);
    EXPECT_EQ(table->FindNext(DefTypesState), nullptr);
}

TEST_F(NodeDefTableReentry, EndsAnUninitInsideOfWhichAnotherOneRan)
{
    CallingDef::onUninit = EmptyTable();

    table->Uninit();

    EXPECT_EQ(CallingDef::uninits, 2);
    EXPECT_TRUE(table->nodes.empty());
}

TEST_F(NodeDefTableReentry, UninitialisesANodeThatTheLastOneFiledBehindItself)
{
    Fill({Node(kHostBuilder, "Lens", 20)});
    CallingDef::onUninit = [this]
    {
        CallingDef::onUninit = [this]
        {
            table->Init(Parse(Json::Array({Json(Node(kHostBuilder, "Late", 30))})), &alloc);
        };
    };

    table->Uninit();

    EXPECT_EQ(CallingDef::uninits, 3);
    EXPECT_TRUE(table->nodes.empty());
}

TEST_F(NodeDefTableReentry, GoesOnWithTheRestWhenAnUninitInsideOfItThrew)
{
    Fill({Node(kHostBuilder, "Lens", 20), Node(kHostBuilder, "Filter", 30)});
    CallingDef::onUninit = [this]
    {
        ThrowInTheNextUninitBut(1);
        EXPECT_THROW(table->Uninit(), int);
    };

    table->Uninit();

    EXPECT_EQ(CallingDef::uninits, 4) << "Camera twice, Lens, Filter";
    EXPECT_TRUE(table->nodes.empty());
}

TEST_F(NodeDefTableReentry, KeepsTheRestWhenAnUninitInsideOfItThrowsThroughIt)
{
    Fill({Node(kHostBuilder, "Lens", 20), Node(kHostBuilder, "Filter", 30)});
    CallingDef::onUninit = [this]
    {
        ThrowInTheNextUninitBut(1);
        table->Uninit();
    };

    EXPECT_THROW(table->Uninit(), int);

    ASSERT_EQ(table->nodes.size(), 1u);
    EXPECT_NE(table->Find(30), nullptr);
    table->Uninit();
    EXPECT_EQ(CallingDef::uninits, 4);
}

TEST_F(NodeDefTableReentry, FindsNothingByNameBehindANameThatTookNodesOff)
{
    CallingDef::onName = [this]
    {
        ThrowInTheNextUninitBut(0);
        EXPECT_THROW(table->Uninit(), int);
    };

    EXPECT_EQ(table->FindByName("Run"), nullptr);
    EXPECT_NE(table->FindByName("Run"), nullptr);
}

TEST_F(NodeDefTableReentry, BuildsANodeWhoseFactoryEmptiedTheRegistry)
{
    CallingDef::onCreate = &NodeDefTable::ClearBuilders;

    EXPECT_NE(Build(Node(kHostBuilder, "Lens", 20)), nullptr);
    EXPECT_EQ(Build(Node(kHostBuilder, "Lens", 21)), nullptr);
}

TEST_F(NodeDefTableReentry, WalksOverNodesThatWereFiledMeanwhile)
{
    CallingDef::onName = [this]
    {
        table->Init(Parse(Json::Array({Json(Generic("Jump", 13))})), &alloc);
    };

    ASSERT_NE(table->FindByName("Jump"), nullptr);
    EXPECT_EQ(table->FindByName("Jump")->GetID(), 13u);
}

} // namespace
} // namespace vell::test
