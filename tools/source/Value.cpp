// VELL: data-driven hierarchical state machines.
// tools/source/Value.cpp: the questions that a value answers.
#include "tools/source/Value.h"

#include <cstring>

namespace vell::source
{

std::uint32_t Value::ReadUInt() const
{
    std::uint64_t all = bits;
    if (kind == Kind::Double)
    {
        std::memcpy(&all, &number, sizeof(all));
    }
    return static_cast<std::uint32_t>(all & 0xffffffffu);
}

const Value* Value::Find(std::string_view name) const
{
    const Member* member = FindMember(name);
    return member == nullptr ? nullptr : &member->value;
}

const Member* Value::FindMember(std::string_view name) const
{
    for (const Member& member : members)
    {
        if (member.name == name)
        {
            return &member;
        }
    }
    return nullptr;
}

} // namespace vell::source
