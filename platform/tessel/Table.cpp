// VELL: data-driven hierarchical state machines.
// platform/tessel/Table.cpp: a table of keys and values.
#include "platform/tessel/Table.h"

#include "platform/tessel/TableStore.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_set>
#include <vector>

namespace Tessel
{

static_assert(sizeof(void*) != 8 || sizeof(Entry) == 32, "entries decide what a table weighs");
static_assert(sizeof(void*) != 8 || sizeof(Table) == 120, "two keys need no memory but this");

namespace
{

/// The number of zero bits below the lowest one that is set; `bits` is not 0.
std::uint32_t CountTrailingZeros(std::uint64_t bits)
{
#if defined(__GNUC__)
    return static_cast<std::uint32_t>(__builtin_ctzll(bits));
#else
    std::uint32_t count = 0;
    for (; (bits & 1) == 0; bits >>= 1)
    {
        ++count;
    }
    return count;
#endif
}

/// As `Key::Acquire`, for a text that may be looked up again.
const Key* AcquireKey(const char* text)
{
    if (const Key* key = Key::Recall(text))
    {
        return key;
    }
    const Key* key = Key::Acquire(KeyText(text));
    Key::Remember(text, *key);
    return key;
}

} // namespace

/// A key that is not shared, as the listeners of a write get it. It lives as long as this object,
/// whatever the write and its listeners close meanwhile: the caller's own text may be in a table
/// that is closed.
class Table::HeldKey
{
public:
    /// May throw `std::bad_alloc`, so it comes before the write.
    explicit HeldKey(KeyText key) : copy(inside), length(key.length)
    {
        if (length >= sizeof(inside))
        {
            outside.reset(new char[length + 1]);
            copy = outside.get();
        }
        std::memcpy(copy, key.text, length + 1);
    }

    KeyText GetText() const
    {
        return KeyText(copy, length);
    }

private:
    char inside[Key::kSharedSize];
    std::unique_ptr<char[]> outside; ///< of a key that does not fit inside
    char* copy;
    std::size_t length;
};

/// What an entry held before a write, released at the end of its scope.
class Table::OldValue
{
public:
    explicit OldValue(const Entry& entry) : text(entry.GetLongText()), child(entry.GetStoredTable())
    {
    }

    ~OldValue()
    {
        delete[] text;
        if (child)
        {
            TableStore::ReleaseChild(child);
        }
    }

    OldValue(const OldValue&) = delete;
    OldValue& operator=(const OldValue&) = delete;

private:
    char* text;
    KVTable child;
};

KVValue* Table::GetValueAt(unsigned index)
{
    return extras == nullptr ? nullptr : extras->elements.GetAt(index);
}

KVTable Table::GetTable(const char* key)
{
    const Entry* entry = Find(key);
    if (entry == nullptr)
    {
        return KVTable();
    }
    const KVTable stored = entry->GetStoredTable();
    return TableStore::IsOpen(stored) ? stored : KVTable();
}

int Table::GetInt(const char* key)
{
    const Entry* entry = Find(key);
    return entry == nullptr ? 0 : entry->GetIntValue();
}

float Table::GetFloat(const char* key)
{
    const Entry* entry = Find(key);
    return entry == nullptr ? 0.0f : entry->GetFloatValue();
}

const char* Table::GetString(const char* key)
{
    const Entry* entry = Find(key);
    return entry == nullptr ? nullptr : entry->GetStringValue();
}

int Table::GetFloat2(const char* key, Float2* out)
{
    const Entry* entry = Find(key);
    return entry == nullptr ? 0 : entry->GetFloat2Value(out);
}

int Table::GetFloat3(const char* key, Float3* out)
{
    const Entry* entry = Find(key);
    return entry == nullptr ? 0 : entry->GetFloat3Value(out);
}

int Table::GetFloat4(const char* key, Float4* out)
{
    const Entry* entry = Find(key);
    return entry == nullptr ? 0 : entry->GetFloat4Value(out);
}

unsigned Table::GetUInt(const char* key)
{
    const Entry* entry = Find(key);
    return entry == nullptr ? 0 : entry->GetUIntValue();
}

int Table::SetUInt(const char* key, unsigned value, int)
{
    return Write(key, Entry::KindUInt, value);
}

int Table::SetFloat4(const char* key, const Float4* value, int)
{
    return value == nullptr ? 0 : Write(key, Entry::KindFloat4, *value);
}

int Table::SetFloat3(const char* key, const Float3* value, int)
{
    return value == nullptr ? 0 : Write(key, Entry::KindFloat3, *value);
}

int Table::SetFloat2(const char* key, const Float2* value, int)
{
    return value == nullptr ? 0 : Write(key, Entry::KindFloat2, *value);
}

int Table::SetString(const char* key, const char* text, int)
{
    if (key == nullptr || text == nullptr)
    {
        return 0;
    }
    const std::size_t length = std::strlen(text);
    if (length >= KeyText::kMaxLength)
    {
        return 0; // GCOVR_EXCL_LINE: a text of 2 GB
    }
    if (IsHeard())
    {
        return WriteHeard(key,
                          [&](Entry* found)
                          {
                              PutText(found, key, text, length);
                          });
    }
    PutText(Find(key), key, text, length);
    return 1;
}

int Table::SetFloat(const char* key, float value, int)
{
    return Write(key, Entry::KindFloat, value);
}

int Table::SetInt(const char* key, int value, int)
{
    return Write(key, Entry::KindInt, value);
}

KVTable Table::AddTable(const char* key, int)
{
    if (key == nullptr)
    {
        return KVTable();
    }
    const KeyText wanted(key);
    Entry* entry = Find(key);
    // The child first: a key without a value must not stay behind when there is no memory for it.
    Table* child = TableStore::Open(wanted, 0);
    if (child == nullptr)
    {
        return KVTable(); // GCOVR_EXCL_LINE: 33 million tables are open
    }
    if (entry == nullptr)
    {
        try
        {
            entry = Add(key);
        }
        catch (...)
        {
            TableStore::Close(*child);
            throw;
        }
    }
    StoreChild(*entry, *child);
    return child->GetHandle();
}

int Table::AttachTable(const char* key, KVTable child, int)
{
    Table* found = TableStore::Find(child);
    if (key == nullptr || found == nullptr || found == this || IsBelow(*found))
    {
        return 0;
    }
    Entry* entry = Find(key);
    if (entry == nullptr)
    {
        entry = Add(key);
    }
    StoreChild(*entry, *found);
    return 1;
}

int Table::RemoveAt(unsigned index, int)
{
    return extras != nullptr && extras->elements.RemoveAt(index) ? 1 : 0;
}

int Table::PushUInt(unsigned value, int)
{
    NeedExtras().elements.Push(value);
    return 1;
}

unsigned Table::GetCount()
{
    return extras == nullptr ? 0 : extras->elements.GetCount();
}

KVValue* Table::FindValue(const char* key)
{
    return Find(key);
}

KVListener* Table::GetTableListener()
{
    return NeedExtras().listeners.GetTableListener();
}

KVListener* Table::GetValueListener(const char* key)
{
    return key == nullptr ? nullptr : NeedExtras().listeners.Add(KeyText(key));
}

void Table::RemoveValueListener(const char* key, const KVListener* listener)
{
    if (extras != nullptr && key != nullptr && listener != nullptr && listener->function != nullptr)
    {
        extras->listeners.Remove(KeyText(key), *listener);
    }
}

int Table::NeedsLock()
{
    return 0;
}

void Table::Lock()
{
}

void Table::Unlock()
{
}

unsigned Table::GetKeyCount()
{
    return keyCount;
}

const char* Table::GetKeyAt(unsigned index)
{
    return index < keyCount ? GetEntry(index)->GetKey()->GetText() : nullptr;
}

int Table::GetTypeAt(unsigned index)
{
    return index < keyCount ? GetEntry(index)->GetValueType() : static_cast<int>(ValueType_None);
}

/// Gives the entry of `key`, or null; also for a null key.
inline Entry* Table::Find(const char* key)
{
    if (const Key* shared = Key::Recall(key))
    {
        return FindShared(*shared);
    }
    return FindText(key);
}

// These two call nothing but their last step: most of what a read or write costs is here.

/// A text that is shared is in no other key, so the address tells.
Entry* Table::FindShared(const Key& key)
{
    if (keyCount > kTaggedEntries)
    {
        return FindIndexed(key.GetKeyText());
    }
    Entry* run = GetEntry(0);
    Block* next = blocks;
    std::uint32_t runEnd = kInlineEntries;
    for (std::uint32_t i = 0; i < keyCount; ++i, ++run)
    {
        if (i == runEnd)
        {
            run = next->GetEntries();
            next = next->next;
            runEnd = GetNextRunEnd(runEnd);
        }
        if (run->GetKey() == &key)
        {
            return run;
        }
    }
    return nullptr;
}

Entry* Table::FindText(const char* text)
{
    if (text == nullptr)
    {
        return nullptr;
    }
    const KeyText key(text);
    if (keyCount > kTaggedEntries)
    {
        return FindIndexed(key);
    }
    // A byte of `others` is zero where the tag is that of the key. The bytes of `hits` that this
    // extra finds come after a true hit, and the comparison of the texts sorts them out.
    constexpr std::uint64_t kLowBits = 0x0101010101010101u;
    const std::uint64_t others = tags ^ kLowBits * key.GetTag();
    std::uint64_t hits = (others - kLowBits) & ~others & (kLowBits << 7);
    for (; hits != 0; hits &= hits - 1)
    {
        Entry* entry = GetEntry(CountTrailingZeros(hits) / 8);
        if (entry->GetKey()->Is(key))
        {
            Key::Remember(text, *entry->GetKey());
            return entry;
        }
    }
    return nullptr;
}

Entry* Table::FindIndexed(KeyText key)
{
    const auto getEntry = [this](std::uint32_t number)
    {
        return GetEntry(number);
    };
    return extras->index.Find(key, getEntry);
}

/// Adds a key that is not there yet, without a value. When there is no memory for it, the table
/// keeps at most some space that is not used yet.
Entry* Table::Add(const char* text)
{
    const std::uint32_t index = keyCount;
    Entry* entry = MakeRoom(index);
    const bool isIndexed = index >= kTaggedEntries;
    if (isIndexed)
    {
        NeedExtras().index.Reserve(index + 1);
    }
    const Key* key = isIndexed ? Key::Acquire(KeyText(text), extras->keys) : AcquireKey(text);
    entry = new (entry) Entry(key);
    if (index == kTaggedEntries)
    {
        for (std::uint32_t i = 0; i < index; ++i)
        {
            extras->index.Insert(GetEntry(i)->GetKey()->GetHash(), i);
        }
    }
    if (isIndexed)
    {
        extras->index.Insert(key->GetHash(), index);
    }
    else
    {
        tags |= static_cast<std::uint64_t>(key->GetKeyText().GetTag()) << (8 * index);
    }
    ++keyCount;
    return entry;
}

/// Gives the place of the entry `index`, the next one to be made.
Entry* Table::MakeRoom(std::uint32_t index)
{
    if (index < kInlineEntries)
    {
        return reinterpret_cast<Entry*>(inlineEntries) + index;
    }
    Block** block = &blocks;
    std::uint32_t first = kInlineEntries;
    std::uint32_t end = GetNextRunEnd(first);
    while (index >= end)
    {
        block = &(*block)->next;
        first = end;
        end = GetNextRunEnd(end);
    }
    if (*block == nullptr)
    {
        void* memory = ::operator new(sizeof(Block) + (end - first) * sizeof(Entry));
        *block = new (memory) Block{nullptr};
    }
    return (*block)->GetEntries() + (index - first);
}

Table::Extras& Table::NeedExtras()
{
    if (extras == nullptr)
    {
        extras = new Extras;
    }
    return *extras;
}

template <class Value>
inline int Table::Write(const char* key, Entry::Kind kind, Value value)
{
    return IsHeard() ? WriteValueHeard(key, kind, value) : Put(Find(key), key, kind, value);
}

template <class Value>
int Table::WriteValueHeard(const char* key, Entry::Kind kind, Value value)
{
    if (key == nullptr)
    {
        return 0;
    }
    return WriteHeard(key,
                      [&](Entry* found)
                      {
                          Put(found, key, kind, value);
                      });
}

/// Writes and calls the listeners. `putAt` is given what `Find` gives.
template <class PutAt>
inline int Table::WriteHeard(const char* key, const PutAt& putAt)
{
    if (const Key* shared = Key::Recall(key))
    {
        putAt(FindShared(*shared));
        extras->listeners.Call(*this, shared->GetKeyText());
        return 1;
    }
    const HeldKey held{KeyText(key)};
    putAt(FindText(key));
    extras->listeners.Call(*this, held.GetText());
    return 1;
}

// In what follows the old value goes last: the key, the text and the value to write may be in it.

template <class Value>
inline int Table::Put(Entry* found, const char* key, Entry::Kind kind, Value value)
{
    Entry* entry = found;
    if (entry == nullptr)
    {
        if (key == nullptr)
        {
            return 0;
        }
        entry = Add(key);
    }
    if (entry->IsOwner())
    {
        PutOver(*entry, kind, value);
    }
    else
    {
        entry->Store(kind, value);
    }
    return 1;
}

template <class Value>
void Table::PutOver(Entry& entry, Entry::Kind kind, Value value)
{
    const OldValue old(entry);
    entry.Store(kind, value);
}

void Table::PutText(Entry* found, const char* key, const char* text, std::size_t length)
{
    std::unique_ptr<char[]> buffer;
    if (length > Entry::kMaxShortText && !(found != nullptr && found->FitsLongText(length)))
    {
        buffer.reset(new char[length + 1]);
    }
    Entry* entry = found != nullptr ? found : Add(key);
    const KVTable oldChild = entry->GetStoredTable();
    entry->StoreText(text, length, buffer);
    TableStore::ReleaseChild(oldChild);
}

/// Puts `child` into `entry`. The new hold comes first: the old value may hold `child` too.
void Table::StoreChild(Entry& entry, Table& child)
{
    child.SetLink(child.GetLink() + kOneParent);
    SetLink(GetLink() | kMayHaveChildren);
    const OldValue old(entry);
    entry.Store(Entry::KindTable, child.GetHandle());
}

/// Tells whether this table is below `top`. A table without a parent is below none, and
/// nothing is below a table without children, so the loop is for the rare case of two trees.
bool Table::IsBelow(Table& top)
{
    if (GetLink() < kOneParent || (top.GetLink() & kMayHaveChildren) == 0)
    {
        return false;
    }
    std::vector<Table*> toVisit{&top};
    std::unordered_set<Table*> seen;
    while (!toVisit.empty())
    {
        Table* table = toVisit.back();
        toVisit.pop_back();
        for (std::uint32_t i = 0; i < table->keyCount; ++i)
        {
            Table* child = TableStore::Find(table->GetEntry(i)->GetStoredTable());
            if (child == this)
            {
                return true;
            }
            if (child != nullptr && (child->GetLink() & kMayHaveChildren) != 0 &&
                seen.insert(child).second)
            {
                toVisit.push_back(child);
            }
        }
    }
    return false;
}

} // namespace Tessel
