// VELL: data-driven hierarchical state machines.
// parameters/ParameterTableCreate.cpp: parameters made while the machine runs.
#include <durm/DURMBaseLib.h>
#include <vell/Parameters.h>

#include "foundation/Checks.h"
#include "foundation/TreeKeys.h"
#include "parameters/ParameterTable.h"
#include "parameters/RuntimeParameters.h"

#include <memory>
#include <new>
#include <string>
#include <utility>

namespace vell
{
namespace
{

void Name(ParameterDef& def, const char* name)
{
    std::string text(name);
    def.SetName(name);
    def.SetID(DURMBaseLib::ConvertStringToCRC(text));
}

} // namespace

int ParameterTable::CreateFloatParameter(const char* name, float value, IParameterFloatDef** out)
{
    ERROR_RETURN(out, 0);
    if (!IsNewName(name))
    {
        *out = nullptr;
        return 0;
    }
    auto def = std::make_unique<ParameterFloatDef>();
    Name(*def, name);
    def->SetDefaultValue(value);
    def->SetValue(value);
    ERROR_RETURN(def->InitKVTable(), 0);
    ParameterFloatDef* created = def.get();
    const int result = Publish(std::move(def));
    *out = result ? created : nullptr;
    return result;
}

int ParameterTable::CreateBoolParameter(const char* name, bool value, IParameterBoolDef** out)
{
    ERROR_RETURN(out, 0);
    if (!IsNewName(name))
    {
        *out = nullptr;
        return 0;
    }
    auto def = std::make_unique<ParameterBoolDef>();
    Name(*def, name);
    def->SetDefaultValue(value);
    def->SetValue(value);
    ERROR_RETURN(def->InitKVTable(), 0);
    ParameterBoolDef* created = def.get();
    const int result = Publish(std::move(def));
    *out = result ? created : nullptr;
    return result;
}

int ParameterTable::CreateIntParameter(const char* name, int value, IParameterIntDef** out)
{
    ERROR_RETURN(out, 0);
    if (!IsNewName(name))
    {
        *out = nullptr;
        return 0;
    }
    auto def = std::make_unique<ParameterIntegerDef>();
    Name(*def, name);
    def->SetDefaultValue(value);
    def->SetValue(value);
    ERROR_RETURN(def->InitKVTable(), 0);
    ParameterIntegerDef* created = def.get();
    const int result = Publish(std::move(def));
    *out = result ? created : nullptr;
    return result;
}

int ParameterTable::CreateMessageParameter(const char* name, const char* text,
                                           IParameterMessageDef** out)
{
    ERROR_RETURN(out, 0);
    if (!IsNewName(name))
    {
        *out = nullptr;
        return 0;
    }
    std::unique_ptr<ParameterMessageDef> def(new (std::nothrow) ParameterMessageDef);
    ERROR_RETURN(def.get(), 0);
    Name(*def, name);
    // Required: unlike a message from a document, this one starts with its text.
    def->SetDefaultValue(text == nullptr ? "" : text);
    def->ResetValue();
    ERROR_RETURN(def->InitKVTable(), 0);
    ParameterMessageDef* created = def.get();
    const int result = Publish(std::move(def));
    *out = result ? created : nullptr;
    return result;
}

bool ParameterTable::IsNewName(const char* name)
{
    // Required: a name that is taken is refused without a line.
    return name != nullptr && GetParameterID(name) == 0;
}

int ParameterTable::Publish(std::unique_ptr<ParameterDef> owned)
{
    if (Tessel::KVTable defTable = owned->GetKVTable())
    {
        defTable->SetInt(kDynamicKey, 1, 1);
        defTable->SetString(kNameKey, owned->GetName(), 1);
    }
    ParameterDef* def = RuntimeParameters::Keep(std::move(owned));
    int result = 0;
    try
    {
        // Required: conditions that name the parameter stay unbound until the host calls
        // BindParamCond.
        result = AddParameter(def);
    }
    catch (...)
    {
        if (FindParameter(def->GetID()) != def)
        {
            RuntimeParameters::Delete(def);
        }
        throw;
    }
    if (!result)
    {
        RuntimeParameters::Delete(def);
    }
    return result;
}

} // namespace vell
