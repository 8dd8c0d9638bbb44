// VELL: data-driven hierarchical state machines.
// document/JsonReader.h: the rules by which a document's members are read.
#pragma once

#include <vell/Json.h>
#include <vell/Types.h>

#include <rapidjson/document.h>

#include <cstdint>

namespace vell
{

/// The numbers of members are below this.
constexpr int kVocabularySize = 256;

// Every read of a document goes through these. None fails: what is missing reads as the shared null
// value, and a value of another type as told with each.

/// Gives the member, or null when there is none or `object` is no object.
const GenericValue* FindMember(const GenericValue& object, __JSONTYPES__ member);
const GenericValue* FindMember(const GenericValue& object, const char* member);

/// Gives the member, or the shared null value.
const GenericValue& GetMember(const GenericValue& object, __JSONTYPES__ member);
const GenericValue& GetMember(const GenericValue& object, const char* member);

/// The members of one object, found by name in one pass over them: for reading many. Of two members
/// of one name the first counts, as above. The object must outlive this.
class Members
{
public:
    explicit Members(const GenericValue& indexedObject);

    /// Gives the member, or null when there is none. `member` is one of the vocabulary.
    const GenericValue* Find(__JSONTYPES__ member) const
    {
        const unsigned int position = positions[member];
        return position != 0 ? &first[position - 1].value : FindBehind(member);
    }
    /// Gives the member, or the shared null value.
    const GenericValue& Get(__JSONTYPES__ member) const;

private:
    static constexpr unsigned int kMaxIndexed = 255; ///< members behind these are looked up by name

    const GenericValue* FindBehind(__JSONTYPES__ member) const
    {
        return isLarge ? FindMember(object, member) : nullptr;
    }

    const GenericValue& object;
    const GenericValue::Member* first = nullptr;
    bool isLarge = false;
    std::uint8_t positions[kVocabularySize] = {}; ///< by number: counted from 1, 0 for none
};

/// Gives the first element of an array, or the shared null value.
const GenericValue& GetFirstElement(const GenericValue& array);

/// Gives the text in place in the document; null for any other type.
const char* ReadText(const GenericValue& value);
/// Gives the low 32 bits of a number in whatever form it is: of a real number those of its
/// double. 0 for any other type.
unsigned int ReadUInt(const GenericValue& value);
int ReadInt(const GenericValue& value);
/// True for the literal true alone.
bool ReadBool(const GenericValue& value);
/// Gives a number of any form through a double; 0 for any other type.
double ReadDouble(const GenericValue& value);
float ReadFloat(const GenericValue& value);

/// The same, of a member.
const char* ReadText(const GenericValue& object, __JSONTYPES__ member);
unsigned int ReadUInt(const GenericValue& object, __JSONTYPES__ member);

} // namespace vell
