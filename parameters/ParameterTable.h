// VELL: data-driven hierarchical state machines.
// parameters/ParameterTable.h: all parameters of a machine.
#pragma once

#include <tessel/Tessel.h>
#include <vell/ArenaLink.h>
#include <vell/IParameterTable.h>
#include <vell/Json.h>

#include "foundation/Prefetch.h"
#include "foundation/SlabMemory.h"
#include "parameters/ParameterSlot.h"
#include "parameters/ValueBlock.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <forward_list>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace vell
{

class HSMAlloc;

/// Builds the document's parameters in the arena, creates further ones on the heap while the
/// machine runs, which are never deleted, and finds them by id and by name.
class ParameterTable : public IParameterTable
{
public:
    /// Orders names by their characters. A null name comes first.
    struct NameOrder
    {
        bool operator()(const char* left, const char* right) const
        {
            return left == nullptr || right == nullptr ? left == nullptr && right != nullptr
                                                       : std::strcmp(left, right) < 0;
        }
    };
    using NameMap = std::map<const char*, unsigned int, NameOrder>;
    using ParameterMap = std::map<unsigned int, ParameterDef*>;

    ParameterTable();
    /// Never runs for a table in the arena.
    ~ParameterTable();
    ParameterTable(const ParameterTable&) = delete;
    ParameterTable& operator=(const ParameterTable&) = delete;

    int GetParameterCount() override;
    const char* GetParameterName(unsigned int id) override;
    unsigned int GetParameterID(const char* name) override;
    unsigned int GetParameterIDByIndex(unsigned int index) override;
    ParameterDef* FindParameter(const char* name) override;
    ParameterDef* FindParameter(unsigned int id) override;
    int GetParameterAssign(unsigned int id) override;
    int GetParameterAssignClass(unsigned int id) override;
    IBroadcastListener* GetBroadcastListener(unsigned int id) override;
    int CreateFloatParameter(const char* name, float value, IParameterFloatDef** out) override;
    int CreateBoolParameter(const char* name, bool value, IParameterBoolDef** out) override;
    int CreateIntParameter(const char* name, int value, IParameterIntDef** out) override;
    int CreateMessageParameter(const char* name, const char* text,
                               IParameterMessageDef** out) override;

    /// Hears of every write to the table of a parameter, and changes nothing.
    static int HearOfTable(void*, Tessel::opResult result, Tessel::KVTable table, const char* key);

    /// Tells whether a parameter is to be reset at the end of a tick.
    bool ResetsAny() const
    {
        return !resetting.empty();
    }
    /// Builds the parameters of the document's array. Returns 1, or 0 with log lines and no
    /// parameters.
    int Init(const GenericValue& array, HSMAlloc* alloc);
    /// Takes `def` in. Returns 1, or 0 with a log line when its id or name is taken. The name of a
    /// parameter whose id is taken stays known.
    int AddParameter(ParameterDef* def);
    /// Builds one parameter, not yet taken in. Null with log lines.
    ParameterDef* CreateParameterDef(const GenericValue& node, HSMAlloc* alloc);
    /// Makes the table "parameterTable". Returns 1, or 0 with a log line when there is one.
    int CreateKVTable();
    /// Uninitialises all parameters, forgets them but for their names, and closes the table. Where
    /// one throws, those up to it are forgotten, and the next call goes on.
    void Uninit();

    /// Resets the parameters that ask for it, in ascending id order: the end of a tick.
    void ResetFrameParameters()
    {
        if (ResetsAny())
        {
            ResetAll();
        }
    }

    /// Fetches the first two cache lines of what a tick reads here: most machines use no more of
    /// `values`. It follows `resetting`, see the fields.
    void Prefetch() const
    {
        vell::Prefetch(&resetting, 2 * kCacheLine);
    }

    /// Fetches the list of what is reset, when `Prefetch` is done.
    void PrefetchResetting() const
    {
        vell::Prefetch(resetting.data(), resetting.size() * sizeof(Resetting));
    }

    /// Finds the parameters to be reset again, after one of them was assigned.
    void CollectResetting();

    /// Gives the table, or null.
    Tessel::KVTable GetKVTable() const;

    friend Tessel::KVTable ReleaseStorage(ParameterTable& table, ArenaLink::AtEnd);
    friend ArenaLink& GetArenaLink(ParameterTable& object)
    {
        return object.arenaLink;
    }

    Tessel::KVTable table;  ///< null until CreateKVTable
    NameMap nameToId;       ///< keys are the parameters' own name pointers
    ParameterMap idToParam; ///< every parameter

private:
    /// A parameter that resets each frame.
    struct Resetting
    {
        /// Tells whether there is anything to do. A bool that has its default is not written, so
        /// nobody can tell whether it was reset. All others are written again at each reset, and
        /// listeners hear of it.
        bool IsDue() const
        {
            return *value != *defaultValue;
        }

        unsigned int id;
        ParameterDef* def;
        const bool* value;        ///< of a bool; a host may write there at any time
        const bool* defaultValue; ///< of a bool; of all others, the two point to different values
    };

    using ResettingList = std::vector<Resetting, SlabAllocator<Resetting>>;

    /// Slots are created in groups, which do not move: a bound slot stays where it is.
    using SlotGroup = std::array<ParameterDef::Slot, 4>;
    using SlotList = std::forward_list<SlotGroup, SlabAllocator<SlotGroup>>;

    ParameterDef::Slot& CreateSlot();
    void Collect(unsigned int id, ParameterDef& def);
    void ResetAll();
    const Resetting* ResetOne(const Resetting* entry);
    void ForgetUpTo(ParameterMap::iterator end);
    void CloseRuntimeTables();
    void PlaceValue(ParameterDef& def, int type);
    bool IsNewName(const char* name);
    /// Takes a run-time parameter in, which then lives as long as the process. Returns 1, or 0 with
    /// a log line, and deletes it, when its id or name is taken.
    int Publish(std::unique_ptr<ParameterDef> owned);

    // What a tick reads comes first, side by side: `Prefetch` relies on the order.
    ResettingList resetting; ///< in ascending id order
    ValueBlock values;       ///< of the document's first scalar parameters

    HSMAlloc* arena = nullptr;  ///< holds the document's parameters; null until Init
    SlotList slots;             ///< of the parameters, the latest first
    std::size_t slotCount = 0;  ///< given to parameters; 0 when all are forgotten
    bool isTableClosed = false; ///< `table` keeps its handle
    /// A loop that finds it changed is at a deleted parameter.
    unsigned int timesForgotten = 0;

    ArenaLink arenaLink;
};

} // namespace vell
