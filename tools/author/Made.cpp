// VELL: data-driven hierarchical state machines.
// tools/author/Made.cpp: building, writing and comparing values.
#include "tools/author/Made.h"

#include <algorithm>
#include <utility>

namespace vell::author
{
namespace
{

using source::Kind;

void Append(const Made& value, std::string* text)
{
    const char* separator = "";
    if (value.kind == Kind::Object)
    {
        *text += '{';
        for (const MadeMember& member : value.members)
        {
            *text += separator + Quoted(member.name) + ":";
            Append(member.value, text);
            separator = ",";
        }
        *text += '}';
    }
    else if (value.kind == Kind::Array)
    {
        *text += '[';
        for (const Made& element : value.elements)
        {
            *text += separator;
            Append(element, text);
            separator = ",";
        }
        *text += ']';
    }
    else
    {
        *text += value.json;
    }
}

/// Tells whether two scalars say the same: "1.0" and "1" are the same number to a reader of
/// numbers, but not to one of integers, so they differ.
bool IsSameScalar(const std::string& left, const std::string& right)
{
    if (left == right)
    {
        return true;
    }
    const source::Text a = source::ReadText(left);
    const source::Text b = source::ReadText(right);
    if (a.root.kind != b.root.kind)
    {
        return false;
    }
    switch (a.root.kind)
    {
    case Kind::String:
        return a.root.text == b.root.text;
    case Kind::Double:
        return a.root.number == b.root.number;
    case Kind::Int:
    case Kind::UInt:
        return a.root.bits == b.root.bits;
    default:
        return a.root.boolean == b.root.boolean;
    }
}

} // namespace

std::string Quoted(std::string_view text)
{
    static const char* const kHex = "0123456789abcdef";
    std::string quoted = "\"";
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
        {
            quoted += '\\';
            quoted += c;
        }
        else if (c == '\n' || c == '\t')
        {
            quoted += c == '\n' ? "\\n" : "\\t";
        }
        else if (byte < 0x20)
        {
            quoted += "\\u00";
            quoted += kHex[byte >> 4u];
            quoted += kHex[byte & 15u];
        }
        else
        {
            quoted += c;
        }
    }
    return quoted + '"';
}

Made Made::Object(const Origin& origin)
{
    Made made;
    made.kind = Kind::Object;
    made.origin = origin;
    return made;
}

Made Made::Array(const Origin& origin)
{
    Made made;
    made.kind = Kind::Array;
    made.origin = origin;
    return made;
}

Made Made::Text(std::string_view text, const Origin& origin)
{
    return Raw(Quoted(text), origin);
}

Made Made::Flag(bool flag, const Origin& origin)
{
    return Raw(flag ? "true" : "false", origin);
}

Made Made::Id(std::uint64_t number, const Origin& origin)
{
    return Raw(std::to_string(number), origin);
}

Made Made::Raw(std::string json, const Origin& origin)
{
    Made made;
    made.json = std::move(json);
    made.origin = origin;
    return made;
}

Made Made::Copy(const std::string& bytes, const source::Value& value, std::size_t file)
{
    const Origin origin{file, value.span, true};
    if (value.IsObject())
    {
        Made made = Object(origin);
        for (const source::Member& member : value.members)
        {
            if (!member.isRepeated)
            {
                made.members.push_back({member.name, Copy(bytes, member.value, file)});
            }
        }
        return made;
    }
    if (value.IsArray())
    {
        Made made = Array(origin);
        for (const source::Value& element : value.elements)
        {
            made.Add(Copy(bytes, element, file));
        }
        return made;
    }
    const source::Span& span = value.span;
    return Raw(bytes.substr(span.begin.offset, span.end.offset - span.begin.offset), origin);
}

Made& Made::Set(std::string_view name, Made value)
{
    for (MadeMember& member : members)
    {
        if (member.name == name)
        {
            member.value = std::move(value);
            return member.value;
        }
    }
    members.push_back({std::string(name), std::move(value)});
    return members.back().value;
}

void Made::Remove(std::string_view name)
{
    members.erase(std::remove_if(members.begin(), members.end(),
                                 [name](const MadeMember& member)
                                 {
                                     return member.name == name;
                                 }),
                  members.end());
}

Made& Made::Add(Made element)
{
    elements.push_back(std::move(element));
    return elements.back();
}

const Made* Made::Find(std::string_view name) const
{
    for (const MadeMember& member : members)
    {
        if (member.name == name)
        {
            return &member.value;
        }
    }
    return nullptr;
}

std::string ToJson(const Made& value)
{
    std::string text;
    Append(value, &text);
    return text;
}

bool IsSame(const Made& left, const Made& right)
{
    if (left.kind != right.kind || left.members.size() != right.members.size() ||
        left.elements.size() != right.elements.size())
    {
        return false;
    }
    for (const MadeMember& member : left.members)
    {
        const Made* other = right.Find(member.name);
        if (other == nullptr || !IsSame(member.value, *other))
        {
            return false;
        }
    }
    for (std::size_t i = 0; i < left.elements.size(); ++i)
    {
        if (!IsSame(left.elements[i], right.elements[i]))
        {
            return false;
        }
    }
    return left.kind != Kind::Null || IsSameScalar(left.json, right.json);
}

} // namespace vell::author
