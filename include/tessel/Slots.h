// VELL: data-driven hierarchical state machines.
// include/tessel/Slots.h: operations that a table library may offer beside those of Tessel.h.
#pragma once

#include <tessel/Tessel.h>

namespace Tessel
{

/// The value of one key while its writer keeps it, so that a write which nobody else could hear of
/// is a store. Such a slot is bound: the table reads the key's value from `bytes`, and stores one
/// of the same type there when somebody else writes the key.
///
/// The record is the writer's. It stays where it is, and is released (`SlotOperations::release`)
/// before its memory goes. While `value` is not null, the writer may store a value of the bound
/// type in `bytes` at any time; all else is the library's.
struct alignas(16) KVSlot
{
    unsigned char bytes[16]; ///< of an int, or of one to four floats
    KVValue* value;          ///< the key's value, null when the slot is not bound
    std::uint64_t held;      ///< the library's
};

static_assert(sizeof(KVSlot) == 32, "crosses the boundary of the library");

/// What the writer of a key listens with, while it does nothing about its own writes.
struct KVWriter
{
    KVListener ofKey;                       ///< its listener of the key
    decltype(KVListener::function) ofTable; ///< its function that listens to the table
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

/// The operations on slots and branches. A value is written exactly as the setter of `ITable` would
/// write it, as long as nobody but the writer could hear of it. A writer whose own listeners do
/// nothing about its own writes cannot tell the two apart, and neither can anyone else.
///
/// A slot is bound by `bind`, which does so only when all of this is so:
///   - the table is open;
///   - the key has a value of the given type, and no other slot is bound to it;
///   - `ofKey` is in the only record that was given for the key and not removed, empty ones
///   counted;
///   - the table's own record was asked for once, and has the function `ofTable`, with any object.
/// It stays bound until something happens after which somebody else might hear of a write, or the
/// value is another one: a record of the key is given or removed, the table's own record is asked
/// for, the key gets a value of another type or a table, the table is closed, or the slot is
/// released. `value` is null from then on, and the key has the last value. Until it is bound again,
/// the writer uses the setter of `ITable`, which calls every listener. Not to bind a slot, and to
/// end that at any time, is always right.
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
    /// Binds `slot` to `key` of `table`, whose value is of `type`: an int, or one to four floats.
    /// Releases it first. Returns 1, or 0 when it is not bound.
    int (*bind)(KVSlot* slot, KVTable table, const char* key, ValueType type,
                const KVWriter* writer);
    /// Ends that a slot is bound, if it is.
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

/// Gives the operations on slots, which belong to the library, or null when it has none. A table
/// library need not have this function either: whoever uses it asks whether it is there.
extern "C" TESSEL_API const Tessel::SlotOperations* TesselGetSlotOperations();
