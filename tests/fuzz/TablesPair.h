// VELL: data-driven hierarchical state machines.
// tests/fuzz/TablesPair.h: the key/value tables and a plain model of them.
#pragma once

#include <tessel/Slots.h>
#include <tessel/Tessel.h>

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/MachineRun.h"

#include <array>
#include <cstddef>
#include <list>
#include <string>
#include <utility>
#include <vector>

namespace vell::fuzz
{

using Tessel::Float2;
using Tessel::Float3;
using Tessel::Float4;
using Tessel::KVBranch;
using Tessel::KVListener;
using Tessel::KVSlot;
using Tessel::KVTable;
using Tessel::KVValue;
using Tessel::opResult;
using Tessel::SlotOperations;

constexpr std::size_t kMostSlots = 40;
constexpr int kNoTable = -1;

/// A key or a text to write: at its address, which may be in a table that the write closes, and as
/// a copy.
struct Words
{
    explicit Words(const char* words) : address(words), copy(words)
    {
    }

    const char* address;
    std::string copy;
};

/// What a key holds, as plain as can be.
struct ModelValue
{
    int type = Tessel::ValueType_None;
    std::string text;
    unsigned int word = 0; ///< an int or an unsigned by its bits
    std::array<float, 4> floats = {};
    int table = kNoTable;
};

struct ModelKey
{
    std::string key;
    ModelValue value;
};

/// A listener that was taken for a key, or, with a null key, a table's own.
struct ModelListener
{
    std::string key;
    int id;
    KVListener* record;
};

struct ModelTable
{
    KVTable handle;
    std::string name;
    bool open = true;
    int holds = 0; ///< by its maker and by each key that it is under
    std::vector<ModelKey> keys;
    std::vector<unsigned int> array;
    std::vector<ModelListener> listeners;
    int own = 0;      ///< the table's own listener, 0 for none
    int ownGiven = 0; ///< how often its record was asked for
};

/// A slot of the listener `id`. It is kept when the listener or the table has gone.
struct ModelSlot
{
    int table;
    std::string key;
    int id;
    Tessel::KVWriter writer;
    Tessel::ValueType type = Tessel::ValueType_None; ///< when last bound
    KVSlot slot = {};
};

/// A table under a key of another one, with the values that were found in it while it was open. It
/// is kept when either has gone.
struct ModelBranch
{
    int parent;
    std::string key;
    int table;
    KVBranch branch;
    std::vector<std::pair<std::string, KVValue*>> values;
};

/// One write under way: the listeners that are still to be called.
struct Write
{
    int table;
    std::string key;
    std::vector<int> waiting;
    bool ownCalled;
};

/// What all listeners are called by; `object` is their number.
int Hear(void* object, opResult result, KVTable table, const char* key);

/// The tables and the model, changed side by side.
class Pair
{
public:
    explicit Pair(Bytes& decisions) : bytes(decisions)
    {
    }
    ~Pair();
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    void Play();
    void Heard(int id, KVTable table, const char* key);

private:
    int PickTable()
    {
        return static_cast<int>(bytes.Byte() % tables.size());
    }
    const char* PickKey();
    const char* Borrow(int table);
    Words PickWords();
    ModelValue* Find(int table, const std::string& key);
    void Close(int table);
    void Release(int table);
    bool Reaches(int from, int to) const;
    void Put(int table, const std::string& key, const ModelValue& value);
    void BeginWrite(int table, const std::string& key);
    void EndWrite();
    void Step();
    void MakeTable();
    bool MayBind(const ModelSlot& slot, int type);
    bool IsBoundByAnother(const ModelSlot& slot) const;
    void CheckSlots();
    bool SetBySlot(int table, const Words& key, const ModelValue& value);
    void FindBranch(int parent, const std::string& key, int table);
    void FindValues(ModelBranch& branch);
    bool IsThere(const ModelBranch& branch);
    bool MayTake(const ModelBranch& branch, const std::string& key);
    bool SetByBranch(int table, const Words& key, const ModelValue& value);
    bool ChangeArrayByBranch(int table, const unsigned int* pushed);
    void SetNumber(int table, const Words& key);
    void SetFloats(int table, const Words& key);
    void SetText(int table, const Words& key);
    void AddTable(int table, const Words& key);
    void Attach(int table, const Words& key);
    void ChangeArray(int table);
    void Listen(int table, const Words& key);
    void Unlisten(int table, const Words& key);
    void CompareAll();
    void CompareTable(const ModelTable& model) const;
    void CompareValue(const ModelTable& model, const ModelKey& key) const;

    Bytes& bytes;
    std::vector<ModelTable> tables;
    std::vector<Write> writes;
    std::list<ModelSlot> slots; ///< a bound one does not move
    std::vector<ModelBranch> branches;
    int nextListener = 1;
};

} // namespace vell::fuzz
