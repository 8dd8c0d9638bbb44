// VELL: data-driven hierarchical state machines.
// tests/platform/TesselManyListenersTest.cpp: a hundred thousand listeners of one table.
#include <tessel/Tessel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace Tessel;

/// Twice this squared is more steps than anyone waits for: whatever looks at all listeners for each
/// one runs into the time limit of the tests.
constexpr std::size_t kMany = 150000;

/// A table whose listeners have numbers and note them when they are called.
class TableManyListeners : public testing::Test
{
protected:
    ~TableManyListeners() override
    {
        CloseTable(table);
    }

    struct Numbered
    {
        TableManyListeners* test;
        std::size_t number;
    };

    static int Call(void* object, opResult, KVTable, const char*)
    {
        const Numbered& self = *static_cast<Numbered*>(object);
        self.test->called.push_back(self.number);
        if (self.test->action)
        {
            self.test->action(self.number);
        }
        return 0;
    }

    KVListener GetListener(std::size_t number)
    {
        return KVListener{&listeners[number], &Call};
    }

    void Install(std::size_t number, const char* key = "value")
    {
        *table->GetValueListener(key) = GetListener(number);
    }

    void Remove(std::size_t number, const char* key = "value")
    {
        const KVListener listener = GetListener(number);
        table->RemoveValueListener(key, &listener);
    }

    void InstallAll()
    {
        for (std::size_t i = 0; i < kMany; ++i)
        {
            Install(i);
        }
    }

    /// Writes "value", and gives the numbers of those that were called.
    std::vector<std::size_t> Write()
    {
        called.clear();
        table->SetInt("value", 1, 1);
        return std::move(called);
    }

    /// Gives the numbers from 0 on.
    static std::vector<std::size_t> CountTo(std::size_t end)
    {
        std::vector<std::size_t> numbers(end);
        std::iota(numbers.begin(), numbers.end(), std::size_t{0});
        return numbers;
    }

    KVTable table = CreateTable("listened");
    std::vector<Numbered> listeners = [this]
    {
        std::vector<Numbered> all(kMany);
        for (std::size_t i = 0; i < kMany; ++i)
        {
            all[i] = Numbered{this, i};
        }
        return all;
    }();
    std::vector<std::size_t> called;
    std::function<void(std::size_t)> action;
};

TEST_F(TableManyListeners, AreCalledInTheirOrderAndRemovedInAnyOrder)
{
    using Order = std::function<std::size_t(std::size_t)>;
    const std::vector<Order> orders = {
        [](std::size_t i)
        {
            return i;
        },
        [](std::size_t i)
        {
            return kMany - 1 - i;
        },
        [](std::size_t i)
        {
            return i * 77777 % kMany; // 77777 and kMany have no common divisor
        },
    };
    for (const Order& order : orders)
    {
        InstallAll();
        EXPECT_EQ(Write(), CountTo(kMany));

        std::vector<std::size_t> left = CountTo(kMany);
        for (std::size_t i = 0; i < kMany; ++i)
        {
            if (i == kMany - 3)
            {
                const std::vector<std::size_t> last = {order(i), order(i + 1), order(i + 2)};
                std::vector<std::size_t> sorted = last;
                std::sort(sorted.begin(), sorted.end());
                EXPECT_EQ(Write(), sorted);
            }
            Remove(order(i));
        }
        EXPECT_EQ(Write(), std::vector<std::size_t>{});
    }
}

TEST_F(TableManyListeners, ThatAreTheSameAreRemovedOneByOneFromTheFirstOn)
{
    for (std::size_t i = 0; i < kMany; ++i)
    {
        Install(0);
    }
    Install(1);
    Install(0);

    for (std::size_t i = 0; i < kMany; ++i)
    {
        Remove(0);
    }

    EXPECT_EQ(Write(), (std::vector<std::size_t>{1, 0}));
}

TEST_F(TableManyListeners, OfOneObjectAreFoundByTheirFunctions)
{
    const KVListener silent{&listeners[0], [](void*, opResult, KVTable, const char*)
                            {
                                return 0;
                            }};
    for (std::size_t i = 0; i < kMany / 2; ++i)
    {
        *table->GetValueListener("value") = silent;
        Install(0);
    }
    for (std::size_t i = 0; i < kMany / 2; ++i)
    {
        table->RemoveValueListener("value", &silent);
    }
    EXPECT_EQ(Write(), std::vector<std::size_t>(kMany / 2));
}

TEST_F(TableManyListeners, MayAllBeInstalledAndRemovedInsideOneCall)
{
    Install(0);
    action = [&](std::size_t)
    {
        action = nullptr;
        for (std::size_t i = 1; i < kMany; ++i)
        {
            Install(i);
        }
    };
    EXPECT_EQ(Write(), std::vector<std::size_t>{0});
    EXPECT_EQ(Write(), CountTo(kMany));

    action = [&](std::size_t)
    {
        action = nullptr;
        for (std::size_t i = kMany - 1; i != 1; --i)
        {
            Remove(i);
        }
    };
    EXPECT_EQ(Write(), (std::vector<std::size_t>{0, 1}));
}

TEST_F(TableManyListeners, MayEachRemoveItselfWhenItIsCalled)
{
    InstallAll();
    action = [&](std::size_t number)
    {
        Remove(number);
    };

    EXPECT_EQ(Write(), CountTo(kMany));
    EXPECT_EQ(Write(), std::vector<std::size_t>{});
}

TEST_F(TableManyListeners, MayEachReinstallItselfWhenItIsCalled)
{
    InstallAll();
    action = [&](std::size_t number)
    {
        Remove(number);
        Install(number);
    };

    EXPECT_EQ(Write(), CountTo(kMany));
    EXPECT_EQ(Write(), CountTo(kMany));
}

TEST_F(TableManyListeners, OfOneKeyAreNotLookedAtForAnother)
{
    InstallAll();
    action = [&](std::size_t)
    {
        Remove(0, "other");
        Install(0, "other");
    };
    Install(0, "other");

    for (std::size_t i = 0; i < kMany; ++i)
    {
        table->SetInt("other", 1, 1);
    }

    EXPECT_EQ(called, std::vector<std::size_t>(kMany, 0));
}

TEST_F(TableManyListeners, OfKeysOfTheirOwnAreFoundByTheirKeys)
{
    const auto getKey = [](std::size_t number)
    {
        return std::to_string(number);
    };
    for (std::size_t i = 0; i < kMany; ++i)
    {
        Install(i, getKey(i).c_str());
    }

    for (std::size_t i = 0; i < kMany; ++i)
    {
        table->SetInt(getKey(i).c_str(), 1, 1);
    }
    EXPECT_EQ(called, CountTo(kMany));

    for (std::size_t i = 0; i < kMany; ++i)
    {
        Remove(i, getKey(i).c_str());
        table->SetInt(getKey(i).c_str(), 1, 1);
    }
    EXPECT_EQ(called.size(), kMany);
}

TEST_F(TableManyListeners, OfKeysOfTheirOwnMayAllBeInstalledInsideOneCall)
{
    Install(0);
    action = [&](std::size_t)
    {
        action = nullptr;
        for (std::size_t i = 0; i < kMany; ++i)
        {
            Install(i, std::to_string(i).c_str());
        }
    };
    Write();

    for (std::size_t i = 0; i < kMany; ++i)
    {
        table->SetInt(std::to_string(i).c_str(), 1, 1);
    }

    EXPECT_EQ(called, CountTo(kMany));
}

TEST_F(TableManyListeners, AreFoundAlsoWhenTheyWereFilledInLate)
{
    std::vector<KVListener*> records;
    for (std::size_t i = 0; i < 100; ++i)
    {
        records.push_back(table->GetValueListener("value"));
    }
    for (std::size_t i = 99; i != 50; --i)
    {
        *records[i] = GetListener(7);
    }
    Remove(8);
    for (std::size_t i = 0; i <= 50; ++i)
    {
        *records[i] = GetListener(i == 0 ? 9 : 7);
    }

    // The first of those with the number 7 goes first, whenever it was filled in.
    Remove(7);
    *records[2] = GetListener(2);
    for (std::size_t i = 0; i < 96; ++i)
    {
        Remove(7);
    }

    EXPECT_EQ(Write(), (std::vector<std::size_t>{9, 2, 7}));
}

TEST_F(TableManyListeners, AreFoundByWhatTheirRecordsHoldNow)
{
    std::vector<KVListener*> records;
    for (std::size_t i = 0; i < 100; ++i)
    {
        records.push_back(table->GetValueListener("value"));
        *records.back() = GetListener(i);
    }
    Remove(99);

    *records[40] = GetListener(1000);
    records[41]->function = nullptr;
    Remove(1000);
    Remove(40);
    Remove(41);
    *records[41] = GetListener(41);

    std::vector<std::size_t> expected = CountTo(99);
    expected.erase(expected.begin() + 40);
    EXPECT_EQ(Write(), expected);
    Remove(41);
    Remove(98);
    Remove(0);
    EXPECT_EQ(Write().size(), 95u);
}

} // namespace
