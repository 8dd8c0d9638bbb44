// VELL: data-driven hierarchical state machines.
// definitions/JsonReader.cpp: the one place that calls the parser's accessors.
#include "definitions/JsonReader.h"

#include <cstdint>
#include <cstring>
#include <string_view>

namespace vell
{
namespace
{

/// The members' names with their lengths, so that a look-up does not measure them each time.
class MemberNames
{
public:
    MemberNames()
    {
        for (int number = 0; number < kCount; ++number)
        {
            const char* name = DURMBaseLib::GetJsonName(static_cast<__JSONTYPES__>(number));
            names[number] = name == nullptr ? std::string_view() : std::string_view(name);
        }
    }

    std::string_view operator[](__JSONTYPES__ member) const
    {
        return member >= 0 && member < kCount ? names[member] : std::string_view();
    }

private:
    static constexpr int kCount = 256;
    std::string_view names[kCount];
};

const GenericValue* Find(const GenericValue& object, std::string_view name)
{
    if (!object.IsObject() || name.data() == nullptr)
    {
        return nullptr;
    }
    // Most members of a node have another length than the one that is looked for, or begin with
    // another letter.
    const auto end = object.MemberEnd();
    for (auto member = object.MemberBegin(); member != end; ++member)
    {
        if (member->name.GetStringLength() != name.size())
        {
            continue;
        }
        const char* text = member->name.GetString();
        if (name.empty() ||
            (text[0] == name[0] && std::memcmp(text, name.data(), name.size()) == 0))
        {
            return &member->value;
        }
    }
    return nullptr;
}

const GenericValue& NullValue()
{
    static const GenericValue null;
    return null;
}

} // namespace

const GenericValue* FindMember(const GenericValue& object, __JSONTYPES__ member)
{
    static const MemberNames names;
    return Find(object, names[member]);
}

const GenericValue* FindMember(const GenericValue& object, const char* member)
{
    return Find(object, member == nullptr ? std::string_view() : std::string_view(member));
}

const GenericValue& GetMember(const GenericValue& object, __JSONTYPES__ member)
{
    const GenericValue* found = FindMember(object, member);
    return found == nullptr ? NullValue() : *found;
}

const GenericValue& GetMember(const GenericValue& object, const char* member)
{
    const GenericValue* found = FindMember(object, member);
    return found == nullptr ? NullValue() : *found;
}

const GenericValue& GetFirstElement(const GenericValue& array)
{
    return array.IsArray() && !array.Empty() ? array[0] : NullValue();
}

const char* ReadText(const GenericValue& value)
{
    return value.IsString() ? value.GetString() : nullptr;
}

unsigned int ReadUInt(const GenericValue& value)
{
    std::uint64_t bits = 0;
    if (value.IsUint64())
    {
        bits = value.GetUint64();
    }
    else if (value.IsInt64())
    {
        bits = static_cast<std::uint64_t>(value.GetInt64());
    }
    else if (value.IsDouble())
    {
        const double number = value.GetDouble();
        std::memcpy(&bits, &number, sizeof(bits));
    }
    return static_cast<unsigned int>(bits & 0xffffffffu);
}

int ReadInt(const GenericValue& value)
{
    return static_cast<int>(ReadUInt(value));
}

bool ReadBool(const GenericValue& value)
{
    return value.IsTrue();
}

double ReadDouble(const GenericValue& value)
{
    return value.IsNumber() ? value.GetDouble() : 0.0;
}

float ReadFloat(const GenericValue& value)
{
    return static_cast<float>(ReadDouble(value));
}

const char* ReadText(const GenericValue& object, __JSONTYPES__ member)
{
    return ReadText(GetMember(object, member));
}

unsigned int ReadUInt(const GenericValue& object, __JSONTYPES__ member)
{
    return ReadUInt(GetMember(object, member));
}

} // namespace vell
