// VELL: data-driven hierarchical state machines.
// transitions/ConditionDef.cpp: what all conditions read and share.
#include <durm/DURMBaseLib.h>
#include <vell/ConditionDef.h>

#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

namespace vell
{

BaseDef* ConditionDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ConditionDef* def = nullptr;
    do
    {
        ASSERT_BREAK(node.IsObject() && alloc != nullptr);
        switch (DURMBaseLib::GetParameterTypeByName(ReadText(node, JSON_ConditionType)))
        {
        case DURMBaseLib::PARAM_Bool:
            def = PlaceDef<ConditionDefBool>(alloc, DefTypeCondition, DefTypesCondition);
            break;
        case DURMBaseLib::PARAM_Integer:
            def = PlaceDef<ConditionDefInteger>(alloc, DefTypeCondition, DefTypesCondition);
            break;
        case DURMBaseLib::PARAM_Float:
            def = PlaceDef<ConditionFloatDef>(alloc, DefTypeCondition, DefTypesCondition);
            break;
        case DURMBaseLib::PARAM_Message:
            def = PlaceDef<ConditionDefMessage>(alloc, DefTypeCondition, DefTypesCondition);
            break;
        default:
            break;
        }
    } while (false);
    if (def != nullptr)
    {
        // Conditions are in no tree, and there are as many as transitions: their tables are created
        // only for those that ask. A host's own class gets its table at once, whatever its type.
        def->isTableLate = true;
    }
    return def;
}

int ConditionDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    int result = 0;
    do
    {
        ASSERT_BREAK(node.IsObject() && alloc != nullptr);
        // Required: each class runs a failed Init of this one twice, so failing common members are
        // read four times.
        ERROR_BREAK(BaseDef::Init(node, alloc));
        const char* operatorName = ReadText(node, JSON_ConditionEvaluation);
        ERROR_BREAK(operatorName);
        // Required: an unknown operator is stored, and the condition never holds.
        evaluation = DURMBaseLib::GetEvaluationEnum(operatorName);
        const unsigned int parameterNumber = ReadUInt(node, JSON_ConditionParameter);
        ERROR_BREAK(parameterNumber != 0);
        parameterID = parameterNumber;
        result = 1;
    } while (false);
    return result;
}

void ConditionDef::SetParameter(ParameterDef* newParameter)
{
    if (newParameter == nullptr)
    {
        LogStream(LogWarning) << "Parameter definition is NULL" << EndLine;
    }
    parameter = newParameter;
}

} // namespace vell
