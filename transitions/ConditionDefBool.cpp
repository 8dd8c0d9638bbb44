// VELL: data-driven hierarchical state machines.
// transitions/ConditionDefBool.cpp: loading and evaluating of bool conditions.
#include "transitions/ConditionDefBool.h"

#include <vell/ParameterDef.h>

#include "document/JsonReader.h"
#include "foundation/Checks.h"
#include "transitions/ConditionOperand.h"

#include <cstring>

namespace vell
{

int ConditionDefBool::Init(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(ConditionDef::Init(node, alloc), 0);
    ERROR_RETURN(GetMember(node, JSON_ConditionValue).IsArray(), 0);
    const GenericValue* operand = FindOperand(node);
    ERROR_RETURN(operand != nullptr, 0);
    target = ReadBool(*operand);
    return 1;
}

void ConditionDefBool::Uninit()
{
    boundValue = nullptr;
}

bool ConditionDefBool::Evaluate(HSM*)
{
    if (boundValue == nullptr)
    {
        return false;
    }
    // Required: one byte is compared. A parameter of another class may hold neither 0 nor 1 in it.
    // Required: the operator is not looked at. The test is always for equality.
    unsigned char byte = 0;
    std::memcpy(&byte, boundValue, sizeof(byte));
    return byte == (target ? 1 : 0);
}

bool ConditionDefBool::ParameterBind()
{
    do
    {
        // Required: without a parameter the condition keeps the binding it had.
        ERROR_BREAK(parameter);
        boundValue = static_cast<const bool*>(parameter->GetValuePtr());
    } while (false);
    return true;
}

} // namespace vell
