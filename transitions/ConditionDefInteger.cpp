// VELL: data-driven hierarchical state machines.
// transitions/ConditionDefInteger.cpp: loading and evaluating of integer conditions.
#include "transitions/ConditionDefInteger.h"

#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "transitions/ConditionOperand.h"
#include "document/NumberText.h"

#include <vell/ParameterDef.h>

#include <cstring>

namespace vell
{

int ConditionDefInteger::Init(const GenericValue& node, HSMAlloc* alloc)
{
    int result = 0;
    do
    {
        ERROR_BREAK(ConditionDef::Init(node, alloc));
        ERROR_BREAK(GetMember(node, JSON_ConditionValue).IsArray());
        const GenericValue* operand = FindOperand(node);
        ERROR_BREAK(operand != nullptr);
        if (evaluation == EvaluateInRange)
        {
            double low = 0.0;
            double high = 0.0;
            ERROR_BREAK(ReadRange(ReadText(*operand), &low, &high));
            target = TruncateToInt(low);
            rangeHigh = TruncateToInt(high);
        }
        else
        {
            target = ReadInt(*operand);
        }
        result = 1;
    } while (false);
    return result;
}

void ConditionDefInteger::Uninit()
{
    boundValue = nullptr;
}

bool ConditionDefInteger::Evaluate(HSM*)
{
    if (boundValue == nullptr)
    {
        return false;
    }
    // The parameter may be of another class; its first bytes are then compared as they are.
    int value;
    std::memcpy(&value, boundValue, sizeof(value));
    switch (evaluation)
    {
    case EvaluateEqual:
        return value == target;
    case EvaluateNotEqual:
        return value != target;
    case EvaluateGreater:
        return value > target;
    case EvaluateGreaterOrEqual:
        return value >= target;
    case EvaluateLess:
        return value < target;
    case EvaluateLessOrEqual:
        return value <= target;
    case EvaluateInRange:
        return value >= target && value <= rangeHigh;
    default:
        return false;
    }
}

bool ConditionDefInteger::ParameterBind()
{
    do
    {
        ERROR_BREAK(parameter);
        boundValue = static_cast<const int*>(parameter->GetValuePtr());
    } while (false);
    return true;
}

} // namespace vell
