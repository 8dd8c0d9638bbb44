// VELL: data-driven hierarchical state machines.
// tests/platform/TesselArrayTest.cpp: the array part of a key/value table.
#include <tessel/Tessel.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{

using namespace Tessel;

class TableArray : public testing::Test
{
protected:
    ~TableArray() override
    {
        CloseTable(table);
    }

    std::vector<unsigned> GetElements()
    {
        std::vector<unsigned> elements;
        for (unsigned i = 0; i < table->GetCount(); ++i)
        {
            elements.push_back(table->GetValueAt(i)->GetUIntValue());
        }
        return elements;
    }

    KVTable table = CreateTable("array");
};

TEST_F(TableArray, IsEmptyAtFirst)
{
    EXPECT_EQ(table->GetCount(), 0u);
    EXPECT_EQ(table->GetValueAt(0), nullptr);
    EXPECT_EQ(table->RemoveAt(0, 1), 0);
}

TEST_F(TableArray, AppendsAndRemovesAtAnyPlace)
{
    for (unsigned value : {10u, 20u, 30u, 40u, 50u, 60u})
    {
        EXPECT_NE(table->PushUInt(value, 1), 0);
    }

    EXPECT_NE(table->RemoveAt(5, 1), 0);
    EXPECT_NE(table->RemoveAt(0, 1), 0);
    EXPECT_NE(table->RemoveAt(1, 1), 0);

    EXPECT_EQ(GetElements(), (std::vector<unsigned>{20, 40, 50}));
    EXPECT_EQ(table->RemoveAt(3, 1), 0);
    EXPECT_EQ(table->GetValueAt(3), nullptr);
}

TEST_F(TableArray, HoldsUnsignedValues)
{
    table->PushUInt(4000000000u, 1);
    Float2 two{};
    Float3 three{};

    KVValue* element = table->GetValueAt(0);

    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->GetValueType(), 14);
    EXPECT_EQ(element->GetUIntValue(), 4000000000u);
    EXPECT_EQ(element->GetIntValue(), -294967296);
    EXPECT_EQ(element->GetFloatValue(), 4000000000.0f);
    EXPECT_EQ(element->GetStringValue(), nullptr);
    EXPECT_EQ(element->GetFloat2Value(&two), 0);
    EXPECT_EQ(element->GetFloat3Value(&three), 0);
}

TEST_F(TableArray, StandsApartFromTheKeys)
{
    table->PushUInt(1, 1);
    table->SetUInt("0", 7, 1);
    table->PushUInt(2, 1);

    EXPECT_EQ(table->GetCount(), 2u);
    EXPECT_EQ(table->GetKeyCount(), 1u);
    EXPECT_EQ(table->GetUInt("0"), 7u);
    EXPECT_EQ(GetElements(), (std::vector<unsigned>{1, 2}));
}

TEST_F(TableArray, KeepsElementsWhereTheyAreUntilTheyAreRemoved)
{
    std::vector<KVValue*> elements;
    for (unsigned i = 0; i < 5000; ++i)
    {
        table->PushUInt(i, 1);
        elements.push_back(table->GetValueAt(i));
    }

    table->RemoveAt(0, 1);
    table->PushUInt(5000, 1);

    ASSERT_EQ(table->GetCount(), 5000u);
    for (unsigned i = 1; i < 5000; ++i)
    {
        ASSERT_EQ(table->GetValueAt(i - 1), elements[i]);
        ASSERT_EQ(elements[i]->GetUIntValue(), i);
    }
}

} // namespace
