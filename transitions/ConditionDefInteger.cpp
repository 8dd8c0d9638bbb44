// VELL: data-driven hierarchical state machines.
// transitions/ConditionDefInteger.cpp: loading and evaluating of integer conditions.
#include "transitions/ConditionDefInteger.h"

#include <vell/ParameterDef.h>

#include "document/JsonReader.h"
#include "document/NumberText.h"
#include "foundation/Checks.h"
#include "transitions/Comparison.h"
#include "transitions/ConditionOperand.h"

#include <cstring>

namespace vell
{

int ConditionDefInteger::Init(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(ConditionDef::Init(node, alloc), 0);
    ERROR_RETURN(GetMember(node, JSON_ConditionValue).IsArray(), 0);
    const GenericValue* operand = FindOperand(node);
    ERROR_RETURN(operand != nullptr, 0);
    if (evaluation == EvaluateInRange)
    {
        double low = 0.0;
        double high = 0.0;
        ERROR_RETURN(ReadRange(ReadText(*operand), &low, &high), 0);
        target = TruncateToInt(low);
        rangeHigh = TruncateToInt(high);
    }
    else
    {
        target = ReadInt(*operand);
    }
    return 1;
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
    // Required: the parameter may be of another class; its first bytes are then compared as they
    // are.
    int value;
    std::memcpy(&value, boundValue, sizeof(value));
    return Compare(evaluation, value, target, rangeHigh);
}

bool ConditionDefInteger::ParameterBind()
{
    do
    {
        // Required: without a parameter the condition keeps the binding it had.
        ERROR_BREAK(parameter);
        boundValue = static_cast<const int*>(parameter->GetValuePtr());
    } while (false);
    return true;
}

} // namespace vell
