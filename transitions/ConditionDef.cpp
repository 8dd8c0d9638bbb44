// VELL: data-driven hierarchical state machines.
// transitions/ConditionDef.cpp: what all conditions read and share.
#include <vell/ConditionDef.h>

#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "transitions/ConditionDefBool.h"
#include "transitions/ConditionDefInteger.h"
#include "transitions/ConditionDefMessage.h"
#include "transitions/ConditionFloatDef.h"

#include <durm/DURMBaseLib.h>

namespace vell
{

BaseDef* ConditionDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ASSERT_BREAK(node.IsObject() && alloc != nullptr);
        switch (DURMBaseLib::GetParameterTypeByName(ReadText(node, JSON_ConditionType)))
        {
        case DURMBaseLib::PARAM_Bool:
            return PlaceDef<ConditionDefBool>(alloc, DefTypeCondition, DefTypesCondition);
        case DURMBaseLib::PARAM_Integer:
            return PlaceDef<ConditionDefInteger>(alloc, DefTypeCondition, DefTypesCondition);
        case DURMBaseLib::PARAM_Float:
            return PlaceDef<ConditionFloatDef>(alloc, DefTypeCondition, DefTypesCondition);
        case DURMBaseLib::PARAM_Message:
            return PlaceDef<ConditionDefMessage>(alloc, DefTypeCondition, DefTypesCondition);
        default:
            break;
        }
    } while (false);
    return nullptr;
}

int ConditionDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    int result = 0;
    do
    {
        ASSERT_BREAK(node.IsObject() && alloc != nullptr);
        ERROR_BREAK(BaseDef::Init(node, alloc));
        const char* operatorName = ReadText(node, JSON_ConditionEvaluation);
        ERROR_BREAK(operatorName);
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
