// VELL: data-driven hierarchical state machines.
// tests/platform/TesselListenerTest.cpp: the listeners of a key/value table.
#include <tessel/Tessel.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace
{

using namespace Tessel;
using Lines = std::vector<std::string>;

/// A listener that writes a line for each call and then does what the test wants.
struct Listener
{
    static int Call(void* object, opResult result, KVTable table, const char* key)
    {
        Listener& self = *static_cast<Listener*>(object);
        self.lines->push_back(self.name + " " + std::to_string(static_cast<int>(result)) + " " +
                              key + "=" + std::to_string(table->GetInt(key)));
        if (self.action)
        {
            self.action(table);
        }
        return 0;
    }

    KVListener GetRecord()
    {
        return KVListener{this, &Listener::Call};
    }

    void Install(KVTable table, const char* key)
    {
        KVListener* record = table->GetValueListener(key);
        ASSERT_NE(record, nullptr);
        *record = GetRecord();
    }

    void Remove(KVTable table, const char* key)
    {
        const KVListener record = GetRecord();
        table->RemoveValueListener(key, &record);
    }

    std::string name;
    Lines* lines;
    std::function<void(KVTable)> action = nullptr;
};

class TableListener : public testing::Test
{
protected:
    ~TableListener() override
    {
        CloseTable(table);
    }

    Lines Take()
    {
        Lines taken;
        taken.swap(lines);
        return taken;
    }

    Lines lines;
    KVTable table = CreateTable("listened");
    Listener a{"a", &lines};
    Listener b{"b", &lines};
    Listener c{"c", &lines};
};

TEST_F(TableListener, IsCalledAtOnceForEachWriteOfItsKey)
{
    table->SetInt("value", 0, 1);
    a.Install(table, "value");

    table->SetInt("value", 1, 1);
    table->SetInt("value", 1, 0);
    table->SetInt("other", 2, 1);

    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "a 1 value=1"}));
}

TEST_F(TableListener, HearsEverySetter)
{
    const Float2 two{};
    const Float3 three{};
    const Float4 four{};
    a.Install(table, "value");

    table->SetInt("value", 1, 1);
    table->SetUInt("value", 2, 1);
    table->SetFloat("value", 3.0f, 1);
    table->SetString("value", "4", 1);
    table->SetFloat2("value", &two, 1);
    table->SetFloat3("value", &three, 1);
    table->SetFloat4("value", &four, 1);

    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "a 1 value=2", "a 1 value=3", "a 1 value=0",
                             "a 1 value=0", "a 1 value=0", "a 1 value=0"}));
}

TEST_F(TableListener, DoesNotHearRefusedWritesTablesAndElements)
{
    const KVTable child = CreateTable("child");
    a.Install(table, "value");
    *table->GetTableListener() = b.GetRecord();

    table->SetInt(nullptr, 1, 1);
    table->SetString("value", nullptr, 1);
    table->SetFloat2("value", nullptr, 1);
    table->AddTable("value", 1);
    table->AttachTable("value", child, 1);
    table->PushUInt(1, 1);
    table->RemoveAt(0, 1);

    EXPECT_EQ(Take(), Lines{});
    CloseTable(child);
}

TEST_F(TableListener, StandsOnAKeyThatIsNotThereYet)
{
    a.Install(table, "value");

    EXPECT_EQ(table->FindValue("value"), nullptr);
    EXPECT_EQ(table->GetKeyCount(), 0u);

    table->SetInt("value", 4, 1);
    EXPECT_EQ(Take(), Lines{"a 1 value=4"});
}

TEST_F(TableListener, IsCalledInTheOrderOfInstallingAndBeforeTheTablesOwn)
{
    *table->GetTableListener() = c.GetRecord();
    b.Install(table, "value");
    a.Install(table, "value");

    table->SetInt("value", 1, 1);
    table->SetInt("other", 2, 1);

    EXPECT_EQ(Take(), (Lines{"b 1 value=1", "a 1 value=1", "c 1 value=1", "c 1 other=2"}));
}

TEST_F(TableListener, KeepsItsOrderAmongListenersOfManyKeys)
{
    for (int i = 0; i < 200; ++i)
    {
        const std::string key = "key" + std::to_string(i);
        a.Install(table, key.c_str());
        if (i % 2 == 0)
        {
            b.Install(table, "even");
        }
        c.Install(table, key.c_str());
    }

    for (int i = 0; i < 200; ++i)
    {
        const std::string key = "key" + std::to_string(i);
        table->SetInt(key.c_str(), i, 1);
        const std::string end = " 1 " + key + "=" + std::to_string(i);
        ASSERT_EQ(Take(), (Lines{"a" + end, "c" + end}));
    }
    table->SetInt("even", 0, 1);
    EXPECT_EQ(Take(), Lines(100, "b 1 even=0"));
}

TEST_F(TableListener, GetsANewRecordEachTimeAndIsNotCalledUnfilled)
{
    KVListener* first = table->GetValueListener("value");
    KVListener* second = table->GetValueListener("value");
    KVListener* third = table->GetValueListener("value");

    EXPECT_NE(first, second);
    EXPECT_NE(second, third);
    for (const KVListener* record : {first, second, third})
    {
        EXPECT_EQ(record->object, nullptr);
        EXPECT_EQ(record->function, nullptr);
    }
    *third = a.GetRecord();
    *first = b.GetRecord();
    table->SetInt("value", 1, 1);
    EXPECT_EQ(Take(), (Lines{"b 1 value=1", "a 1 value=1"}));
}

TEST_F(TableListener, OfTheTableIsOneRecord)
{
    KVListener* record = table->GetTableListener();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->function, nullptr);
    EXPECT_EQ(table->GetTableListener(), record);

    *record = a.GetRecord();
    table->SetInt("value", 1, 1);
    record->function = nullptr;
    table->SetInt("value", 2, 1);

    EXPECT_EQ(Take(), Lines{"a 1 value=1"});
}

TEST_F(TableListener, IsRemovedByObjectAndFunction)
{
    a.Install(table, "value");
    b.Install(table, "value");
    a.Install(table, "other");

    a.Remove(table, "value");
    table->SetInt("value", 1, 1);
    table->SetInt("other", 2, 1);
    EXPECT_EQ(Take(), (Lines{"b 1 value=1", "a 1 other=2"}));

    a.Remove(table, "value");
    c.Remove(table, "value");
    c.Remove(table, "missing");
    table->RemoveValueListener("value", nullptr);
    table->RemoveValueListener(nullptr, nullptr);
    table->SetInt("value", 3, 1);
    EXPECT_EQ(Take(), Lines{"b 1 value=3"});
}

TEST_F(TableListener, IsRemovedOnceForEachTimeItWasInstalled)
{
    a.Install(table, "value");
    a.Install(table, "value");

    a.Remove(table, "value");
    table->SetInt("value", 1, 1);
    EXPECT_EQ(Take(), Lines{"a 1 value=1"});

    a.Remove(table, "value");
    table->SetInt("value", 2, 1);
    EXPECT_EQ(Take(), Lines{});
}

TEST_F(TableListener, MayBeRemovedWithItsOwnRecord)
{
    KVListener* record = table->GetValueListener("value");
    *record = a.GetRecord();

    table->RemoveValueListener("value", record);

    table->SetInt("value", 1, 1);
    EXPECT_EQ(Take(), Lines{});
}

TEST_F(TableListener, KeepsAnUnfilledRecordWhenAnEmptyOneIsRemoved)
{
    KVListener* record = table->GetValueListener("value");
    const KVListener empty{};

    table->RemoveValueListener("value", &empty);

    *record = a.GetRecord();
    b.Install(table, "value");
    table->SetInt("value", 1, 1);
    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "b 1 value=1"}));
}

TEST_F(TableListener, MayWriteItsOwnKey)
{
    a.action = [&](KVTable called)
    {
        if (called->GetInt("value") < 3)
        {
            called->SetInt("value", called->GetInt("value") + 1, 1);
        }
    };
    a.Install(table, "value");
    b.Install(table, "value");

    table->SetInt("value", 1, 1);

    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "a 1 value=2", "a 1 value=3", "b 1 value=3",
                             "b 1 value=3", "b 1 value=3"}));
}

TEST_F(TableListener, MayWriteOtherKeysAndMakeThem)
{
    a.action = [](KVTable called)
    {
        for (int i = 0; i < 100; ++i)
        {
            called->SetInt(("made" + std::to_string(i)).c_str(), i, 1);
        }
    };
    a.Install(table, "value");
    b.Install(table, "made99");

    table->SetInt("value", 1, 1);

    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "b 1 made99=99"}));
    EXPECT_EQ(table->GetKeyCount(), 101u);
}

TEST_F(TableListener, MayRemoveItself)
{
    a.action = [&](KVTable called)
    {
        a.Remove(called, "value");
    };
    a.Install(table, "value");
    b.Install(table, "value");

    table->SetInt("value", 1, 1);
    table->SetInt("value", 2, 1);

    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "b 1 value=1", "b 1 value=2"}));
}

TEST_F(TableListener, MayRemoveOthersBeforeAndAfterIt)
{
    b.action = [&](KVTable called)
    {
        a.Remove(called, "value");
        c.Remove(called, "value");
    };
    a.Install(table, "value");
    b.Install(table, "value");
    c.Install(table, "value");

    table->SetInt("value", 1, 1);
    table->SetInt("value", 2, 1);

    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "b 1 value=1", "b 1 value=2"}));
}

TEST_F(TableListener, MayInstallOthersThatHearTheNextWrite)
{
    a.action = [&](KVTable called)
    {
        a.action = nullptr;
        for (int i = 0; i < 100; ++i)
        {
            b.Install(called, ("key" + std::to_string(i)).c_str());
        }
        b.Install(called, "value");
    };
    a.Install(table, "value");
    c.Install(table, "value");

    table->SetInt("value", 1, 1);
    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "c 1 value=1"}));

    table->SetInt("value", 2, 1);
    table->SetInt("key7", 7, 1);
    EXPECT_EQ(Take(), (Lines{"a 1 value=2", "c 1 value=2", "b 1 value=2", "b 1 key7=7"}));
}

TEST_F(TableListener, MayReinstallItselfInEachCall)
{
    a.action = [&](KVTable called)
    {
        a.Remove(called, "value");
        a.Install(called, "value");
    };
    a.Install(table, "value");
    b.Install(table, "value");

    table->SetInt("value", 1, 1);
    table->SetInt("value", 2, 1);

    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "b 1 value=1", "b 1 value=2", "a 1 value=2"}));
}

TEST_F(TableListener, MayRemoveItselfWithinAnInnerWrite)
{
    int depth = 0;
    a.action = [&](KVTable called)
    {
        ++depth;
        if (depth == 1)
        {
            called->SetInt("value", 2, 1);
        }
        else
        {
            a.Remove(called, "value");
            b.Remove(called, "value");
        }
    };
    a.Install(table, "value");
    b.Install(table, "value");
    c.Install(table, "value");

    table->SetInt("value", 1, 1);
    table->SetInt("value", 3, 1);

    EXPECT_EQ(Take(),
              (Lines{"a 1 value=1", "a 1 value=2", "c 1 value=2", "c 1 value=2", "c 1 value=3"}));
}

TEST_F(TableListener, MayCloseTheTable)
{
    a.action = [](KVTable called)
    {
        CloseTable(called);
    };
    a.Install(table, "1234567");
    b.Install(table, "1234567");
    *table->GetTableListener() = c.GetRecord();

    EXPECT_NE(table->SetInt("1234567", 1, 1), 0);

    EXPECT_EQ(Take(), Lines{"a 1 1234567=1"});
    EXPECT_EQ(table->GetInt("1234567"), 0);
    EXPECT_EQ(GetTableName(table), nullptr);
}

TEST_F(TableListener, MayCloseTheTableWithinAnInnerWriteAndMakeAnotherInItsPlace)
{
    KVTable other;
    a.action = [](KVTable called)
    {
        called->SetInt("inner", 2, 1);
    };
    b.action = [&](KVTable called)
    {
        CloseTable(called);
        other = CreateTable("other");
        c.Install(other, "value");
        c.Install(other, "inner");
    };
    a.Install(table, "value");
    c.Install(table, "value");
    b.Install(table, "inner");
    c.Install(table, "inner");

    table->SetInt("value", 1, 1);
    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "b 1 inner=2"}));

    other->SetInt("value", 3, 1);
    EXPECT_EQ(Take(), Lines{"c 1 value=3"});
    CloseTable(other);
}

TEST_F(TableListener, MayCloseTheParentThatHoldsItsTable)
{
    const KVTable child = table->AddTable("child", 1);
    a.action = [&](KVTable)
    {
        CloseTable(table);
    };
    a.Install(child, "value");
    b.Install(child, "value");

    child->SetString("value", "a text that does not fit into its entry", 1);

    EXPECT_EQ(Take(), Lines{"a 1 value=0"});
    EXPECT_EQ(GetTableName(child), nullptr);
}

TEST_F(TableListener, OfTheTableMayCloseTheTable)
{
    a.action = [](KVTable called)
    {
        CloseTable(called);
    };
    *table->GetTableListener() = a.GetRecord();

    table->SetInt("value", 1, 1);
    table->SetInt("value", 2, 1);

    EXPECT_EQ(Take(), Lines{"a 1 value=1"});
}

TEST_F(TableListener, OfAClosedTableIsNotCalledByTheNextTableInItsPlace)
{
    a.Install(table, "value");
    *table->GetTableListener() = b.GetRecord();
    CloseTable(table);

    table = CreateTable("next");
    table->SetInt("value", 1, 1);

    EXPECT_EQ(Take(), Lines{});
}

TEST_F(TableListener, MayThrowThroughTheWrite)
{
    a.action = [](KVTable)
    {
        throw 1;
    };
    a.Install(table, "value");
    b.Install(table, "value");

    EXPECT_THROW(table->SetInt("value", 1, 1), int);
    EXPECT_EQ(table->GetInt("value"), 1);
    a.Remove(table, "value");
    table->SetInt("value", 2, 1);

    EXPECT_EQ(Take(), (Lines{"a 1 value=1", "b 1 value=2"}));
}

TEST_F(TableListener, IsFilledUnderALockThatNobodyNeeds)
{
    EXPECT_EQ(table->NeedsLock(), 0);
    table->Lock();
    table->Lock();
    a.Install(table, "value");
    table->Unlock();

    table->SetInt("value", 1, 1);

    EXPECT_EQ(Take(), Lines{"a 1 value=1"});
}

} // namespace
