// VELL: data-driven hierarchical state machines.
// tools/source/Value.h: a JSON value that knows where it is in its text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vell::source
{

/// A place in a text.
struct Place
{
    std::uint32_t line = 1;   ///< from 1
    std::uint32_t column = 1; ///< from 1, in characters; a tab is one
    std::uint32_t offset = 0; ///< in bytes
};

/// A piece of a text: `end` is just behind its last character.
struct Span
{
    Place begin;
    Place end;
};

enum class Kind : std::uint8_t
{
    Null,
    Bool,
    Int,    ///< a negative whole number that fits 64 bits
    UInt,   ///< any other whole number that fits 64 bits
    Double, ///< any other number: with a fraction, with an exponent, or too large
    String,
    Array,
    Object
};

struct Member;

/// One value of a document. What does not belong to its kind is empty or 0.
class Value
{
public:
    Kind kind = Kind::Null;
    bool boolean = false;
    Span span;                   ///< with the quotes or brackets
    std::string text;            ///< of a String: decoded; of a number: as written
    double number = 0.0;         ///< of a number of any kind
    std::uint64_t bits = 0;      ///< of Int and UInt: the number; of Int as two's complement
    std::vector<Member> members; ///< of an Object, in the order of the text
    std::vector<Value> elements; ///< of an Array

    bool IsNumber() const
    {
        return kind == Kind::Int || kind == Kind::UInt || kind == Kind::Double;
    }
    /// True for a number without fraction and exponent that fits 64 bits.
    bool IsInteger() const
    {
        return kind == Kind::Int || kind == Kind::UInt;
    }
    bool IsString() const
    {
        return kind == Kind::String;
    }
    bool IsBool() const
    {
        return kind == Kind::Bool;
    }
    bool IsArray() const
    {
        return kind == Kind::Array;
    }
    bool IsObject() const
    {
        return kind == Kind::Object;
    }

    /// Gives what the library reads where an id or an integer belongs: the low 32 bits of a whole
    /// number or of the double of any other number, 0 for all else.
    std::uint32_t ReadUInt() const;

    /// Gives the value of the first member of that name, as the library does; null when this is
    /// not an object or has no such member.
    const Value* Find(std::string_view name) const;
    /// The same, with the name's place.
    const Member* FindMember(std::string_view name) const;
};

/// A name and its value.
struct Member
{
    std::string name;        ///< decoded
    Span nameSpan;           ///< with the quotes
    bool isRepeated = false; ///< an earlier member of the object has its name: this one is not read
    Value value;
};

} // namespace vell::source
