// VELL: data-driven hierarchical state machines.
// tests/platform/TesselThreadTest.cpp: key/value tables on several threads.
#include <tessel/Tessel.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace
{

using namespace Tessel;

int CountCall(void* object, opResult, KVTable, const char*)
{
    ++*static_cast<int*>(object);
    return 0;
}

/// Makes, uses and closes a tree; gives whether each value was what this thread wrote.
bool RunTree(unsigned thread, unsigned round)
{
    const std::string id = std::to_string(thread * 100000 + round);
    const std::string name = "name" + std::to_string(round % 97);
    int calls = 0;
    const KVTable root = CreateTable("HSM");
    const KVTable child = root->AddTable(id.c_str(), 1);
    *child->GetValueListener("value") = KVListener{&calls, &CountCall};
    child->SetUInt("value", round, 1);
    child->SetUInt(name.c_str(), thread, 1);
    child->SetString("text", id.c_str(), 1);
    child->PushUInt(round, 1);

    const KVTable found = root->GetTable(id.c_str());
    const bool isRight = found == child && found->GetUInt("value") == round && calls == 1 &&
                         found->GetUInt(name.c_str()) == thread && found->GetString("text") == id &&
                         found->GetValueAt(0)->GetUIntValue() == round;
    CloseTable(root);
    return isRight && child->GetKeyCount() == 0;
}

template <class Body>
void RunThreads(Body body)
{
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [&go, &body, i]
            {
                while (!go)
                {
                    std::this_thread::yield();
                }
                body(i);
            });
    }
    go = true;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

TEST(TableThreads, MakeUseAndCloseTheirOwnTablesAtTheSameTime)
{
    const unsigned before = GetOpenTableCount();
    std::atomic<unsigned> right{0};

    RunThreads(
        [&](unsigned thread)
        {
            for (unsigned round = 0; round < 2000; ++round)
            {
                right += RunTree(thread, round) ? 1u : 0u;
            }
        });

    EXPECT_EQ(right, 4 * 2000u);
    EXPECT_EQ(GetOpenTableCount(), before);
}

TEST(TableThreads, MakeManyTablesBeforeTheyCloseThem)
{
    const unsigned before = GetOpenTableCount();
    std::atomic<unsigned> wrong{0};

    RunThreads(
        [&](unsigned thread)
        {
            std::vector<KVTable> tables;
            for (unsigned i = 0; i < 3000; ++i)
            {
                tables.push_back(CreateTable("t"));
                tables.back()->SetUInt("id", thread * 10000 + i, 1);
            }
            for (unsigned i = 0; i < 3000; ++i)
            {
                wrong += tables[i]->GetUInt("id") == thread * 10000 + i ? 0u : 1u;
                CloseTable(tables[i]);
            }
        });

    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(GetOpenTableCount(), before);
}

TEST(TableThreads, MayAskStaleHandlesWhileOthersUseTheirPlaces)
{
    std::vector<KVTable> stale;
    for (int i = 0; i < 100; ++i)
    {
        stale.push_back(CreateTable("stale"));
    }
    for (KVTable table : stale)
    {
        CloseTable(table);
    }
    std::atomic<unsigned> answers{0};

    RunThreads(
        [&](unsigned thread)
        {
            for (unsigned round = 0; round < 2000; ++round)
            {
                const KVTable table = stale[round % stale.size()];
                RunTree(thread, round);
                answers += table->GetUInt("value") + table->GetKeyCount();
                CloseTable(table);
            }
        });

    EXPECT_EQ(answers, 0u);
}

TEST(TableThreads, ShareTheKeysThatAllOfThemMakeAtTheSameTime)
{
    std::atomic<unsigned> wrong{0};

    RunThreads(
        [&](unsigned thread)
        {
            const KVTable table = CreateTable("keys");
            for (unsigned i = 0; i < 1000; ++i)
            {
                table->SetUInt(("made by all " + std::to_string(i)).c_str(), thread + i, 1);
            }
            for (unsigned i = 0; i < 1000; ++i)
            {
                const std::string key = "made by all " + std::to_string(i);
                wrong += table->GetUInt(key.c_str()) == thread + i ? 0u : 1u;
                wrong += table->GetKeyAt(i) == key ? 0u : 1u;
            }
            CloseTable(table);
        });

    EXPECT_EQ(wrong, 0u);
}

TEST(TableThreads, ShareTheShapesThatAllOfThemMakeAtTheSameTime)
{
    std::atomic<unsigned> wrong{0};

    RunThreads(
        [&](unsigned thread)
        {
            for (unsigned round = 0; round < 200; ++round)
            {
                const KVTable table = CreateTable("shapes");
                for (unsigned i = 0; i < 1 + round % 8; ++i)
                {
                    const unsigned number = (round / 8 + i * (1 + round % 3)) % 11;
                    table->SetUInt(("shape" + std::to_string(number)).c_str(), thread + number, 1);
                }
                for (unsigned i = 0; i < table->GetKeyCount(); ++i)
                {
                    const std::string key = table->GetKeyAt(i);
                    const unsigned number = static_cast<unsigned>(std::stoul(key.substr(5)));
                    wrong += table->GetUInt(key.c_str()) == thread + number ? 0u : 1u;
                    wrong += table->FindValue("shape11") == nullptr ? 0u : 1u;
                }
                CloseTable(table);
            }
        });

    EXPECT_EQ(wrong, 0u);
}

} // namespace
