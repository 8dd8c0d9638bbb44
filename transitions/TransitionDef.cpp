// VELL: data-driven hierarchical state machines.
// transitions/TransitionDef.cpp: loading and evaluating of transitions.
#include <vell/ConditionDef.h>
#include <vell/TransitionDef.h>

#include "definitions/BaseDefInternals.h"
#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/ArenaMemory.h"
#include "foundation/Checks.h"
#include "transitions/TriggerCall.h"

namespace vell
{

TransitionDef* TransitionDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), nullptr);
    TransitionDef* def = PlaceDef<TransitionDef>(alloc, DefTypeTransition, DefTypesTransition);
    ERROR_RETURN(def, nullptr);
    return def;
}

int TransitionDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    const Members members(node);
    members.Find(JSON_TransitionUnread); // looked up first, and nobody reads its value
    do
    {
        ERROR_BREAK(node.IsObject());
        const int baseResult = BaseDef::Init(node, alloc);
        ERROR_BREAK(baseResult);
        if (!InitConditions(members.Get(JSON_Conditions), alloc))
        {
            LogStream(LogWarning)
                << "Conditions failed / missing for transition: Ignoring this transition"
                << GetName() << EndLine;
            disabled = true;
        }
        targetID = ReadUInt(members.Get(JSON_TransitionTarget));
        parentId = ReadUInt(members.Get(JSON_TransitionSource));
        const GenericValue* tagMember = members.Find(JSON_TransitionTag);
        tag = tagMember == nullptr ? 0 : ReadInt(*tagMember);
        // Required: without `tag` the member `tagArgument` is not read.
        tagArgument = tagMember == nullptr ? 0 : ReadInt(members.Get(JSON_TransitionTagArgument));
        const GenericValue* priorityMember = members.Find(JSON_TransitionPriority);
        priority = priorityMember == nullptr ? 5 : ReadInt(*priorityMember);
        // Required: this undoes the disabling above. A transition whose conditions failed stays in
        // force with those created before the bad one, and with its triggers.
        // Required: one without conditions stays in force too, although the line says that it is
        // ignored.
        disabled = ReadBool(members.Get(JSON_TransitionDisabled));
        switchArgument = ReadFloat(members.Get(JSON_TransitionSwitchArgument));
        return 1;
    } while (false);
    Uninit();
    return 0;
}

int TransitionDef::InitConditions(const GenericValue& array, HSMAlloc* alloc)
{
    do
    {
        ERROR_BREAK(array.IsArray());
        conditionCount = array.Size();
        ERROR_BREAK(conditionCount);
        conditionArray =
            alloc == nullptr ? nullptr : AllocArray<ConditionDef*>(*alloc, conditionCount);
        ERROR_BREAK(conditionArray);
        conditions.reserve(conditionCount);
        for (unsigned int i = 0; i < conditionCount; ++i)
        {
            const GenericValue& element = array[i];
            ERROR_GOTO(element.IsObject(), failed);
            // What this factory gives is a condition of one of the four classes.
            auto* condition = static_cast<ConditionDef*>(ConditionDef::Create(element, alloc));
            ERROR_GOTO(condition, failed);
            ERROR_GOTO(condition->Init(element, alloc), failed);
            StoreElement(conditionArray, i, condition);
            conditions.push_back(condition);
        }
        return 1;
    } while (false);
    return 0;

failed:
    LogStream(LogError) << "An error occurred initilizing a condition" << EndLine;
    return 0;
}

int TransitionDef::RegisterCondition(Trigger trigger)
{
    ERROR_RETURN(trigger != nullptr, 0);
    // Required: a trigger that is registered twice is called twice.
    triggers.push_back(trigger);
    Internals::CountChange(*this);
    return 1;
}

int TransitionDef::HandleConditions(HSM* hsm)
{
    int result = 0;
    // Required: one condition that holds is enough.
    // By index, as the triggers: a host's condition may change the list.
    for (std::size_t i = 0; i < conditions.size(); ++i)
    {
        ConditionDef* condition = conditions[i];
        if (condition != nullptr && condition->Evaluate(hsm))
        {
            result = 1;
            break;
        }
    }
    // Required: triggers run even when a condition has settled the answer.
    for (std::size_t i = 0; i < triggers.size(); ++i)
    {
        // Required: a null trigger ends the loop with the result so far.
        ERROR_BREAK(triggers[i] != nullptr);
        // Required: the first trigger that returns true keeps the others from running.
        if (CallTrigger(triggers[i], hsm))
        {
            return 1;
        }
    }
    return result;
}

} // namespace vell
