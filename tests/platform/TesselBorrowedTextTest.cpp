// VELL: data-driven hierarchical state machines.
// tests/platform/TesselBorrowedTextTest.cpp: writes whose key or text is in a table that they
// close.
#include <tessel/Tessel.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace
{

using namespace Tessel;
using Lines = std::vector<std::string>;

const std::string kLongText =
    "a text that does not fit into its entry, and is too long for a shared "
    "key as well, so that it has a block of the heap of its own";

/// The kinds of keys: shared by all tables, a decimal id that its table owns, and too long to be
/// shared.
const Lines kKeys = {"note", "1234567", kLongText};

struct Writer
{
    const char* name;
    std::function<bool(KVTable, const char*)> write;
    bool isHeard = true;
};

const std::vector<Writer>& GetWriters()
{
    static const Float2 two{1, 2};
    static const Float3 three{1, 2, 3};
    static const Float4 four{1, 2, 3, 4};
    static const std::vector<Writer> writers = {
        {"SetInt",
         [](KVTable t, const char* key)
         {
             return t->SetInt(key, 1, 1) == 1;
         }},
        {"SetUInt",
         [](KVTable t, const char* key)
         {
             return t->SetUInt(key, 1, 1) == 1;
         }},
        {"SetFloat",
         [](KVTable t, const char* key)
         {
             return t->SetFloat(key, 1.0f, 1) == 1;
         }},
        {"SetFloat2",
         [](KVTable t, const char* key)
         {
             return t->SetFloat2(key, &two, 1) == 1;
         }},
        {"SetFloat3",
         [](KVTable t, const char* key)
         {
             return t->SetFloat3(key, &three, 1) == 1;
         }},
        {"SetFloat4",
         [](KVTable t, const char* key)
         {
             return t->SetFloat4(key, &four, 1) == 1;
         }},
        {"SetString",
         [](KVTable t, const char* key)
         {
             return t->SetString(key, "new", 1) == 1;
         }},
        {"SetString of a long text",
         [](KVTable t, const char* key)
         {
             return t->SetString(key, kLongText.c_str(), 1) == 1;
         }},
        {"SetString of its key",
         [](KVTable t, const char* key)
         {
             return t->SetString(key, key, 1) == 1;
         }},
        {"AddTable",
         [](KVTable t, const char* key)
         {
             const std::string copy = key;
             return GetTableName(t->AddTable(key, 1)) == copy;
         },
         false},
        {"AttachTable",
         [](KVTable t, const char* key)
         {
             const KVTable other = CreateTable("other");
             const bool done = t->AttachTable(key, other, 1) == 1;
             CloseTable(other);
             return done;
         },
         false},
    };
    return writers;
}

/// A table with a child under a key, and listeners that note the keys that they are given.
class TableBorrowedText : public testing::Test
{
protected:
    ~TableBorrowedText() override
    {
        CloseTable(parent);
    }

    void Restart(const std::string& key)
    {
        CloseTable(parent);
        parent = CreateTable("parent");
        child = parent->AddTable(key.c_str(), 1);
        heard.clear();
    }

    /// Lets two listeners of the key and the table's own note the key. The first one does what the
    /// test wants before it does.
    void Listen(const std::string& key)
    {
        *parent->GetValueListener(key.c_str()) = KVListener{this, &ActAndNote};
        *parent->GetValueListener(key.c_str()) = KVListener{this, &Note};
        *parent->GetTableListener() = KVListener{this, &Note};
    }

    static int Note(void* object, opResult, KVTable, const char* key)
    {
        static_cast<TableBorrowedText*>(object)->heard.push_back(key);
        return 0;
    }

    static int ActAndNote(void* object, opResult result, KVTable table, const char* key)
    {
        auto& self = *static_cast<TableBorrowedText*>(object);
        if (self.action)
        {
            self.action();
        }
        return Note(object, result, table, key);
    }

    KVTable parent = CreateTable("parent");
    KVTable child;
    Lines heard;
    std::function<void()> action;
};

TEST_F(TableBorrowedText, IsStoredFromTheTableThatTheWriteCloses)
{
    using Source = std::function<const char*(KVTable)>;
    const std::vector<Source> sources = {
        [](KVTable c)
        {
            c->SetString("text", "short", 1);
            return c->GetString("text");
        },
        [](KVTable c)
        {
            c->SetString("text", kLongText.c_str(), 1);
            return c->GetString("text");
        },
        [](KVTable c)
        {
            return c->AddTable("below", 1)->SetString("text", kLongText.c_str(), 1) == 1
                       ? c->GetTable("below")->GetString("text") + 7
                       : nullptr;
        },
        [](KVTable c)
        {
            c->SetInt("7654321", 1, 1);
            return c->GetKeyAt(0);
        },
        [](KVTable c)
        {
            c->SetInt(kLongText.c_str(), 1, 1);
            return c->GetKeyAt(0);
        },
        [](KVTable c)
        {
            for (int i = 0; i < 20; ++i)
            {
                c->SetInt(std::to_string(i).c_str(), i, 1);
            }
            return c->GetKeyAt(19);
        },
        [](KVTable c)
        {
            return GetTableName(c);
        },
    };
    for (const std::string& key : kKeys)
    {
        for (std::size_t i = 0; i < sources.size(); ++i)
        {
            for (const bool isHeard : {false, true})
            {
                SCOPED_TRACE(key + " from source " + std::to_string(i));
                Restart(key);
                if (isHeard)
                {
                    Listen(key);
                }
                const char* borrowed = sources[i](child);
                ASSERT_NE(borrowed, nullptr);
                const std::string text = borrowed;

                EXPECT_EQ(parent->SetString(key.c_str(), borrowed, 1), 1);

                EXPECT_STREQ(parent->GetString(key.c_str()), text.c_str());
                EXPECT_EQ(GetTableName(child), nullptr);
                EXPECT_EQ(heard, isHeard ? Lines(3, key) : Lines{});
            }
        }
    }
}

TEST_F(TableBorrowedText, IsAKeyFromTheTableThatTheWriteCloses)
{
    using Source = std::function<const char*(KVTable, const std::string&)>;
    const std::vector<Source> sources = {
        [](KVTable c, const std::string&)
        {
            return GetTableName(c);
        },
        [](KVTable c, const std::string& key)
        {
            c->SetString("text", key.c_str(), 1);
            return c->GetString("text");
        },
        [](KVTable c, const std::string& key)
        {
            c->SetInt(key.c_str(), 1, 1);
            return c->GetKeyAt(0);
        },
        [](KVTable c, const std::string& key)
        {
            return GetTableName(c->AddTable(key.c_str(), 1));
        },
    };
    for (const Writer& writer : GetWriters())
    {
        for (const std::string& key : kKeys)
        {
            for (std::size_t i = 0; i < sources.size(); ++i)
            {
                SCOPED_TRACE(writer.name + (" " + key) + " from source " + std::to_string(i));
                Restart(key);
                Listen(key);

                EXPECT_TRUE(writer.write(parent, sources[i](child, key)));

                EXPECT_EQ(GetTableName(child), nullptr);
                EXPECT_EQ(parent->GetKeyCount(), 1u);
                EXPECT_STREQ(parent->GetKeyAt(0), key.c_str());
                EXPECT_EQ(heard, writer.isHeard ? Lines(3, key) : Lines{});
            }
        }
    }
}

TEST_F(TableBorrowedText, IsAKeyFromTheTextThatTheWriteReplaces)
{
    for (const Writer& writer : GetWriters())
    {
        for (const std::string& key : kKeys)
        {
            SCOPED_TRACE(writer.name + (" " + key));
            Restart(key);
            parent->SetString(key.c_str(), key.c_str(), 1);
            Listen(key);

            EXPECT_TRUE(writer.write(parent, parent->GetString(key.c_str())));

            EXPECT_STREQ(parent->GetKeyAt(0), key.c_str());
            EXPECT_EQ(heard, writer.isHeard ? Lines(3, key) : Lines{});
        }
    }
}

TEST_F(TableBorrowedText, IsAKeyThatLivesUntilAListenerThatClosesItsTableHasReturned)
{
    for (const Writer& writer : GetWriters())
    {
        for (const std::string& key : kKeys)
        {
            SCOPED_TRACE(writer.name + (" " + key));
            Restart(key);
            Listen(key);
            action = [&]
            {
                CloseTable(parent);
            };

            EXPECT_TRUE(writer.write(parent, parent->GetKeyAt(0)));

            EXPECT_EQ(heard, writer.isHeard ? Lines(1, key) : Lines{});
        }
    }
}

TEST_F(TableBorrowedText, IsAKeyThatLivesUntilAllListenersHaveReturned)
{
    const KVTable lender = CreateTable("lender");
    for (const Writer& writer : GetWriters())
    {
        for (const std::string& key : kKeys)
        {
            SCOPED_TRACE(writer.name + (" " + key));
            Restart(key);
            Listen(key);
            lender->SetString("text", key.c_str(), 1);
            action = [&]
            {
                lender->SetString("text", "something else", 1);
                lender->SetInt("text", 1, 1);
            };

            EXPECT_TRUE(writer.write(parent, lender->GetString("text")));

            EXPECT_EQ(heard, writer.isHeard ? Lines(3, key) : Lines{});
        }
    }
    CloseTable(lender);
}

TEST_F(TableBorrowedText, IsAKeyOfAListenerThatIsRemoved)
{
    for (const std::string& key : kKeys)
    {
        SCOPED_TRACE(key);
        Restart(key);
        KVListener* record = parent->GetValueListener(GetTableName(child));
        *record = KVListener{this, &Note};
        parent->SetInt(key.c_str(), 1, 1);
        parent->SetString(key.c_str(), key.c_str(), 1);

        parent->RemoveValueListener(parent->GetString(key.c_str()), record);
        parent->SetInt(key.c_str(), 2, 1);

        EXPECT_EQ(heard, Lines(2, key));
    }
}

TEST_F(TableBorrowedText, IsANameFromATableThatIsClosedLater)
{
    for (const std::string& key : kKeys)
    {
        Restart(key);

        const KVTable named = CreateTable(GetTableName(child));
        CloseTable(parent);

        EXPECT_STREQ(GetTableName(named), key.c_str());
        CloseTable(named);
    }
}

} // namespace
