// VELL: data-driven hierarchical state machines.
// document/JsonReader.cpp: the one place that calls the parser's accessors.
#include "document/JsonReader.h"

#include <durm/DURMBaseLib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <string_view>
#include <vector>

namespace vell
{
namespace
{

/// Every member that a document may have for this library, what most objects have first. The
/// vocabulary is asked for these alone.
constexpr __JSONTYPES__ kMembers[] = {
    JSON_Name,
    JSON_ID,
    JSON_ParentID,
    JSON_BuilderType,
    JSON_ConditionType,
    JSON_ConditionParameter,
    JSON_ConditionEvaluation,
    JSON_ConditionValue,
    JSON_TransitionPriority,
    JSON_TransitionSource,
    JSON_TransitionTarget,
    JSON_Conditions,
    JSON_Children,
    JSON_Attributes,
    JSON_GUID,
    JSON_ClipName,
    JSON_ClipFlag,
    JSON_ConnectorType,
    JSON_ParameterType,
    JSON_ParameterDefault,
    JSON_ParameterAssign,
    JSON_ParameterResetEachFrame,
    JSON_TransitionSwitchArgument,
    JSON_TransitionUnread,
    JSON_TransitionTagArgument,
    JSON_TransitionTag,
    JSON_TransitionDisabled,
    JSON_Parameters,
    JSON_Nodes,
    JSON_Skeleton,
    JSON_Layers,
    JSON_Value,
    JSON_AttributeType,
    JSON_SkeletonFileName,
    JSON_ModelFileName,
    JSON_EntryTarget,
    JSON_ExitConnector,
    JSON_ScriptName,
    JSON_Head,
    JSON_HeadEnterLayer,
    JSON_HeadEnterNode,
    JSON_HeadMachineType,
    JSON_HeadVersion,
    JSON_HeadValue84,
    JSON_HeadSubstateRoot,
    JSON_HeadMemory,
    JSON_Global,
    JSON_SkeletonValue89,
    JSON_SubstateEnter,
    JSON_SubstateExit,
    JSON_HeadBuildID,
    JSON_ClipSecondaryB,
    JSON_ClipSecondaryA,
};

template <class Word>
Word LoadWord(const char* from)
{
    Word word;
    std::memcpy(&word, from, sizeof(word));
    return word;
}

/// Tells whether the first and the last bytes of two names are equal, as many as a word has.
template <class Word>
bool HasSameEnds(const char* left, const char* right, std::size_t length)
{
    const std::size_t last = length - sizeof(Word);
    return LoadWord<Word>(left) == LoadWord<Word>(right) &&
           LoadWord<Word>(left + last) == LoadWord<Word>(right + last);
}

/// Tells whether two names of one length are equal. Most names are short, and need no call. The
/// table library compares its keys in the same way, but does not export that.
bool IsSameName(const char* left, const char* right, std::size_t length)
{
    if (length > 16)
    {
        return std::memcmp(left, right, length) == 0;
    }
    if (length >= 8)
    {
        return HasSameEnds<std::uint64_t>(left, right, length);
    }
    if (length >= 4)
    {
        return HasSameEnds<std::uint32_t>(left, right, length);
    }
    return length < 2 ? length == 0 || *left == *right
                      : HasSameEnds<std::uint16_t>(left, right, length);
}

/// The vocabulary: the members' names, by number and by length.
class Vocabulary
{
public:
    struct Word
    {
        std::string_view name;
        __JSONTYPES__ member;
        bool isShared; ///< with another member: possible in a vocabulary of a site's own
    };

    static const Vocabulary& Get()
    {
        static const Vocabulary vocabulary;
        return vocabulary;
    }

    std::string_view GetName(__JSONTYPES__ member) const
    {
        return member >= 0 && member < kVocabularySize ? names[member] : std::string_view();
    }

    /// Gives the members whose names have `length` characters: a handful.
    const std::vector<Word>& OfLength(std::size_t length) const
    {
        return byLength[std::min(length, byLength.size() - 1)];
    }

private:
    Vocabulary()
    {
        std::size_t longest = 0;
        std::map<std::string_view, int> uses;
        for (const __JSONTYPES__ member : kMembers)
        {
            if (const char* text = DURMBaseLib::GetJsonName(member))
            {
                names[member] = text;
                longest = std::max(longest, names[member].size());
                ++uses[names[member]];
            }
        }
        byLength.resize(longest + 2); // the last one is for names that are too long
        for (const __JSONTYPES__ member : kMembers)
        {
            const std::string_view name = names[member];
            if (name.data() != nullptr)
            {
                byLength[name.size()].push_back(Word{name, member, uses[name] > 1});
            }
        }
    }

    std::string_view names[kVocabularySize];
    std::vector<std::vector<Word>> byLength;
};

/// Tells whether `text`, which is as long as `name`, equals it. Most differ in their first letter.
bool IsName(const char* text, std::string_view name)
{
    return *text == *name.data() && IsSameName(text, name.data(), name.size());
}

const GenericValue* Find(const GenericValue& object, std::string_view name)
{
    if (!object.IsObject() || name.data() == nullptr)
    {
        return nullptr;
    }
    const auto end = object.MemberEnd();
    for (auto member = object.MemberBegin(); member != end; ++member)
    {
        if (member->name.GetStringLength() == name.size() && IsName(member->name.GetString(), name))
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
    return Find(object, Vocabulary::Get().GetName(member));
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

Members::Members(const GenericValue& indexedObject) : object(indexedObject)
{
    if (!object.IsObject() || object.MemberCount() == 0)
    {
        return;
    }
    const Vocabulary& vocabulary = Vocabulary::Get();
    first = &*object.MemberBegin();
    isLarge = object.MemberCount() > kMaxIndexed;
    const unsigned int count = isLarge ? kMaxIndexed : object.MemberCount();
    for (unsigned int i = 0; i < count; ++i)
    {
        const GenericValue& name = first[i].name;
        for (const Vocabulary::Word& word : vocabulary.OfLength(name.GetStringLength()))
        {
            if (!IsName(name.GetString(), word.name))
            {
                continue;
            }
            if (positions[word.member] == 0)
            {
                positions[word.member] = static_cast<std::uint8_t>(i + 1);
            }
            if (!word.isShared)
            {
                break;
            }
        }
    }
}

const GenericValue& Members::Get(__JSONTYPES__ member) const
{
    const GenericValue* found = Find(member);
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
        // Required: a real number gives the low 32 bits of its double, not its integer part. 5.0
        // reads as 0.
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
