// VELL: data-driven hierarchical state machines.
// machine/HSMParameters.cpp: how a machine's parameters reach conditions and the host.
#include <vell/ConditionDef.h>
#include <vell/HSM.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>
#include <vell/TransitionDef.h>

#include "definitions/AttribDefs.h"
#include "definitions/NodeDefTable.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

#include <algorithm>
#include <typeinfo>

namespace vell
{
namespace
{

/// Gives the parameter as a message that answers to texts, or null. Type 7 does not.
ParameterMessageDef* FindMessage(ParameterTable* table, unsigned int id)
{
    ParameterDef* def = table == nullptr ? nullptr : table->FindParameter(id);
    // Required: a message of the text type receives a broadcast, but its text cannot be read.
    if (def == nullptr || def->GetParamType() != DURMBaseLib::PARAM_Message)
    {
        return nullptr;
    }
    return dynamic_cast<ParameterMessageDef*>(def);
}

void BindConditions(TransitionDef& transition, ParameterTable& table)
{
    for (std::size_t i = 0; i < transition.conditions.size(); ++i)
    {
        ConditionDef* condition = transition.conditions[i];
        if (condition != nullptr && condition->parameterID != 0)
        {
            condition->SetParameter(table.FindParameter(condition->parameterID));
            condition->ParameterBind();
        }
    }
}

} // namespace

void HSM::BindParamCond()
{
    if (nodeDefTable == nullptr || parameterTable == nullptr)
    {
        return;
    }
    internals->idle.revision.Raise();
    // The log callback and a host's definitions may change the lists, and empty the table.
    const unsigned int before = nodeDefTable->timesCleared;
    const NodeDefTable::NodeMap& nodes = nodeDefTable->nodes;
    // Required: as many ids are looked at as there are nodes. Refused nodes and those of a layer
    // that failed have ids in the list too, so the conditions of the last nodes stay unbound then.
    const std::size_t count = std::min(nodes.size(), nodeDefTable->nodeIds.size());
    NodeDefTable::NodeMap::const_iterator next = nodes.begin();
    for (std::size_t i = 0; i < count; ++i)
    {
        // Most ids are in the same order in both, so the next node is usually the right one.
        const unsigned int id = nodeDefTable->nodeIds[i];
        const bool isNext = next != nodes.end() && next->first == id;
        BaseDef* def = isNext ? (next++)->second : nodeDefTable->Find(id);
        const bool isTransition = def != nullptr && def->GetType() == DefTypeTransition;
        if (nodeDefTable->timesCleared != before)
        {
            return;
        }
        if (!isTransition)
        {
            continue;
        }
        // Nearly all are of this very class, for which the search of a cast is not needed.
        auto* transition = typeid(*def) == typeid(TransitionDef)
                               ? static_cast<TransitionDef*>(def)
                               : dynamic_cast<TransitionDef*>(def);
        if (transition == nullptr)
        {
            continue;
        }
        BindConditions(*transition, *parameterTable);
        if (nodeDefTable->timesCleared != before)
        {
            return;
        }
    }
}

unsigned int HSM::FindParameterByName(const char* name)
{
    return parameterTable == nullptr ? 0 : parameterTable->GetParameterID(name);
}

void HSM::BroadcastMessage(const char* name)
{
    if (parameterTable == nullptr)
    {
        return;
    }
    ParameterDef* def = parameterTable->FindParameter(FindParameterByName(name));
    // Required: the class decides, so a message of the text type receives a broadcast too.
    if (auto* message = dynamic_cast<ParameterMessageDef*>(def))
    {
        // Required: nothing clears the text after the tick. The message holds until its text is set
        // again.
        message->SetValue(message->GetDefaultValue());
    }
}

int HSM::GetParameterMessage(unsigned int id, const char** out)
{
    ParameterMessageDef* message = FindMessage(parameterTable, id);
    if (message == nullptr || out == nullptr)
    {
        return 0;
    }
    *out = static_cast<const std::string*>(message->GetValuePtr())->c_str();
    return 1;
}

int HSM::SetParameterMessage(unsigned int id, const char* text)
{
    ParameterMessageDef* message = FindMessage(parameterTable, id);
    if (message == nullptr)
    {
        return 0;
    }
    message->SetValue(text == nullptr ? "" : text);
    return 1;
}

int HSM::GetAttributeValue(const char* name, const char** out)
{
    const SMState* state = GetCurrentState();
    return state == nullptr ? 0 : state->GetAttrib(name, out);
}

int HSM::SetAttribValue(const char* name, const char* text)
{
    SMState* state = GetCurrentState();
    return state == nullptr ? 0 : state->SetAttrib(name, text);
}

int HSM::SetAttribValue(const char* name, void* value)
{
    SMState* state = GetCurrentState();
    return state == nullptr ? 0 : state->SetAttrib(name, value);
}

} // namespace vell
