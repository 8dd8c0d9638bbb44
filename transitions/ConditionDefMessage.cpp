// VELL: data-driven hierarchical state machines.
// transitions/ConditionDefMessage.cpp: loading and evaluating of message conditions.
#include "transitions/ConditionDefMessage.h"

#include <vell/Parameters.h>

#include "document/JsonReader.h"
#include "foundation/ArenaMemory.h"
#include "foundation/Checks.h"
#include "transitions/ConditionOperand.h"

#include <cstring>

namespace vell
{

int ConditionDefMessage::Init(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), 0);
    ERROR_RETURN(alloc, 0);
    ERROR_RETURN(ConditionDef::Init(node, alloc), 0);
    ERROR_RETURN(GetMember(node, JSON_ConditionValue).IsArray(), 0);
    const GenericValue* operand = FindOperand(node);
    ERROR_RETURN(operand != nullptr, 0);
    const char* text = ReadText(*operand);
    ERROR_RETURN(text, 0);
    const std::size_t length = std::strlen(text);
    ERROR_RETURN(length != 0, 0);
    target = AllocText(*alloc, length);
    ERROR_RETURN(target, 0);
    std::memcpy(target, text, length + 1);
    return 1;
}

// Required: unlike the other classes, this one keeps its binding.
void ConditionDefMessage::Uninit()
{
}

bool ConditionDefMessage::Evaluate(HSM*)
{
    // Required: the operator is not looked at. The test is always for equality, up to the first
    // null character.
    // There is no target after an Init that found no space for it.
    return boundValue != nullptr && target != nullptr &&
           std::strcmp(boundValue->c_str(), target) == 0;
}

bool ConditionDefMessage::ParameterBind()
{
    do
    {
        // Required: without a parameter the condition keeps the binding it had.
        ERROR_BREAK(parameter);
        // A parameter of another class holds no text: the condition then stays unbound.
        const bool isMessage = dynamic_cast<ParameterMessageDef*>(parameter) != nullptr;
        boundValue =
            isMessage ? static_cast<const std::string*>(parameter->GetValuePtr()) : nullptr;
    } while (false);
    return true;
}

} // namespace vell
