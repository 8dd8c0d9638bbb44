// VELL: data-driven hierarchical state machines.
// definitions/NodeDefTable.h: all definitions of a machine, by id.
#pragma once

#include <tessel/Tessel.h>
#include <vell/BaseDef.h>
#include <vell/Callbacks.h>
#include <vell/Types.h>

#include <cstddef>
#include <map>
#include <memory_resource>
#include <vector>

namespace vell
{

/// Turns the nodes of a document into definitions by way of the builder registry, and finds them
/// again. Definitions are in the arena and refer to each other by id only.
class NodeDefTable
{
    /// The memory of the entries of `nodes`, freed all at once. It begins with 512 bytes, because
    /// most machines are small.
    std::pmr::monotonic_buffer_resource nodePool{512, std::pmr::new_delete_resource()};

public:
    using NodeMap = std::pmr::map<unsigned int, BaseDef*>;

    /// Registers the ten standard factories.
    NodeDefTable();
    /// Empties the builder registry of the process. Never runs for the table in the arena.
    virtual ~NodeDefTable();
    NodeDefTable(const NodeDefTable&) = delete;
    NodeDefTable& operator=(const NodeDefTable&) = delete;

    /// Makes `factory` build the nodes of a number, for all machines of the process. Returns 1.
    int RegisterNodeDef(__DURM_BUILDERS__ builder, NodeDefFactory factory);
    /// Empties the builder registry of the process.
    static void ClearBuilders();

    /// Builds the nodes of one array. Returns 1, also after a duplicate id, which ends the array; 0
    /// with log lines, and without any node, when one could not be built.
    int Init(const GenericValue& nodes, HSMAlloc* alloc);
    /// Takes in the head. Returns 1, or 0 with log lines.
    int ImportHead(const GenericValue& head);
    /// Takes in the skeleton section. Returns 1, or 0 with a log line.
    int ImportSkel(const GenericValue& skeleton, HSMAlloc* alloc);
    /// The two steps of `ImportSkel`. Each returns 1, or 0 with a log line.
    int ImportSkel_ModelFileName(const GenericValue& skeleton, HSMAlloc* alloc);
    int ImportSkel_SkeletonFileName(const GenericValue& skeleton, HSMAlloc* alloc);
    /// Builds the nodes of the global array. Returns 1, also when a node stopped it, or 0 with a
    /// log line.
    int ImportGlobal(const GenericValue& globals, HSMAlloc* alloc);
    /// Builds one definition, not yet inserted. Null with log lines.
    BaseDef* CreateNodeDef(const GenericValue& node, HSMAlloc* alloc);
    /// Files `def` by its id and attaches its table. Returns 1, or 0 with log lines.
    int InsertNode(BaseDef* def);
    /// Files an enter node by its parent's id. Returns 1, or 0 with a log line when there is one.
    int InsertEnterNode(BaseDef* def);
    /// Stores the entry node's id, and logs when there is no such node.
    void SetEnterNode(unsigned int id);

    /// Gives the definition, or null.
    BaseDef* Find(unsigned int id) const;
    /// Gives the definition with this name and the lowest id, or null.
    BaseDef* FindByName(const char* name) const;
    /// Iterates over the definitions whose flags meet `mask`, in ascending id. Null at the end.
    /// There is one cursor.
    BaseDef* FindFirst(unsigned int mask);
    BaseDef* FindNext(unsigned int mask);

    /// Makes the table "nodeDefTable". Returns 1, or 0 with a log line when there is one.
    int CreateKVTable();
    /// Uninitialises all definitions and forgets them. Where one throws, those up to it are
    /// forgotten, and the next call goes on.
    void Uninit();

    friend Tessel::KVTable ReleaseStorage(NodeDefTable& table, ArenaLink::AtEnd);
    friend ArenaLink& GetArenaLink(NodeDefTable& object)
    {
        return object.arenaLink;
    }

    static constexpr std::size_t kIdentitySize =
        70; ///< characters of a GUID or build id, terminated

    Tessel::KVTable kvTable;          ///< null until the first Init
    unsigned int numNodes = 0;        ///< size of the last array
    unsigned int nextIndex = 0;       ///< insertions tried so far
    unsigned int enterNodeId = 0;     ///< from the head
    unsigned int globalNodeId = 0;    ///< last GlobalDef of the global array
    unsigned int substateRootId = 0;  ///< from the head: the node that the machine starts with
    unsigned int headValue84 = 0;     ///< from the head; nobody reads it
    char guid[kIdentitySize] = {};    ///< empty when the head has none
    char buildId[kIdentitySize] = {}; ///< the GUID when the head has none
    NodeMap enterNodes{std::pmr::new_delete_resource()}; ///< enter node of each parent id
    NodeMap nodes{&nodePool};                            ///< every definition
    std::vector<unsigned int> nodeIds; ///< in order of insertion, refused duplicates included
    std::map<__DURM_BUILDERS__, NodeDefFactory> spareBuilders; ///< nobody fills it
    char* modelFileName = nullptr;                             ///< in the arena
    char* skeletonFileName = nullptr;                          ///< in the arena
    unsigned int skelValue89 = 0;  ///< from the skeleton; nobody reads it
    unsigned int timesCleared = 0; ///< a loop that finds it changed is at a deleted node
    NodeMap::iterator cursor;      ///< position of the iteration over `nodes`

private:
    void ImportIdentity(const GenericValue& head);
    void PrintHead(const GenericValue& head, unsigned int substateRoot) const;
    BaseDef* NextFrom(NodeMap::iterator position, unsigned int mask);
    void ClearNodes();
    void ReserveIds(std::size_t count);

    ArenaLink arenaLink;
};

} // namespace vell
