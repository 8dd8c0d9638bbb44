// VELL: data-driven hierarchical state machines.
// definitions/NodeDefTableImport.cpp: the head, skeleton and global sections of a document.
#include "definitions/NodeDefTable.h"
#include "document/JsonReader.h"
#include "foundation/ArenaMemory.h"
#include "foundation/Checks.h"
#include "foundation/TreeKeys.h"

#include <cstring>

namespace vell
{
namespace
{

/// Copies a text that is shorter than `target` and writes it to the table. A longer one is dropped.
void StoreIdentity(char (&target)[NodeDefTable::kIdentitySize], const char* text,
                   Tessel::KVTable table, const char* key)
{
    const std::size_t length = strnlen(text, sizeof(target));
    // Required: a text of 70 characters or more is dropped without a line.
    if (length == sizeof(target))
    {
        return;
    }
    std::memcpy(target, text, length + 1);
    if (table)
    {
        table->SetString(key, target, 1);
    }
}

void WriteText(Tessel::KVTable table, const char* key, const char* text)
{
    if (table && *text != '\0')
    {
        table->SetString(key, text, 1);
    }
}

} // namespace

int NodeDefTable::ImportHead(const GenericValue& head)
{
    ERROR_RETURN(head.IsObject(), 0);
    const unsigned int enterNode = ReadUInt(head, JSON_HeadEnterNode);
    const unsigned int version = ReadUInt(head, JSON_HeadVersion);
    if (version > 1)
    {
        ImportIdentity(head);
    }
    const unsigned int value84 = version > 2 ? ReadUInt(head, JSON_HeadValue84) : 0;
    const unsigned int substateRoot = version > 2 ? ReadUInt(head, JSON_HeadSubstateRoot) : 0;
    PrintHead(head, substateRoot);
    ERROR_RETURN(enterNode, 0);
    SetEnterNode(enterNode);
    substateRootId = substateRoot;
    headValue84 = value84;
    return 1;
}

void NodeDefTable::ImportIdentity(const GenericValue& head)
{
    const char* guidText = ReadText(head, JSON_GUID);
    if (guidText != nullptr && *guidText != '\0')
    {
        StoreIdentity(guid, guidText, kvTable, kGuidKey);
    }
    // Required: without a build id of its own a machine shows its GUID as the build id.
    const GenericValue* build = FindMember(head, JSON_HeadBuildID);
    const char* buildText = build == nullptr ? guidText : ReadText(*build);
    if (buildText != nullptr)
    {
        StoreIdentity(buildId, buildText, kvTable, kBuildKey);
    }
}

void NodeDefTable::PrintHead(const GenericValue& head, unsigned int substateRoot) const
{
    LogStream(LogPlain) << "\n\nHSM Entry Information" << EndLine;
    LogStream(LogPlain) << "---------------------\n\n" << EndLine;
    LogStream(LogInfo) << "HSM_ID:\t\t\t" << ReadUInt(head, JSON_ID) << EndLine;
    LogStream(LogInfo) << "HSM_EnterLayerID:\t" << ReadUInt(head, JSON_HeadEnterLayer) << EndLine;
    LogStream(LogInfo) << "SubstateRootID:    " << substateRoot << EndLine;
    LogStream(LogInfo) << "HSM_EnterNodeID:\t" << ReadUInt(head, JSON_HeadEnterNode) << EndLine;
    LogStream(LogInfo) << "HSM_Type:\t\t\t" << ReadText(head, JSON_HeadMachineType) << EndLine;
    LogStream(LogInfo) << "HSM_GUID:\t\t\t" << guid << EndLine;
    LogStream(LogInfo) << "HSM_BuildID:\t\t" << buildId << EndLine;
    LogStream(LogPlain) << "\n\n" << EndLine;
}

void NodeDefTable::SetEnterNode(unsigned int id)
{
    enterNodeId = id;
    // Required: an entry node that does not exist is only a line. The load continues.
    if (Find(id) == nullptr)
    {
        LogStream(LogError) << "Entry Node doesn't exist: " << id << EndLine;
    }
}

int NodeDefTable::ImportGlobal(const GenericValue& globals, HSMAlloc* alloc)
{
    ERROR_RETURN(globals.IsArray(), 0);
    // Required: a node that cannot be created ends the loop, not the load.
    int result = 1;
    for (const GenericValue& node : globals.GetArray())
    {
        ERROR_BREAK(node.IsObject());
        BaseDef* def = CreateNodeDef(node, alloc);
        ERROR_BREAK(def);
        ERROR_BREAK(InsertNode(def));
        if (def->GetType() == DefTypeGlobal)
        {
            // Required: only this section sets it. A global node in a layer does not count.
            globalNodeId = def->GetID();
        }
    }
    return result;
}

int NodeDefTable::ImportSkel(const GenericValue& skeleton, HSMAlloc* alloc)
{
    ERROR_RETURN(alloc, 0);
    ERROR_RETURN(skeleton.IsObject(), 0);
    // Required: a missing file name does not fail the section.
    ImportSkel_ModelFileName(skeleton, alloc);
    ImportSkel_SkeletonFileName(skeleton, alloc);
    if (const GenericValue* value = FindMember(skeleton, JSON_SkeletonValue89))
    {
        skelValue89 = ReadUInt(*value);
    }
    return 1;
}

int NodeDefTable::ImportSkel_ModelFileName(const GenericValue& skeleton, HSMAlloc* alloc)
{
    ERROR_RETURN(FindMember(skeleton, JSON_ModelFileName) != nullptr, 0);
    const char* text = ReadText(skeleton, JSON_ModelFileName);
    ERROR_RETURN(text == nullptr || *text != '\0', 0);
    const std::size_t length = text == nullptr ? 0 : std::strlen(text);
    modelFileName = alloc == nullptr ? nullptr : AllocText(*alloc, length);
    ERROR_RETURN(modelFileName, 0);
    ERROR_RETURN(text, 0);
    std::memcpy(modelFileName, text, length);
    WriteText(kvTable, kModelKey, modelFileName);
    return 1;
}

int NodeDefTable::ImportSkel_SkeletonFileName(const GenericValue& skeleton, HSMAlloc* alloc)
{
    ERROR_RETURN(FindMember(skeleton, JSON_SkeletonFileName) != nullptr, 0);
    const char* text = ReadText(skeleton, JSON_SkeletonFileName);
    ERROR_RETURN(text == nullptr || *text != '\0', 0);
    const std::size_t length = text == nullptr ? 0 : std::strlen(text);
    skeletonFileName = alloc == nullptr ? nullptr : AllocText(*alloc, length);
    ERROR_RETURN(skeletonFileName, 0);
    ERROR_RETURN(text, 0);
    std::memcpy(skeletonFileName, text, length);
    WriteText(kvTable, kSkeletonKey, skeletonFileName);
    return 1;
}

} // namespace vell
