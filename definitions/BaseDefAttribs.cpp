// VELL: data-driven hierarchical state machines.
// definitions/BaseDefAttribs.cpp: the attributes of a definition.
#include <vell/BaseDef.h>
#include <vell/HSMAlloc.h>

#include "definitions/AttribDefs.h"
#include "definitions/AttribTypes.h"
#include "document/DataMembers.h"
#include "document/JsonReader.h"
#include "document/NumberText.h"
#include "document/VectorWidth.h"
#include "foundation/Checks.h"
#include "foundation/TextCompare.h"
#include "foundation/TreeKeys.h"

namespace vell
{
namespace
{

/// Places the attribute class of a parameter type in the arena. Null when there is no space.
AttribBase* PlaceAttrib(int type, HSMAlloc& alloc)
{
    switch (type)
    {
    case DURMBaseLib::PARAM_Bool:
        return alloc.New<AttribDefBool>();
    case DURMBaseLib::PARAM_Integer:
        return alloc.New<AttribDefInteger>();
    case DURMBaseLib::PARAM_Float:
        return alloc.New<AttribDefFloat>();
    case DURMBaseLib::PARAM_Float2:
        return alloc.New<AttribDefFloat2>();
    case DURMBaseLib::PARAM_Float3:
        return alloc.New<AttribDefFloat3>();
    case DURMBaseLib::PARAM_Float4:
        return alloc.New<AttribDefFloat4>();
    default:
        return alloc.New<AttribDefString>();
    }
}

/// Gives the parameter type of an attribute type name, or 0.
int FindAttribType(const char* typeName)
{
    for (const AttribType& entry : kAttribTypes)
    {
        if (EqualsIgnoringCase(typeName, entry.name))
        {
            return entry.type;
        }
    }
    return 0;
}

void SetFirstValue(AttribBase& attrib, const GenericValue& value, const float* vector)
{
    switch (attrib.GetDefaultType())
    {
    case DURMBaseLib::PARAM_Bool:
        return attrib.SetValue(ReadBool(value));
    case DURMBaseLib::PARAM_Integer:
        return attrib.SetValue(ReadInt(value));
    case DURMBaseLib::PARAM_Float:
        return attrib.SetValue(ReadFloat(value));
    case DURMBaseLib::PARAM_Float2:
        return attrib.SetValue(Tessel::Float2{vector[0], vector[1]});
    case DURMBaseLib::PARAM_Float3:
        return attrib.SetValue(Tessel::Float3{vector[0], vector[1], vector[2]});
    case DURMBaseLib::PARAM_Float4:
        return attrib.SetValue(Tessel::Float4{vector[0], vector[1], vector[2], vector[3]});
    default:
        return attrib.SetValue(ReadText(value));
    }
}

} // namespace

int BaseDef::Init_Attribs(const GenericValue& node, HSMAlloc* alloc)
{
    const GenericValue* array = FindMember(node, JSON_Attributes);
    if (array == nullptr)
    {
        return 1;
    }
    ERROR_RETURN(array->IsArray(), 0);
    numAttribs = array->Size();
    int result = 1;
    for (const GenericValue& element : array->GetArray())
    {
        result = 0;
        ERROR_BREAK(Init_Attrib(element, alloc));
        result = 1;
    }
    return result;
}

int BaseDef::Init_Attrib(const GenericValue& element, HSMAlloc* alloc)
{
    ERROR_RETURN(element.IsObject(), 0);
    // Required: an attribute without its data, or without a type in it, is skipped without a line.
    const GenericValue* array = FindMember(element, kAttribDataMember);
    if (array == nullptr)
    {
        return 1;
    }
    ERROR_RETURN(array->IsArray(), 0);
    const GenericValue& data = GetFirstElement(*array);
    ERROR_RETURN(data.IsObject(), 0);
    const GenericValue* typeMember = FindMember(data, JSON_AttributeType);
    if (typeMember == nullptr)
    {
        return 1;
    }
    const char* typeName = ReadText(*typeMember);
    const int attribType = FindAttribType(typeName);
    if (attribType == 0)
    {
        LogStream(LogError) << typeName << " isn't implemented for this sprint (yet)" << EndLine;
        return 0;
    }
    AttribBase* attrib = alloc == nullptr ? nullptr : PlaceAttrib(attribType, *alloc);
    ERROR_RETURN(attrib, 0);

    const int width = VectorWidth(attribType);
    float vector[4] = {};
    if (width != 0)
    {
        const GenericValue* text = FindMember(data, JSON_Value);
        ERROR_RETURN(text != nullptr, 0);
        ERROR_RETURN(ReadNumbers(ReadText(*text), vector, width), 0);
    }
    SetFirstValue(*attrib, GetMember(data, JSON_Value), vector);

    attrib->SetName(ReadText(element, JSON_Name));
    attrib->InitKVTableListener();
    const bool inserted = attribs.emplace(attrib->GetName(), attrib).second;
    // Required: a refused attribute still listens to its table.
    ERROR_RETURN(inserted, 0);
    ERROR_RETURN(TabAddAttrib(attrib), 0);
    return 1;
}

int BaseDef::Uninit_Attribs()
{
    for (const auto& entry : attribs)
    {
        Uninit_Attrib(entry.second);
    }
    return 1;
}

int BaseDef::Uninit_Attrib(AttribBase* attrib)
{
    if (attrib != nullptr)
    {
        attrib->UnInitKVTableListener();
    }
    return 1;
}

int BaseDef::TabAddAttrib(AttribBase* attrib)
{
    if (attrib == nullptr)
    {
        return 1;
    }
    const Tessel::KVTable table = GetKVTable();
    const Tessel::KVTable children = table ? table->GetTable(kAttribsKey) : Tessel::KVTable();
    const Tessel::KVTable attribTable = attrib->GetKVTable();
    if (attribTable)
    {
        attribTable->SetUInt(kNodeIdKey, id, 1);
    }
    if (children)
    {
        children->AttachTable(attrib->GetName(), attribTable, 1);
    }
    return 1;
}

AttribBase* BaseDef::GetAttrib(const char* attribName)
{
    // Required: a hit by the address of the name does not end the search; the last equal name in
    // the order of addresses wins.
    const auto hit = attribs.find(attribName);
    AttribBase* found = hit == attribs.end() ? nullptr : hit->second;
    for (const auto& entry : attribs)
    {
        if (EqualsText(entry.first, attribName))
        {
            found = entry.second;
        }
    }
    return found;
}

} // namespace vell
