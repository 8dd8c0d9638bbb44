// VELL: data-driven hierarchical state machines.
// parameters/ParameterTableCreate.cpp: parameters made while the machine runs.
#include "parameters/ParameterTable.h"

#include "foundation/Checks.h"
#include "foundation/TreeKeys.h"

#include <vell/HSMAlloc.h>
#include <vell/Parameters.h>

#include <durm/DURMBaseLib.h>

#include <algorithm>
#include <new>
#include <string>
#include <utility>

namespace vell
{

int ParameterTable::CreateFloatParameter(const char* name, float value, IParameterFloatDef** out)
{
    int result = 0;
    do
    {
        ERROR_BREAK(out);
        if (!IsNewName(name))
        {
            *out = nullptr;
            break;
        }
        auto* def = new ParameterFloatDef;
        KeepRuntimeParameter(def, name);
        def->SetDefaultValue(value);
        def->SetValue(value);
        ERROR_BREAK(def->InitKVTable());
        result = PublishRuntimeParameter(def);
        *out = result ? def : nullptr;
    } while (false);
    return result;
}

int ParameterTable::CreateBoolParameter(const char* name, bool value, IParameterBoolDef** out)
{
    int result = 0;
    do
    {
        ERROR_BREAK(out);
        if (!IsNewName(name))
        {
            *out = nullptr;
            break;
        }
        auto* def = new ParameterBoolDef;
        KeepRuntimeParameter(def, name);
        def->SetDefaultValue(value);
        def->SetValue(value);
        ERROR_BREAK(def->InitKVTable());
        result = PublishRuntimeParameter(def);
        *out = result ? def : nullptr;
    } while (false);
    return result;
}

int ParameterTable::CreateIntParameter(const char* name, int value, IParameterIntDef** out)
{
    int result = 0;
    do
    {
        ERROR_BREAK(out);
        if (!IsNewName(name))
        {
            *out = nullptr;
            break;
        }
        auto* def = new ParameterIntegerDef;
        KeepRuntimeParameter(def, name);
        def->SetDefaultValue(value);
        def->SetValue(value);
        ERROR_BREAK(def->InitKVTable());
        result = PublishRuntimeParameter(def);
        *out = result ? def : nullptr;
    } while (false);
    return result;
}

int ParameterTable::CreateMessageParameter(const char* name, const char* text,
                                           IParameterMessageDef** out)
{
    int result = 0;
    do
    {
        ERROR_BREAK(out);
        if (!IsNewName(name))
        {
            *out = nullptr;
            break;
        }
        auto* def = new (std::nothrow) ParameterMessageDef;
        ERROR_BREAK(def);
        KeepRuntimeParameter(def, name);
        // Required: unlike a message from a document, this one starts with its text.
        def->SetDefaultValue(text == nullptr ? "" : text);
        def->ResetValue();
        ERROR_BREAK(def->InitKVTable());
        result = PublishRuntimeParameter(def);
        *out = result ? def : nullptr;
    } while (false);
    return result;
}

bool ParameterTable::IsNewName(const char* name)
{
    return name != nullptr && GetParameterID(name) == 0;
}

void ParameterTable::KeepRuntimeParameter(ParameterDef* def, const char* name)
{
    std::unique_ptr<ParameterDef> owner(def);
    std::string text(name);
    def->SetName(name);
    def->SetID(DURMBaseLib::ConvertStringToCRC(text));
    if (arena == nullptr)
    {
        ownParameters.push_back(std::move(owner));
        return;
    }
    arena->DeleteLater(def);
    owner.release();
}

int ParameterTable::PublishRuntimeParameter(ParameterDef* def)
{
    if (Tessel::KVTable defTable = def->GetKVTable())
    {
        defTable->SetInt(kDynamicKey, 1, 1);
        defTable->SetString(kNameKey, def->GetName(), 1);
    }
    if (AddParameter(def))
    {
        return 1;
    }
    if (arena != nullptr)
    {
        arena->DeleteNow(def);
        return 0;
    }
    const auto isDef = [def](const std::unique_ptr<ParameterDef>& own)
    {
        return own.get() == def;
    };
    ownParameters.erase(std::find_if(ownParameters.begin(), ownParameters.end(), isDef));
    return 0;
}

} // namespace vell
