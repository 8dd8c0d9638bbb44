// VELL: data-driven hierarchical state machines.
// parameters/ParameterTableLoad.cpp: the parameters of a document.
#include <durm/DURMBaseLib.h>
#include <vell/HSMAlloc.h>
#include <vell/Parameters.h>

#include "document/DataMembers.h"
#include "document/JsonReader.h"
#include "document/NumberText.h"
#include "document/VectorWidth.h"
#include "foundation/Checks.h"
#include "parameters/ParameterTable.h"

namespace vell
{
namespace
{

/// Places the class of a parameter type in the arena. Null when there is no space.
ParameterDef* PlaceParameter(int type, HSMAlloc& alloc)
{
    switch (type)
    {
    case DURMBaseLib::PARAM_Bool:
        return alloc.New<ParameterBoolDef>();
    case DURMBaseLib::PARAM_Integer:
        return alloc.New<ParameterIntegerDef>();
    case DURMBaseLib::PARAM_Float:
        return alloc.New<ParameterFloatDef>();
    case DURMBaseLib::PARAM_Float2:
        return alloc.New<ParameterAnalogDef>();
    case DURMBaseLib::PARAM_Float3:
        return alloc.New<ParameterFloat3Def>();
    case DURMBaseLib::PARAM_Float4:
        return alloc.New<ParameterFloat4Def>();
    default:
        return alloc.New<ParameterMessageDef>();
    }
}

template <class T, class Value>
void SetBoth(ParameterDef& def, const Value& value)
{
    auto& typed = static_cast<T&>(def);
    // Required: no SetDefaultValue touches the value or the tree, so both are set.
    typed.SetDefaultValue(value);
    typed.SetValue(value);
}

/// Gives the parameter its default and its first current value.
void SetFirstValue(ParameterDef& def, int type, const GenericValue& value, const float* vector)
{
    switch (type)
    {
    case DURMBaseLib::PARAM_Bool:
        return SetBoth<ParameterBoolDef>(def, ReadBool(value));
    case DURMBaseLib::PARAM_Integer:
        return SetBoth<ParameterIntegerDef>(def, ReadInt(value));
    case DURMBaseLib::PARAM_Float:
        return SetBoth<ParameterFloatDef>(def, ReadFloat(value));
    case DURMBaseLib::PARAM_Float2:
        return SetBoth<ParameterAnalogDef>(def, Tessel::Float2{vector[0], vector[1]});
    case DURMBaseLib::PARAM_Float3:
        return SetBoth<ParameterFloat3Def>(def, Tessel::Float3{vector[0], vector[1], vector[2]});
    case DURMBaseLib::PARAM_Float4:
        return SetBoth<ParameterFloat4Def>(
            def, Tessel::Float4{vector[0], vector[1], vector[2], vector[3]});
    default:
        break;
    }
    // Required: a message from a document starts empty and takes its text when it is fired.
    const char* text = ReadText(value);
    auto& message = static_cast<ParameterMessageDef&>(def);
    message.SetDefaultValue(text == nullptr ? "" : text);
    message.SetValue("");
}

/// Gives the class of a binding number.
int AssignClass(int binding)
{
    if (binding >= 2 && binding <= 7)
    {
        return 4;
    }
    const bool first = binding >= 10 && binding <= 23;
    const bool second = binding >= 26 && binding <= 51;
    return first || second ? 1 : 0;
}

} // namespace

int ParameterTable::Init(const GenericValue& array, HSMAlloc* alloc)
{
    arena = alloc;
    do
    {
        // Required: this fails where there is a table, so a table cannot be initialised twice.
        ERROR_BREAK(CreateKVTable());
        ERROR_BREAK(alloc);
        ERROR_BREAK(array.IsArray());
        for (const GenericValue& node : array.GetArray())
        {
            ERROR_GOTO(node.IsObject(), failed);
            ParameterDef* def = CreateParameterDef(node, alloc);
            ERROR_GOTO(def, failed);
            // Required: a parameter whose id or name is taken is logged and left out; the load goes
            // on.
            AddParameter(def);
        }
        return 1;
    } while (false);

failed:
    Uninit();
    return 0;
}

ParameterDef* ParameterTable::CreateParameterDef(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ASSERT_BREAK(alloc != nullptr);
        ASSERT_BREAK(node.IsObject());
        const unsigned int id = ReadUInt(node, JSON_ID);
        const char* typeName = ReadText(node, JSON_ParameterType);
        const int type = DURMBaseLib::GetParameterName(typeName);
        const int binding = DURMBaseLib::GetAssignName(ReadText(node, JSON_ParameterAssign));

        ParameterDef* def = nullptr;
        do
        {
            ASSERT_BREAK(type >= DURMBaseLib::PARAM_Bool && type <= DURMBaseLib::PARAM_Message);
            ParameterDef* placed = PlaceParameter(type, *alloc);
            ERROR_BREAK(placed);
            // Required: a failing Init runs twice.
            ERROR_BREAK(placed->Init(node, alloc));
            const GenericValue& defaultMember = GetMember(node, JSON_ParameterDefault);
            const int width = VectorWidth(type);
            float vector[4] = {};
            if (width != 0)
            {
                ERROR_BREAK(defaultMember.IsArray());
                const char* text =
                    ReadText(GetMember(GetFirstElement(defaultMember), kVectorDataMember));
                ERROR_BREAK(ReadNumbers(text, vector, width));
            }
            PlaceValue(*placed, type);
            SetFirstValue(*placed, type, defaultMember, vector);
            LogStream(LogInfo) << typeName << EndLine;
            def = placed;
        } while (false);
        // Required: this is a second line for any failure above, an unknown type included.
        ERROR_BREAK(def);

        def->SetID(id);
        def->SetParamType(type);
        def->SetAssign(binding);
        def->resetEachFrame = ReadBool(GetMember(node, JSON_ParameterResetEachFrame));
        def->SetAssignClass(AssignClass(binding));
        const GenericValue* name = FindMember(node, JSON_Name);
        ERROR_BREAK(name != nullptr);
        def->SetName(ReadText(*name));
        def->InitKVTable();
        return def;
    } while (false);
    return nullptr;
}

} // namespace vell
