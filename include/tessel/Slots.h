// VELL: data-driven hierarchical state machines.
// include/tessel/Slots.h: operations that a table library may offer beside those of Tessel.h.
#pragma once

#include <tessel/Tessel.h>

namespace Tessel
{

/// Memory of a writer in which a table keeps the value of one key. The writer then writes the value
/// by storing it there, without a call.
///
/// The writer first binds the slot to the key (`SlotOperations::bind`). While it is bound, whoever
/// reads the key gets what is in `bytes`, and a value of the same type that somebody else writes to
/// the key is stored there. When somebody else might hear of the next write, the library unbinds
/// the slot: the table takes the value back, and `value` is null again.
///
/// The writer owns the record. It begins as `KVSlot slot{}`, is neither copied nor moved while it
/// is bound, and is released (`SlotOperations::release`) before its memory is freed. While `value`
/// is not null, the writer may store a value of the type that it was bound for in `bytes`. It
/// writes to nothing else in the record.
struct alignas(16) KVSlot // the library uses the low bits of its address
{
    unsigned char bytes[16]; ///< the key's value: an int, or one to four floats
    KVValue* value;          ///< as `ITable::FindValue` gives it; null while the slot is not bound
    std::uint64_t held;      ///< the library's
};

static_assert(sizeof(KVSlot) == 32, "crosses the boundary of the library");

/// The listeners that a writer has itself. They do nothing about its own writes, so a write that
/// only they would hear of need not call them.
struct KVWriter
{
    KVListener ofKey;                       ///< in a record of the key
    decltype(KVListener::function) ofTable; ///< in the table's own record, with any object
};

static_assert(sizeof(KVWriter) == 3 * sizeof(void*), "crosses the boundary of the library");

/// A table under a key of another one, found once by a writer that listens to neither. The library
/// fills it in. The record is the writer's, and there is nothing to release.
struct KVBranch
{
    KVTable parent;  ///< the table that the key was looked for in; null before that
    KVTable table;   ///< the table that the key held then, null when there is no branch
    void* places[3]; ///< the library's
};

static_assert(sizeof(KVBranch) == 5 * sizeof(void*), "crosses the boundary of the library");

/// The operations on slots and branches. They are for writes that nobody but the writer could hear
/// of. Such a write leaves what the setter of `ITable` would leave, and calls no listener: nobody
/// can tell the two apart, as long as the writer's own listeners do nothing about its own writes.
///
/// `bind` binds a slot only when all of this is so:
///   - the table is open;
///   - the key has a value of the given type, and no other slot is bound to it;
///   - `ofKey` is in the only record that was given for the key and not removed, empty ones
///     counted;
///   - the table's own record was asked for at most once, and its function is `ofTable`, with any
///     object; a null `ofTable` only when it was never asked for.
/// It is unbound, and `value` is null again, as soon as one of these happens:
///   - a record of the key is given or removed, or the table's own record is asked for: somebody
///     else may hear of the next write;
///   - the key gets a value of another type, or a table;
///   - the table is closed;
///   - the writer releases the slot, or binds it again.
/// Unless the key got another value, it keeps the last one that was stored in `bytes`. While the
/// slot is not bound, the writer uses the setter of `ITable`, which calls every listener. A library
/// may refuse to bind a slot, and may unbind one at any time.
///
/// The operations on a branch take values of its `table` that the writer got from
/// `ITable::FindValue` when the branch was found. They do what the operation of `ITable` would do
/// to the key of such a value, or to the table that this key now holds, as long as the table is
/// reached from `parent` as before and nobody could hear of it. Each returns 1, or, having changed
/// nothing, 0: the writer then starts at `parent`, by the operations of `ITable`. They return 0
/// unless all of this is so at the time of the call:
///   - `parent` is open, and the key holds `table`;
///   - `table` is open;
///   - `setUInts`: nobody listens to `table` or to any key of it, and each value is an unsigned;
///   - `pushUInt` and `removeLast`: the value is an open table; for the latter, with an element.
/// Here too 0 is always a right answer, also for a branch without a table.
///
/// The order of these is part of the interface.
struct SlotOperations
{
    /// Releases `slot` and binds it to `key` of `table`. `type` is that of the key's value: an int,
    /// or one to four floats; no other can be bound. Returns 1, or 0 when the slot is not bound.
    int (*bind)(KVSlot* slot, KVTable table, const char* key, ValueType type,
                const KVWriter* writer);
    /// Unbinds `slot`, if it is bound. The key keeps the value.
    void (*release)(KVSlot* slot);

    /// Looks for the table under `key` of `parent` and fills in the branch. Returns 1, or 0 with a
    /// null `table` when `parent` is closed or the key holds no open table.
    int (*findBranch)(KVBranch* branch, KVTable parent, const char* key);
    /// Writes `count` values, all or none.
    int (*setUInts)(const KVBranch* branch, KVValue* const* values, const unsigned* numbers,
                    unsigned count);
    /// Appends to the array of the table that the key of `value` holds.
    int (*pushUInt)(const KVBranch* branch, const KVValue* value, unsigned number);
    /// Removes the last element of that array.
    int (*removeLast)(const KVBranch* branch, const KVValue* value);
};

} // namespace Tessel

/// Gives the operations on slots and branches, which belong to the library, or null when it has
/// none. A table library may also lack this function: who uses it checks whether it is there.
extern "C" TESSEL_API const Tessel::SlotOperations* TesselGetSlotOperations();
