// VELL: data-driven hierarchical state machines.
// tools/author/Made.h: a JSON value that is being made, and knows what it is made from.
#pragma once

#include "tools/author/Source.h"
#include "tools/source/Value.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vell::author
{

struct MadeMember;

/// One value of a document that is being written, or of a source.
class Made
{
public:
    static Made Object(const Origin& origin = {});
    static Made Array(const Origin& origin = {});
    static Made Text(std::string_view text, const Origin& origin = {});
    static Made Flag(bool flag, const Origin& origin = {});
    static Made Id(std::uint64_t number, const Origin& origin = {});
    /// A number, a word or a text with its quotes, as it is to be written.
    static Made Raw(std::string json, const Origin& origin = {});
    /// A value of a text that was read, as it is written there but for white space and comments. Of
    /// two members of one name the first is taken, as the library does.
    static Made Copy(const std::string& bytes, const source::Value& value, std::size_t file = 0);

    /// Sets a member; one of the same name is replaced where it is.
    Made& Set(std::string_view name, Made value);
    void Remove(std::string_view name);
    Made& Add(Made element);

    const Made* Find(std::string_view name) const;
    bool IsEmpty() const
    {
        return members.empty() && elements.empty();
    }

    source::Kind kind = source::Kind::Null; ///< Object, Array, or Null for all else
    std::string json;                       ///< of all else, as it is to be written
    std::vector<MadeMember> members;
    std::vector<Made> elements;
    Origin origin;
};

struct MadeMember
{
    std::string name;
    Made value;
};

/// Gives the text of a value, on one line.
std::string ToJson(const Made& value);
/// Gives a text in quotes, escaped as JSON.
std::string Quoted(std::string_view text);

/// Tells whether two values say the same: members in any order, texts and numbers by their values.
bool IsSame(const Made& left, const Made& right);

} // namespace vell::author
