// VELL: data-driven hierarchical state machines.
// transitions/ConditionFloatDef.cpp: loading and evaluating of float conditions.
#include "transitions/ConditionFloatDef.h"

#include <vell/ParameterDef.h>

#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "transitions/Comparison.h"
#include "transitions/ConditionOperand.h"

#include <cstring>

namespace vell
{

int ConditionFloatDef::Init(const GenericValue& node, HSMAlloc* alloc)
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
        target = static_cast<float>(low);
        rangeHigh = static_cast<float>(high);
    }
    else
    {
        target = ReadFloat(*operand);
    }
    return 1;
}

void ConditionFloatDef::Uninit()
{
    boundValue = nullptr;
}

bool ConditionFloatDef::Evaluate(HSM*)
{
    if (boundValue == nullptr)
    {
        return false;
    }
    // Required: the parameter may be of another class; its first bytes are then compared as they
    // are.
    float value;
    std::memcpy(&value, boundValue, sizeof(value));
    return Compare(evaluation, value, target, rangeHigh);
}

bool ConditionFloatDef::ParameterBind()
{
    // Required: this is the one class that does not report a missing parameter here.
    // Required: without a parameter the condition keeps the binding it had.
    if (parameter != nullptr)
    {
        boundValue = static_cast<const float*>(parameter->GetValuePtr());
    }
    return true;
}

} // namespace vell
