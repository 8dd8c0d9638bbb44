// VELL: data-driven hierarchical state machines.
// tools/vell/Context.cpp: saving, checking and restoring of contexts.
#include "tools/vell/Context.h"

#include "foundation/TreeKeys.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/TreeJson.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

namespace vell::tool
{
namespace
{

/// Returns an error message about the array `key` of a context, or an empty text.
std::string CheckArray(const rapidjson::Value& context, const char* key)
{
    const auto member = context.FindMember(key);
    if (member == context.MemberEnd() || !member->value.IsArray())
    {
        return std::string("\"") + key + "\" is missing or not an array";
    }
    for (const rapidjson::Value& element : member->value.GetArray())
    {
        if (!element.IsUint())
        {
            return std::string("\"") + key + "\" has an element that is not an id";
        }
    }
    return "";
}

std::string CheckContext(const rapidjson::Value& context)
{
    if (!context.IsObject())
    {
        return "not a JSON object";
    }
    for (const char* key : {kMainStackKey, kBlipStackKey})
    {
        std::string fault = CheckArray(context, key);
        if (!fault.empty())
        {
            return fault;
        }
    }
    for (const char* key : {kNextStateKey, kPreviousStateKey, kTransitionKey})
    {
        const auto member = context.FindMember(key);
        if (member == context.MemberEnd() || !member->value.IsUint())
        {
            return std::string("\"") + key + "\" is missing or not an id";
        }
    }
    return "";
}

/// Returns an error message about the first id of a recorded stack that could not be restored, or
/// an empty text.
std::string CheckStack(Tessel::KVTable recorded, const std::vector<SMState*>& stack)
{
    const unsigned int count = static_cast<unsigned int>(stack.size());
    return count < recorded->GetCount()
               ? "the document has no state " +
                     std::to_string(recorded->GetValueAt(count)->GetUIntValue())
               : "";
}

} // namespace

std::string SaveContext(const ObservedMachine& machine)
{
    return TreeToJson(machine.GetKVTable()->GetTable(kContextKey));
}

std::string RestoreContext(ObservedMachine& machine, const std::string& json)
{
    std::string fault;
    const Tessel::KVTable context = ContextFromJson(json, &fault);
    if (!context)
    {
        return fault;
    }
    machine.SetContextInfo(context);
    fault = CheckStack(context->GetTable(kMainStackKey), machine.MainStack());
    if (fault.empty())
    {
        fault = CheckStack(context->GetTable(kBlipStackKey), machine.BlipStack());
    }
    Tessel::CloseTable(context);
    return fault;
}

Tessel::KVTable ContextFromJson(const std::string& json, std::string* fault)
{
    rapidjson::Document context;
    context.Parse(json.c_str());
    *fault = context.HasParseError() ? std::string("invalid JSON: ") +
                                           rapidjson::GetParseError_En(context.GetParseError())
                                     : CheckContext(context);
    if (!fault->empty())
    {
        return Tessel::KVTable();
    }
    Tessel::KVTable table = Tessel::CreateTable(kContextKey);
    for (const char* key : {kMainStackKey, kBlipStackKey})
    {
        Tessel::KVTable array = table->AddTable(key, 1);
        for (const rapidjson::Value& id : context[key].GetArray())
        {
            array->PushUInt(id.GetUint(), 1);
        }
    }
    for (const char* key : {kNextStateKey, kPreviousStateKey, kTransitionKey})
    {
        table->SetUInt(key, context[key].GetUint(), 1);
    }
    return table;
}

} // namespace vell::tool
