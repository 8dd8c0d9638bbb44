// VELL: data-driven hierarchical state machines.
// definitions/BaseDef.cpp: making, reading and releasing a node definition.
#include <durm/DURMBaseLib.h>
#include <vell/BaseDef.h>

#include "definitions/BaseDefInternals.h"
#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/ArenaMemory.h"
#include "foundation/Checks.h"

#include <cstring>

namespace vell
{

BaseDef::BaseDef() = default;

BaseDef::BaseDef(const char* newName) : name(newName)
{
}

BaseDef::BaseDef(const char* newName, unsigned int newId, unsigned int newParentId)
    : name(newName), id(newId), parentId(newParentId)
{
}

BaseDef::BaseDef(const BaseDef& other) : BaseDef()
{
    *this = other;
}

BaseDef& BaseDef::operator=(const BaseDef& other)
{
    Internals::CountChange(*this);
    // A condition's table may not be there yet: the two share it from now on.
    const Tessel::KVTable shared = other.GetKVTable();
    if (tableState == TableState::Open && kvTable != shared)
    {
        arenaLink.CloseLater(kvTable);
    }
    kvTable = shared;
    name = other.name;
    type = other.type;
    builderType = other.builderType;
    id = other.id;
    parentId = other.parentId;
    index = other.index;
    exitConnector = other.exitConnector;
    flags = other.flags;
    isTableLate = other.isTableLate;
    tableState = other.tableState;
    scriptName = other.scriptName;
    numChildren = other.numChildren;
    childIds = other.childIds;
    numAttribs = other.numAttribs;
    attribs = other.attribs;
    numExecute = other.numExecute;
    executeActions = other.executeActions;
    numEnter = other.numEnter;
    enterActions = other.enterActions;
    numExit = other.numExit;
    exitActions = other.exitActions;
    reserved = other.reserved;
    return *this;
}

BaseDef::~BaseDef()
{
    Internals::CountChange(*this);
    BaseDef::Uninit();
    name = nullptr;
    id = 0;
    parentId = 0;
    exitConnector = 0;
    index = -1;
}

BaseDef* BaseDef::Create(const GenericValue&, HSMAlloc* alloc)
{
    BaseDef* def = PlaceDef<BaseDef>(alloc, DefTypeBase, DefTypeBase);
    ERROR_RETURN(def, nullptr);
    return def;
}

int BaseDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    Internals::CountChange(*this);
    // Required: a repeated Init creates a new table and leaves the old one open; whoever holds the
    // old handle still reads it. The arena closes it at its end.
    if (kvTable && tableState != TableState::Closed && alloc != nullptr)
    {
        alloc->CloseLater(kvTable);
    }
    kvTable = Tessel::KVTable();
    tableState = isTableLate ? TableState::Due : TableState::Open;
    if (!isTableLate)
    {
        CreateKVTable();
    }

    int result = 0;
    do
    {
        ERROR_BREAK(alloc);
        ERROR_BREAK(node.IsObject());
        const Members members(node);
        name = ReadText(members.Get(JSON_Name));
        id = ReadUInt(members.Get(JSON_ID));
        parentId = ReadUInt(members.Get(JSON_ParentID));
        if (const GenericValue* connector = members.Find(JSON_ExitConnector))
        {
            exitConnector = ReadUInt(*connector);
        }
        // Required: a bad attribute array does not fail the node; it keeps the attributes that were
        // made.
        Init_Attribs(node, alloc);
        if (const GenericValue* builder = members.Find(JSON_BuilderType))
        {
            builderType =
                static_cast<__DURM_BUILDERS__>(DURMBaseLib::GetBuilderIndex(ReadText(*builder)));
        }

        scriptName = nullptr;
        const GenericValue* script = members.Find(JSON_ScriptName);
        const char* scriptText = script == nullptr ? nullptr : ReadText(*script);
        if (script != nullptr && (scriptText == nullptr || *scriptText != '\0'))
        {
            const std::size_t length = scriptText == nullptr ? 0 : std::strlen(scriptText);
            scriptName = AllocText(*alloc, length);
            ERROR_BREAK(scriptName);
            ERROR_BREAK(scriptText);
            std::memcpy(scriptName, scriptText, length);
        }

        if (const GenericValue* children = members.Find(JSON_Children))
        {
            ERROR_BREAK(children->IsArray());
            numChildren = children->Size();
            if (numChildren != 0)
            {
                childIds = AllocArray<unsigned int>(*alloc, numChildren);
                ERROR_BREAK(childIds);
                for (unsigned int i = 0; i < numChildren; ++i)
                {
                    const unsigned int child = ReadUInt((*children)[i]);
                    ERROR_GOTO(child != 0, done);
                    StoreElement(childIds, i, child);
                }
            }
        }
        result = 1;
    } while (false);

done:
    if (result)
    {
        LogStream(LogInfo) << "Created new BaseDef: " << GetName() << EndLine;
    }
    else
    {
        // Required: after an early failure this is the name that the definition had before.
        LogStream(LogError) << "Failed to create new BaseDef: " << GetName() << EndLine;
    }
    return result;
}

void BaseDef::Uninit()
{
    if (childIds != nullptr)
    {
        numChildren = 0;
    }
    DestroyActions(&executeActions);
    DestroyActions(&exitActions);
    DestroyActions(&enterActions);
    numExecute = 0;
    numEnter = 0;
    numExit = 0;
    Uninit_Attribs();
    DestroyKVTable();
}

const char* BaseDef::GetName()
{
    return name;
}

unsigned int BaseDef::GetID()
{
    return id;
}

unsigned int BaseDef::GetParentID()
{
    return parentId;
}

eHSMDefTypes BaseDef::GetType()
{
    return type;
}

const char* BaseDef::GetScriptName()
{
    return scriptName;
}

void BaseDef::SetFlags(unsigned int newFlags)
{
    flags = newFlags;
}

unsigned int BaseDef::GetFlags() const
{
    return flags;
}

void BaseDef::SetName(const char* newName)
{
    name = newName;
}

void BaseDef::SetID(unsigned int newId)
{
    id = newId;
}

void BaseDef::SetParent(unsigned int newParentId)
{
    parentId = newParentId;
}

void BaseDef::SetType(eHSMDefTypes newType)
{
    type = newType;
}

void BaseDef::SetIndex(int newIndex)
{
    index = newIndex;
}

int BaseDef::GetIndex() const
{
    return index;
}

__DURM_BUILDERS__ BaseDef::GetBuilderType() const
{
    return builderType;
}

unsigned int BaseDef::GetExitConnector() const
{
    return exitConnector;
}

unsigned int BaseDef::GetNumChildren() const
{
    return numChildren;
}

unsigned int BaseDef::GetChildID(unsigned int i) const
{
    return childIds == nullptr ? 0 : LoadElement(childIds, i);
}

} // namespace vell
