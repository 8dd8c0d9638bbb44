// VELL: data-driven hierarchical state machines.
// definitions/NodeDefTable.cpp: building, filing and finding of definitions.
#include "definitions/NodeDefTable.h"

#include <durm/DURMBaseLib.h>
#include <vell/HSMAlloc.h>

#include "definitions/BaseDefInternals.h"
#include "definitions/StandardDefs.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "foundation/TextCompare.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace vell
{
namespace
{

struct Builder
{
    NodeDefFactory create;
    bool isStandard; ///< the library's own, which hands what it creates to no host
};

using BuilderMap = std::map<__DURM_BUILDERS__, Builder>;

/// The one registry of the process. It is never destroyed, so that a machine may still be deleted
/// while static objects are.
BuilderMap& Builders()
{
    static auto* builders = new BuilderMap;
    return *builders;
}

bool IsStandard(NodeDefFactory factory)
{
    const StandardDefs standard = GetStandardDefs();
    const auto isFactory = [factory](const StandardDef& def)
    {
        return def.create == factory;
    };
    return std::any_of(standard.begin, standard.end, isFactory);
}

} // namespace

NodeDefTable::NodeDefTable() : cursor(nodes.end())
{
    const StandardDefs standard = GetStandardDefs();
    for (const StandardDef* def = standard.begin; def != standard.end; ++def)
    {
        Builders()[def->builder] = Builder{def->create, true};
    }
}

NodeDefTable::~NodeDefTable()
{
    ClearBuilders();
}

int NodeDefTable::RegisterNodeDef(__DURM_BUILDERS__ builder, NodeDefFactory factory)
{
    // Required: there is one registry. A factory registered through one machine acts on every
    // machine that is not yet initialised.
    Builders()[builder] = Builder{factory, IsStandard(factory)};
    return 1;
}

void NodeDefTable::ClearBuilders()
{
    Builders().clear();
}

int NodeDefTable::Init(const GenericValue& newNodes, HSMAlloc* alloc)
{
    do
    {
        if (!kvTable)
        {
            ERROR_BREAK(CreateKVTable());
        }
        ERROR_BREAK(newNodes.IsArray());
        numNodes = newNodes.Size();
        ReserveIds(numNodes);
        for (const GenericValue& node : newNodes.GetArray())
        {
            ERROR_GOTO(node.IsObject(), failed);
            BaseDef* def = CreateNodeDef(node, alloc);
            ERROR_GOTO(def, failed);
            // Required: a refused definition is offered a second time, which its log lines and its
            // index show, and ends the array with success.
            // Required: the nodes before it stay, and the load continues with the next layer.
            ERROR_BREAK(InsertNode(def));
        }
        return 1;
    } while (false);

failed:
    Uninit();
    return 0;
}

/// Reserves space for `count` more ids, in steps that grow with them: a document may have many
/// layers.
void NodeDefTable::ReserveIds(std::size_t count)
{
    const std::size_t needed = nodeIds.size() + count;
    if (needed > nodeIds.capacity())
    {
        nodeIds.reserve(std::max(needed, nodeIds.size() * 2));
    }
}

BaseDef* NodeDefTable::CreateNodeDef(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ASSERT_BREAK(alloc != nullptr && node.IsObject());
        const int builder = DURMBaseLib::GetBuilderIndex(ReadText(node, JSON_BuilderType));
        const auto entry = Builders().find(static_cast<__DURM_BUILDERS__>(builder));
        // Required: the registry is empty after any machine was deleted, so a machine created
        // before cannot be initialised.
        ERROR_BREAK(entry != Builders().end());
        // A copy: a host's factory may delete another machine, which empties the registry.
        const Builder registered = entry->second;
        BaseDef* def = registered.create == nullptr ? nullptr : registered.create(node, alloc);
        ERROR_BREAK(def);
        if (!registered.isStandard)
        {
            BaseDef::Internals::HandOut(*def);
        }
        // Required: unlike elsewhere, a failing Init runs once.
        const int initialised = def->Init(node, alloc);
        ERROR_BREAK(initialised);
        if (def->GetType() == DefTypeEnter)
        {
            LogStream(LogInfo) << "EnterNode: " << def->GetName()
                               << " - ParentID: " << def->GetParentID() << EndLine;
            InsertEnterNode(def);
        }
        def->InitKVTable();
        return def;
    } while (false);

    LogStream(LogError) << "Failed to create builder type - (" << ReadText(node, JSON_BuilderType)
                        << ")" << EndLine;
    return nullptr;
}

int NodeDefTable::InsertNode(BaseDef* def)
{
    int result = 0;
    do
    {
        ERROR_BREAK(def);
        def->SetIndex(static_cast<int>(nextIndex));
        ++nextIndex;
        const unsigned int id = def->GetID();
        // Documents mostly number their nodes upwards.
        const std::size_t before = nodes.size();
        const auto position = nodes.emplace_hint(nodes.end(), id, def);
        const bool inserted = nodes.size() != before;
        if (!inserted)
        {
            BaseDef* old = position->second;
            LogStream(LogError) << "Duplicate ID (" << id << ") error: " << def->GetName()
                                << " conflicts with " << (old == nullptr ? nullptr : old->GetName())
                                << EndLine;
        }
        nodeIds.push_back(id);
        // Required: a refused definition is not attached, so the tree does not show it.
        ERROR_BREAK(inserted);

        char key[16] = {};
        std::to_chars(key, key + sizeof(key) - 1, id);
        ASSERT_BREAK(kvTable && kvTable->AttachTable(key, def->GetKVTable(), 1));
        result = 1;
    } while (false);
    return result;
}

int NodeDefTable::InsertEnterNode(BaseDef* def)
{
    ERROR_RETURN(def, 0);
    // Required: of two enter nodes of a parent the first one counts.
    const bool inserted = enterNodes.emplace(def->GetParentID(), def).second;
    ERROR_RETURN(inserted, 0);
    return 1;
}

BaseDef* NodeDefTable::Find(unsigned int id) const
{
    const auto entry = nodes.find(id);
    return entry == nodes.end() ? nullptr : entry->second;
}

BaseDef* NodeDefTable::FindByName(const char* name) const
{
    const unsigned int before = timesCleared;
    for (const auto& entry : nodes)
    {
        BaseDef* def = entry.second;
        const bool isFound = def != nullptr && EqualsText(def->GetName(), name);
        // A host's GetName may have emptied the table.
        if (timesCleared != before)
        {
            return nullptr;
        }
        if (isFound)
        {
            return def;
        }
    }
    return nullptr;
}

BaseDef* NodeDefTable::FindFirst(unsigned int mask)
{
    return NextFrom(nodes.begin(), mask);
}

BaseDef* NodeDefTable::FindNext(unsigned int mask)
{
    return NextFrom(cursor, mask);
}

BaseDef* NodeDefTable::NextFrom(NodeMap::iterator position, unsigned int mask)
{
    const unsigned int before = timesCleared;
    for (; position != nodes.end(); ++position)
    {
        BaseDef* def = position->second;
        const bool accepted =
            def != nullptr && (mask == 0xffffffffu || (def->GetFlags() & mask) != 0);
        if (timesCleared != before)
        {
            return nullptr;
        }
        if (accepted)
        {
            cursor = ++position;
            return def;
        }
    }
    return nullptr;
}

int NodeDefTable::CreateKVTable()
{
    ERROR_RETURN(!kvTable, 0);
    kvTable = Tessel::CreateTable("nodeDefTable");
    ERROR_RETURN(static_cast<bool>(kvTable), 0);
    return 1;
}

void NodeDefTable::Uninit()
{
    numNodes = 0;
    unsigned int before = timesCleared;
    NodeMap::iterator position = nodes.begin();
    try
    {
        while (position != nodes.end())
        {
            if (position->second != nullptr)
            {
                position->second->Uninit();
            }
            // An action's destructor or a host's Uninit may have done this already, for all nodes
            // or up to one that threw. It may also have filed nodes behind this one.
            position = timesCleared == before ? std::next(position) : nodes.begin();
            before = timesCleared;
        }
    }
    catch (...)
    {
        // A host's definition threw: the next call goes on behind it.
        if (timesCleared == before)
        {
            ++timesCleared;
            nodes.erase(nodes.begin(), std::next(position));
            cursor = nodes.end();
        }
        throw;
    }
    // Required: `enterNodes` and `nodeIds` keep their entries.
    // Required: the table stays open, and still shows its texts.
    ClearNodes();
}

void NodeDefTable::ClearNodes()
{
    ++timesCleared;
    // A map may keep something of its pool even when it is empty.
    nodes.~NodeMap();
    nodePool.release();
    new (&nodes) NodeMap(&nodePool);
    cursor = nodes.end();
}

Tessel::KVTable ReleaseStorage(NodeDefTable& table, ArenaLink::AtEnd)
{
    table.ClearNodes();
    table.enterNodes.clear();
    std::vector<unsigned int>().swap(table.nodeIds);
    return table.kvTable;
}

} // namespace vell
