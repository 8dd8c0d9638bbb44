// VELL: data-driven hierarchical state machines.
// include/tessel/Tessel.h: the public surface of the key/value table library.
#pragma once

#include <cstdint>
#include <type_traits>

// `TESSEL_STATIC`: the library is linked statically, or its objects directly. `TESSEL_BUILDING`:
// the shared library itself is being built. Neither: a host uses the shared library.
#if defined(TESSEL_STATIC)
#define TESSEL_API
#elif defined(_WIN32)
#if defined(TESSEL_BUILDING)
#define TESSEL_API __declspec(dllexport)
#else
#define TESSEL_API __declspec(dllimport)
#endif
#else
#define TESSEL_API __attribute__((visibility("default")))
#endif

/// Tables of named values that form a tree: a program mirrors its state in them, a tool reads and
/// edits them, and listeners are called on each write.
///
/// Threads: different threads may create, use and close different tables at the same time. A table
/// and the tables attached to it belong to one thread at a time. Reading and writing take no lock.
///
/// Memory: creating a table and writing to it may throw `std::bad_alloc`; the table is then
/// unchanged. Closing a table frees all that it allocated, and its slot is used again. Up to 4096
/// texts of keys that do not begin with a digit, and up to 4096 orders of at most eight of them,
/// are kept for the lifetime of the process, so that tables share them. Others go with their table.
namespace Tessel
{

class ITable;
class KVTable;

/// Two floats.
struct Float2
{
    float x;
    float y;
};

/// Three floats.
struct Float3
{
    float x;
    float y;
    float z;
};

/// Four floats.
struct Float4
{
    float x;
    float y;
    float z;
    float w;
};

static_assert(sizeof(Float2) == 8, "crosses the boundary of the library");
static_assert(sizeof(Float3) == 12, "crosses the boundary of the library");
static_assert(sizeof(Float4) == 16, "crosses the boundary of the library");

/// What happened, as a listener is told.
enum opResult : int
{
    opResult_None = 0,
    opResult_ValueChanged = 1, ///< the value of the key was written
};

/// The type numbers of values, as `KVValue::GetValueType` and `ITable::GetTypeAt` give them.
enum ValueType : int
{
    ValueType_None = 0,
    ValueType_Text = 1,
    ValueType_Float2 = 6,
    ValueType_Float3 = 7,
    ValueType_Float4 = 8,
    ValueType_Table = 9,
    ValueType_Int = 12,
    ValueType_Float = 13,
    ValueType_UInt = 14,
};

/// Gives the table behind `table`, or, for a null handle and for a handle of a closed table, the
/// shared closed table, which returns 0 or null and does nothing. Never null, takes no lock.
/// `KVTable::operator->` calls it.
TESSEL_API ITable* ResolveTable(KVTable table);

/// A handle to a table, of the size of a pointer, passed and stored by value. A default handle is
/// null. A handle may outlive its table: it then refers to the shared closed table, and never to a
/// table that was created later.
class KVTable
{
public:
    constexpr KVTable() = default;

    /// True when the handle is not null. The handle of a closed table is not null.
    explicit operator bool() const
    {
        return bits != 0;
    }

    /// Gives the table, see `ResolveTable`. Use the pointer for one call only; it is invalid after
    /// the table is closed.
    ITable* operator->() const
    {
        return ResolveTable(*this);
    }

    friend bool operator==(KVTable left, KVTable right)
    {
        return left.bits == right.bits;
    }

    friend bool operator!=(KVTable left, KVTable right)
    {
        return left.bits != right.bits;
    }

private:
    friend struct TableHandle;

    std::uintptr_t bits = 0; ///< slot and generation, 0 for null
};

static_assert(sizeof(KVTable) == sizeof(void*), "one pointer wide");
static_assert(std::is_trivially_copyable<KVTable>::value, "passed by value");

/// A listener: an object and the function that is called with it. A record without a function is
/// never called. The result of the function is ignored.
struct KVListener
{
    void* object;
    int (*function)(void* object, opResult result, KVTable table, const char* key);
};

static_assert(sizeof(KVListener) == 2 * sizeof(void*), "two pointers");

/// One value of a table, under a key or in its array. Its address is valid until its table is
/// closed or, in the array, it is removed. A write to its key changes the value.
///
/// The order of these is part of the interface.
class KVValue
{
public:
    /// Gives the number of the value's type, see `ValueType`.
    virtual int GetValueType() const = 0;

    /// Gives the value as an int. An unsigned keeps its 32 bits; a float is truncated toward 0 and
    /// clamped to the limits of int; NaN gives 0. 0 for all other types.
    virtual int GetIntValue() const = 0;

    /// Gives the value as a float, converted from an int or an unsigned. 0 for all other types.
    virtual float GetFloatValue() const = 0;

    /// Gives the text, or null for all other types. Valid until the key is written again or the
    /// table is closed.
    virtual const char* GetStringValue() const = 0;

    /// Copies a value of two floats to `out` and returns 1. Returns 0 and leaves `out` unchanged
    /// for all other types and for a null `out`.
    virtual int GetFloat2Value(Float2* out) const = 0;

    /// As `GetFloat2Value`, for three floats.
    virtual int GetFloat3Value(Float3* out) const = 0;

    /// Gives the value as an unsigned. An int keeps its 32 bits; a float of 0 or more is truncated
    /// and clamped to the limit of unsigned; a negative one gives the 32 bits of its int. 0 for all
    /// other types.
    virtual unsigned GetUIntValue() const = 0;

protected:
    ~KVValue() = default;
};

/// A table. It has keys, each with one typed value, and separately an array of unsigned values.
/// Keys are compared byte by byte; a null key finds nothing and writes nothing.
///
/// Setters create the key if it does not exist, and replace a value of another type. They return 1,
/// or 0 for a null key or value. Each write calls listeners at once, even when the value stays the
/// same: first those of the key, in the order in which they were added, then the table's own, each
/// with `opResult_ValueChanged`, the table and the key. `AddTable`, `AttachTable`, `PushUInt` and
/// `RemoveAt` call no listener. `flag` has no effect.
///
/// The key and the text of a write may be in the memory of any table, even of one that the write
/// closes. The key that a listener gets is valid until it returns.
///
/// A listener may write (even its own key), remove itself and others, add new records (which are
/// called from the next write on), and close the table: then no other listener is called.
///
/// The order of these is part of the interface.
class ITable
{
public:
    /// Gives the element `index` of the array, or null past its end. It belongs to the table.
    virtual KVValue* GetValueAt(unsigned index) = 0;

    /// Gives the table under `key`, or a null handle when there is none or it was closed.
    virtual KVTable GetTable(const char* key) = 0;

    /// Gives the value of `key` as `KVValue::GetIntValue` does; 0 when there is no such key.
    virtual int GetInt(const char* key) = 0;

    /// Gives the value of `key` as `KVValue::GetFloatValue` does; 0 when there is no such key.
    virtual float GetFloat(const char* key) = 0;

    /// Gives the text of `key`, or null when there is no such key or it is not a text. Valid until
    /// the key is written again or the table is closed.
    virtual const char* GetString(const char* key) = 0;

    /// Copies the two floats of `key` to `out` and returns 1. Returns 0 and leaves `out` unchanged
    /// when there is no such key, it is of another type, or `out` is null.
    virtual int GetFloat2(const char* key, Float2* out) = 0;

    /// As `GetFloat2`, for three floats.
    virtual int GetFloat3(const char* key, Float3* out) = 0;

    /// As `GetFloat2`, for four floats.
    virtual int GetFloat4(const char* key, Float4* out) = 0;

    /// Gives the value of `key` as `KVValue::GetUIntValue` does; 0 when there is no such key.
    virtual unsigned GetUInt(const char* key) = 0;

    /// Writes an unsigned. See the class for the result and the listeners of all setters.
    virtual int SetUInt(const char* key, unsigned value, int flag) = 0;

    /// Writes four floats.
    virtual int SetFloat4(const char* key, const Float4* value, int flag) = 0;

    /// Writes three floats.
    virtual int SetFloat3(const char* key, const Float3* value, int flag) = 0;

    /// Writes two floats.
    virtual int SetFloat2(const char* key, const Float2* value, int flag) = 0;

    /// Writes a copy of a text. Returns 0 for a null text and leaves the key unchanged.
    virtual int SetString(const char* key, const char* text, int flag) = 0;

    /// Writes a float.
    virtual int SetFloat(const char* key, float value, int flag) = 0;

    /// Writes an int.
    virtual int SetInt(const char* key, int value, int flag) = 0;

    /// Creates a table named `key` under `key`, replacing what was there. Null for a null key and
    /// when no slot for a table is left. Only this table holds the new one: it is closed when this
    /// one is closed or the key is written, unless it was attached elsewhere too.
    virtual KVTable AddTable(const char* key, int flag) = 0;

    /// Puts `child` under `key`, replacing what was there, and returns 1, even if it is there
    /// already. This table then holds it too. Returns 0 and changes nothing for a null key, a null
    /// or closed `child`, this table itself, and a table that contains this one.
    virtual int AttachTable(const char* key, KVTable child, int flag) = 0;

    /// Removes the element `index` of the array; those after it move up. Returns 1, or 0 past its
    /// end.
    virtual int RemoveAt(unsigned index, int flag) = 0;

    /// Appends an unsigned to the array. Returns 1.
    virtual int PushUInt(unsigned value, int flag) = 0;

    /// Gives the number of elements of the array. Keys do not count.
    virtual unsigned GetCount() = 0;

    /// Gives the value of `key`, or null when there is no such key. It belongs to the table.
    virtual KVValue* FindValue(const char* key) = 0;

    /// Gives the listener record of the table itself, for the caller to fill in: it is called for
    /// each write of any key. Clear its function to remove it. The record belongs to the table.
    virtual KVListener* GetTableListener() = 0;

    /// Gives a new, empty listener record for `key`, for the caller to fill in, even when there is
    /// no such key yet (it is not created). Null for a null key. The record belongs to the table
    /// and is valid until it is removed or the table is closed.
    virtual KVListener* GetValueListener(const char* key) = 0;

    /// Removes the first record of `key` that has the object and the function of `listener`. Does
    /// nothing when there is none, or when the function is null. Removing takes no longer when the
    /// key has many records; looking for a record that does not exist does.
    virtual void RemoveValueListener(const char* key, const KVListener* listener) = 0;

    /// Gives 0: a table belongs to one thread at a time.
    virtual int NeedsLock() = 0;

    /// Does nothing, see `NeedsLock`.
    virtual void Lock() = 0;

    /// Does nothing, see `NeedsLock`.
    virtual void Unlock() = 0;

    /// Gives the number of keys, for tools that iterate over a table.
    virtual unsigned GetKeyCount() = 0;

    /// Gives the key `index` in the order in which the keys were created, or null past the last
    /// one. Valid until the table is closed.
    virtual const char* GetKeyAt(unsigned index) = 0;

    /// Gives the type number of the value under the key `index`, see `ValueType`; 0 past the last.
    virtual int GetTypeAt(unsigned index) = 0;

protected:
    ~ITable() = default;
};

/// Creates an empty table named `name`, which is copied and may be null. The caller holds it until
/// it calls `CloseTable`. Null when no slot for a table is left.
TESSEL_API KVTable CreateTable(const char* name);

/// Closes `table`, whoever holds it: deletes its values and listeners, and closes the tables under
/// it that nothing else holds. Its parent then gives a null table for it. Does nothing for a null
/// handle and for a closed table, and may be called from a listener of the table.
TESSEL_API void CloseTable(KVTable table);

/// Gives the name of `table`: that of `CreateTable`, empty for a null name, or the key of
/// `AddTable`. Null for a null handle and a closed table. Valid until the table is closed.
TESSEL_API const char* GetTableName(KVTable table);

/// Gives the number of open tables of the process, for tests of leaks. It checks every slot.
TESSEL_API unsigned GetOpenTableCount();

} // namespace Tessel
