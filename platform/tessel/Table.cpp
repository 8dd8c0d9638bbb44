// VELL: data-driven hierarchical state machines.
// platform/tessel/Table.cpp: a table of keys and values.
#include "platform/tessel/Table.h"

#include "platform/tessel/TableStore.h"

#include <cstring>
#include <memory>
#include <new>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Tessel
{

static_assert(sizeof(void*) != 8 || sizeof(Table) == 32, "two tables or more in a cache line");
static_assert(sizeof(Table) % alignof(Entry) == 0, "entries follow the table");

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

KVValue* Table::GetValueAt(unsigned index)
{
    return HasElements() ? more->elements->GetAt(index) : nullptr;
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
                          [&](const Found& found)
                          {
                              PutText(found, key, text, length);
                          });
    }
    PutText(Look(key), key, text, length);
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
    const Found found = Look(key);
    // The child first: a key without a value must not stay behind when there is no memory for it.
    Table* child = TableStore::Open(key, 0);
    if (child == nullptr)
    {
        return KVTable(); // GCOVR_EXCL_LINE: 33 million tables are open
    }
    Entry* entry = found.entry;
    if (entry == nullptr)
    {
        try
        {
            entry = Add(found, key);
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
    Table* attached = TableStore::Find(child);
    if (key == nullptr || attached == nullptr || attached == this || IsBelow(*attached))
    {
        return 0;
    }
    StoreChild(NeedEntry(Look(key), key), *attached);
    return 1;
}

int Table::RemoveAt(unsigned index, int)
{
    return HasElements() && more->elements->RemoveAt(index) ? 1 : 0;
}

int Table::PushUInt(unsigned value, int)
{
    (HasElements() ? *more->elements : AddElements()).Push(value);
    return 1;
}

unsigned Table::GetCount()
{
    return HasElements() ? more->elements->GetCount() : 0;
}

KVValue* Table::FindValue(const char* key)
{
    return Find(key);
}

KVListener* Table::GetTableListener()
{
    UnbindAll();
    return NeedListeners().GetTableListener();
}

KVListener* Table::GetValueListener(const char* key)
{
    Unbind(key);
    return key == nullptr ? nullptr : NeedListeners().Add(KeyText(key));
}

void Table::RemoveValueListener(const char* key, const KVListener* listener)
{
    if (HasListeners() && key != nullptr && listener != nullptr && listener->function != nullptr)
    {
        Unbind(key);
        more->listeners->Remove(KeyText(key), *listener);
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
    return CountKeys();
}

const char* Table::GetKeyAt(unsigned index)
{
    if (index >= CountKeys())
    {
        return nullptr;
    }
    return shape != Shape::kNone ? Shape::Get(shape).GetKey(index).GetText()
                                 : more->keys->GetKey(index).GetText();
}

int Table::GetTypeAt(unsigned index)
{
    return index < CountKeys() ? GetEntry(index)->GetValueType() : static_cast<int>(ValueType_None);
}

bool Table::Bind(KVSlot& target, const char* key, ValueType type, const KVWriter& writer)
{
    if (!HasListeners() || key == nullptr || !more->listeners->IsOnly(key, writer))
    {
        return false;
    }
    Entry* entry = Find(key);
    if (entry == nullptr || static_cast<int>(entry->GetKind()) != static_cast<int>(type) ||
        !entry->CanMoveToSlot())
    {
        return false;
    }
    entry->MoveToSlot(target);
    more->listeners->NoteBound();
    return true;
}

/// Unbinds the slot that is bound to `key`, if there is one.
void Table::Unbind(const char* key)
{
    Entry* entry = MayHaveBoundKeys() ? Find(key) : nullptr;
    if (entry != nullptr && entry->GetKind() == Entry::KindSlot)
    {
        entry->MoveFromSlot();
    }
}

void Table::UnbindAll()
{
    const std::uint32_t count = MayHaveBoundKeys() ? CountKeys() : 0;
    for (std::uint32_t i = 0; i < count; ++i)
    {
        if (GetEntry(i)->GetKind() == Entry::KindSlot)
        {
            GetEntry(i)->MoveFromSlot();
        }
    }
}

/// Looks for `key`, which may be null.
inline Table::Found Table::Look(const char* key)
{
    if (const Key* shared = Key::Recall(key))
    {
        return Found{FindShared(*shared), shared};
    }
    return Found{FindText(key), nullptr};
}

/// Gives the entry of `key`, or null; also for a null key.
inline Entry* Table::Find(const char* key)
{
    return Look(key).entry;
}

// These two call nothing but their last step: most of what a read or write costs is here.

Entry* Table::FindShared(const Key& key)
{
    const std::uint32_t index = Shape::Get(shape).Find(key);
    if (index != Shape::kNoKey)
    {
        return GetEntry(index);
    }
    return shape != Shape::kNone ? nullptr : FindOwn(key);
}

Entry* Table::FindText(const char* text)
{
    if (text == nullptr)
    {
        return nullptr;
    }
    const KeyText key(text);
    if (shape == Shape::kNone)
    {
        return FindOwn(key);
    }
    const Shape& keys = Shape::Get(shape);
    const std::uint32_t index = keys.Find(key);
    if (index == Shape::kNoKey)
    {
        return nullptr;
    }
    Key::Remember(text, keys.GetKey(index));
    return GetEntry(index);
}

template <class AnyKey>
Entry* Table::FindOwn(const AnyKey& key)
{
    const std::uint32_t index = more->keys->Find(key);
    return index == Shape::kNoKey ? nullptr : GetEntry(index);
}

/// Gives what was found of the key `text`, which is added without a value when it was not there.
inline Entry& Table::NeedEntry(const Found& found, const char* text)
{
    return found.entry != nullptr ? *found.entry : *Add(found, text);
}

/// Adds a key that was not found. When there is no memory for it, the table keeps at most some
/// space that is not used yet.
Entry* Table::Add(const Found& found, const char* text)
{
    if (shape != Shape::kNone)
    {
        const Shape& keys = Shape::Get(shape);
        const Key* key = found.shared != nullptr ? found.shared : Key::Share(text);
        const Shape* next = key == nullptr ? nullptr : keys.GetNext(*key);
        if (next != nullptr)
        {
            Entry* entry = new (MakeRoom(keys.GetKeyCount())) Entry;
            shape = next->GetNumber();
            next->NoteUse();
            return entry;
        }
        LeaveShape();
    }
    return AddOwn(KeyText(text));
}

Entry* Table::AddOwn(const KeyText& name)
{
    OwnKeys& keys = *more->keys;
    const std::uint32_t index = keys.GetKeyCount();
    if (index < kMaxRoom)
    {
        MakeRoom(index);
        Shape::GetEmpty(*more->name).NoteOwnKeys(index + 1);
    }
    keys.Add(name);
    return new (GetEntry(index)) Entry;
}

/// Gives the table keys of its own, which begin with those of its shape.
void Table::LeaveShape()
{
    const Shape& keys = Shape::Get(shape);
    NeedMore().keys = std::make_unique<OwnKeys>(keys);
    if (more->name == nullptr)
    {
        more->name = keys.GetName();
    }
    shape = Shape::kNone;
}

/// Gives the place of the entry `index`, the next one to be made and one of the first.
inline Entry* Table::MakeRoom(std::uint32_t index)
{
    return index < room ? GetEntry(index) : MakeBlockRoom(index);
}

Entry* Table::MakeBlockRoom(std::uint32_t index)
{
    Block** block = &NeedMore().blocks;
    std::uint32_t first = room;
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

Entry* Table::GetFurtherEntry(std::uint32_t index)
{
    if (index >= kMaxRoom)
    {
        return more->keys->GetEntry(index);
    }
    Block* block = more->blocks;
    std::uint32_t first = room;
    std::uint32_t end = GetNextRunEnd(first);
    while (index >= end)
    {
        block = block->next;
        first = end;
        end = GetNextRunEnd(end);
    }
    return block->GetEntries() + (index - first);
}

Table::More& Table::NeedMore()
{
    if (more == nullptr)
    {
        more = new More;
    }
    return *more;
}

/// Gives the array, which was not there.
ElementArray& Table::AddElements()
{
    NeedMore().elements = std::make_unique<ElementArray>();
    return *more->elements;
}

ListenerSet& Table::NeedListeners()
{
    std::unique_ptr<ListenerSet>& listeners = NeedMore().listeners;
    if (listeners == nullptr)
    {
        listeners = std::make_unique<ListenerSet>();
    }
    return *listeners;
}

template <class Value>
inline int Table::Write(const char* key, Entry::Kind kind, Value value)
{
    return IsHeard() ? WriteValueHeard(key, kind, value) : Put(Look(key), key, kind, value);
}

template <class Value>
int Table::WriteValueHeard(const char* key, Entry::Kind kind, Value value)
{
    if (key == nullptr)
    {
        return 0;
    }
    return WriteHeard(key,
                      [&](const Found& found)
                      {
                          Put(found, key, kind, value);
                      });
}

/// Writes and calls the listeners. `putAt` is given what `Look` gives.
template <class PutAt>
inline int Table::WriteHeard(const char* key, const PutAt& putAt)
{
    if (const Key* shared = Key::Recall(key))
    {
        putAt(Found{FindShared(*shared), shared});
        more->listeners->Call(*this, shared->GetKeyText());
        return 1;
    }
    const HeldKey held{KeyText(key)};
    putAt(Found{FindText(key), nullptr});
    more->listeners->Call(*this, held.GetText());
    return 1;
}

// In what follows the old value goes last: the key, the text and the value to write may be in it.

template <class Value>
inline int Table::Put(const Found& found, const char* key, Entry::Kind kind, Value value)
{
    if constexpr (sizeof(Value) != 4)
    {
        return PutFloats(found, key, kind, value);
    }
    else
    {
        Entry* entry = found.entry;
        if (entry == nullptr)
        {
            if (key == nullptr)
            {
                return 0;
            }
            entry = Add(found, key);
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
}

template <class Value>
void Table::PutOver(Entry& entry, Entry::Kind kind, Value value)
{
    if (entry.StoreInSlot(kind, value))
    {
        return;
    }
    const Entry::OldValue old(entry);
    entry.Store(kind, value);
}

template <class Floats>
int Table::PutFloats(const Found& found, const char* key, Entry::Kind kind, const Floats& floats)
{
    if (key == nullptr)
    {
        return 0;
    }
    if (found.entry != nullptr && found.entry->GetKind() == Entry::KindSlot)
    {
        if (found.entry->StoreInSlot(kind, floats))
        {
            return 1;
        }
        // What the entry gets back may be memory for floats.
        found.entry->MoveFromSlot();
    }
    if (found.entry != nullptr && found.entry->HasFloats())
    {
        found.entry->StoreFloats(kind, floats);
        return 1;
    }
    Entry::Buffer buffer = Entry::MakeFloatsBuffer();
    Entry& entry = NeedEntry(found, key);
    const Entry::OldValue old(entry);
    entry.StoreFloats(kind, floats, std::move(buffer));
    return 1;
}

void Table::PutText(const Found& found, const char* key, const char* text, std::size_t length)
{
    Entry::Buffer buffer;
    const bool isRoom = found.entry != nullptr && found.entry->FitsLongText(length);
    if (length > Entry::kMaxShortText && !isRoom)
    {
        buffer = Entry::MakeTextBuffer(length);
    }
    Entry& entry = NeedEntry(found, key);
    const KVTable oldChild = entry.GetStoredTable();
    entry.StoreText(text, length, std::move(buffer));
    TableStore::ReleaseChild(oldChild);
}

/// Puts `child` into `entry`. The new hold comes first: the old value may hold `child` too.
void Table::StoreChild(Entry& entry, Table& child)
{
    child.SetLink(child.GetLink() + kOneParent);
    SetLink(GetLink() | kMayHaveChildren);
    const Entry::OldValue old(entry);
    entry.StoreTable(child.GetHandle());
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
        const std::uint32_t count = table->CountKeys();
        for (std::uint32_t i = 0; i < count; ++i)
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
