// VELL: data-driven hierarchical state machines.
// tests/check/Mutation.cpp: the mistakes that are made.
#include "tests/check/Mutation.h"

#include <durm/DURMBaseLib.h>

#include "tools/source/Reader.h"

#include <vector>

namespace vell::test
{
namespace
{

using source::Value;

/// Tells whether other places name what this member says or contains.
bool IsNamedElsewhere(const std::string& member)
{
    using namespace DURMBaseLib;
    for (const __JSONTYPES__ named :
         {JSON_ID, JSON_Name, JSON_Nodes, JSON_Layers, JSON_Parameters, JSON_Global})
    {
        if (member == GetJsonName(named))
        {
            return true;
        }
    }
    return false;
}

/// An object or array that is not empty.
std::vector<const Value*> FindContainers(const Value& root)
{
    std::vector<const Value*> found;
    std::vector<const Value*> open{&root};
    while (!open.empty())
    {
        const Value& value = *open.back();
        open.pop_back();
        if (!value.members.empty() || !value.elements.empty())
        {
            found.push_back(&value);
        }
        for (const source::Member& member : value.members)
        {
            open.push_back(&member.value);
        }
        for (const Value& element : value.elements)
        {
            open.push_back(&element);
        }
    }
    return found;
}

class Maker
{
public:
    Maker(const std::string& documentText, std::mt19937& randomSource)
        : text(documentText), random(randomSource)
    {
    }

    Mutated Make()
    {
        const source::Text read = source::ReadText(text);
        const std::vector<const Value*> containers = FindContainers(read.root);
        const Value& container = *containers[Below(containers.size())];
        made.text = text;
        container.IsObject() ? ChangeMember(container) : ChangeElement(container);
        made.object = container.span;
        made.object.end.offset += static_cast<std::uint32_t>(made.text.size() - text.size());
        return made;
    }

private:
    std::size_t Below(std::size_t limit)
    {
        return random() % limit;
    }

    std::string OtherValue(const Value& value)
    {
        static const char* const kValues[] = {
            "null",        "true",      "false",        "0",        "1",          "-1",
            "7",           "1010",      "1000",         "2.5",      "4294967296", "\"\"",
            "\"0,1\"",     "[]",        "{}",           "[{}]",     "[0]",        "[1020]",
            "\"message\"", "\"range\"", "\"substate\"", "\"enter\""};
        const std::string written =
            text.substr(value.span.begin.offset, value.span.end.offset - value.span.begin.offset);
        switch (Below(6))
        {
        case 0:
            return value.IsString() ? written.substr(0, written.size() - 1) + "x\""
                                    : "\"" + (value.IsNumber() ? written : "x") + "\"";
        case 1:
            return value.IsNumber() ? std::to_string(value.ReadUInt() + 1) : "[" + written + "]";
        default:
            return kValues[Below(std::size(kValues))];
        }
    }

    void Replace(std::uint32_t begin, std::uint32_t end, const std::string& now)
    {
        made.text.replace(begin, end - begin, now);
    }

    void ChangeMember(const Value& object)
    {
        const std::size_t index = Below(object.members.size());
        const source::Member& member = object.members[index];
        made.isId = IsNamedElsewhere(member.name);
        const std::uint32_t begin = member.nameSpan.begin.offset;
        const std::uint32_t end = member.value.span.end.offset;
        const Value& value = member.value;
        switch (Below(5))
        {
        case 0:
            Remove(object.span, begin, end, index, object.members.size());
            return;
        case 1:
            Replace(member.nameSpan.end.offset - 1, member.nameSpan.end.offset, "s\"");
            return;
        case 2:
            Replace(begin, begin, "\"" + member.name + "\": " + OtherValue(value) + ", ");
            return;
        default:
            Replace(value.span.begin.offset, value.span.end.offset, OtherValue(value));
            return;
        }
    }

    void ChangeElement(const Value& array)
    {
        const std::size_t index = Below(array.elements.size());
        const source::Span& span = array.elements[index].span;
        made.isId = true; // A node that is gone, or written twice.
        switch (Below(3))
        {
        case 0:
            Remove(array.span, span.begin.offset, span.end.offset, index, array.elements.size());
            return;
        case 1:
            Replace(span.begin.offset, span.begin.offset,
                    text.substr(span.begin.offset, span.end.offset - span.begin.offset) + ", ");
            return;
        default:
            made.isId = false;
            Replace(span.begin.offset, span.end.offset, OtherValue(array.elements[index]));
            return;
        }
    }

    /// Removes one of `count`, with the comma behind or, of the last, before it.
    void Remove(const source::Span& container, std::uint32_t begin, std::uint32_t end,
                std::size_t index, std::size_t count)
    {
        if (count == 1)
        {
            Replace(container.begin.offset + 1, container.end.offset - 1, "");
        }
        else if (index + 1 < count)
        {
            Replace(begin, static_cast<std::uint32_t>(text.find(',', end)) + 1, "");
        }
        else
        {
            Replace(static_cast<std::uint32_t>(text.rfind(',', begin)), end, "");
        }
    }

    const std::string& text;
    std::mt19937& random;
    Mutated made;
};

} // namespace

Mutated Mutate(const std::string& text, std::mt19937& random)
{
    return Maker(text, random).Make();
}

} // namespace vell::test
