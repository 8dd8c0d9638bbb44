// VELL: data-driven hierarchical state machines.
// platform/tessel/ElementArray.cpp: the array part of a table.
#include "platform/tessel/ElementArray.h"

#include <algorithm>

namespace Tessel
{

int Element::GetValueType() const
{
    return ValueType_UInt;
}

int Element::GetIntValue() const
{
    return static_cast<int>(value);
}

float Element::GetFloatValue() const
{
    return static_cast<float>(value);
}

const char* Element::GetStringValue() const
{
    return nullptr;
}

int Element::GetFloat2Value(Float2*) const
{
    return 0;
}

int Element::GetFloat3Value(Float3*) const
{
    return 0;
}

unsigned Element::GetUIntValue() const
{
    return value;
}

bool ElementArray::RemoveAt(unsigned index)
{
    if (index >= count)
    {
        return false;
    }
    const auto first = order.begin();
    const auto removed = first + static_cast<std::ptrdiff_t>(index);
    std::rotate(removed, removed + 1, first + static_cast<std::ptrdiff_t>(count));
    --count;
    return true;
}

Element* ElementArray::GetAt(unsigned index) const
{
    return index < count ? order[index] : nullptr;
}

void ElementArray::AddSpares()
{
    const std::size_t have = order.size();
    const std::size_t add = std::max<std::size_t>(4, have / 2);
    order.reserve(have + add);
    blocks.push_back(std::make_unique<Element[]>(add));
    for (std::size_t i = 0; i < add; ++i)
    {
        order.push_back(&blocks.back()[i]);
    }
}

} // namespace Tessel
