// VELL: data-driven hierarchical state machines.
// transitions/ConditionOperand.cpp: reading what a condition compares with.
#include "transitions/ConditionOperand.h"

#include "document/JsonReader.h"
#include "document/NumberText.h"

namespace vell
{

const GenericValue* FindOperand(const GenericValue& node)
{
    const GenericValue& first = GetFirstElement(GetMember(node, JSON_ConditionValue));
    return first.IsObject() ? &GetMember(first, JSON_Value) : nullptr;
}

int ReadRange(const char* text, double* low, double* high)
{
    double bounds[2];
    if (!ReadNumbers(text, bounds, 2))
    {
        return 0;
    }
    const bool inOrder = !(bounds[1] < bounds[0]);
    *low = inOrder ? bounds[0] : bounds[1];
    *high = inOrder ? bounds[1] : bounds[0];
    return 1;
}

} // namespace vell
