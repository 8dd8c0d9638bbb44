// VELL: data-driven hierarchical state machines.
// include/tessel/Slots.h: operations that a table library may offer beside those of Tessel.h.
#pragma once

#include <tessel/Tessel.h>

namespace Tessel
{

/// A key of a table that one writer writes often, found once. The writer fills in `own` and
/// `ownOfTable`, the library the rest. The record is the writer's, and there is nothing to release.
struct KVSlot
{
    KVTable table;  ///< the table that the key was looked for in; null before that
    KVValue* value; ///< the key's value, null when there is no slot
    void* place;    ///< the library's
    KVListener own; ///< the writer's own listener of the key
    decltype(KVListener::function) ownOfTable; ///< its function that listens to the table
};

static_assert(sizeof(KVSlot) == 6 * sizeof(void*), "crosses the boundary of the library");

/// A table under a key of another one, found once by a writer that listens to neither. The library
/// fills it in. The record is the writer's, and there is nothing to release.
struct KVBranch
{
    KVTable parent;  ///< the table that the key was looked for in; null before that
    KVTable table;   ///< the table that the key held then, null when there is no branch
    void* places[3]; ///< the library's
};

static_assert(sizeof(KVBranch) == 5 * sizeof(void*), "crosses the boundary of the library");

/// The operations on slots and branches. A value is written to a slot exactly as the setter of
/// `ITable` would write it, as long as nobody but the writer could hear of it. A writer whose own
/// listeners do nothing about its own writes cannot tell the two apart, and neither can anyone
/// else.
///
/// Each `set` returns 1, or, having changed nothing, 0: the writer then uses the setter of
/// `ITable`, which calls every listener. It returns 0 unless all of this is so at the time of the
/// call:
///   - `table` is open;
///   - the key has a value of the same type;
///   - `own` is in the only record that was given for the key and not removed, empty ones counted;
///   - `ownOfTable` is in the table's own record, with any object.
/// Whatever else holds, 0 is always a right answer, also for a slot without a value.
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
    /// Looks for `key` in `table` and fills in `table`, `value` and `place`. Returns 1, or 0 with a
    /// null `value` when there is no such key, the table is closed, or nobody listens to it.
    int (*find)(KVSlot* slot, KVTable table, const char* key);
    int (*setInt)(const KVSlot* slot, int value);
    int (*setFloat)(const KVSlot* slot, float value);
    int (*setFloat2)(const KVSlot* slot, const Float2* value);
    int (*setFloat3)(const KVSlot* slot, const Float3* value);
    int (*setFloat4)(const KVSlot* slot, const Float4* value);

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
