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
