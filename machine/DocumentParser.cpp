// VELL: data-driven hierarchical state machines.
// machine/DocumentParser.cpp: reading of files, and the guard against deep nesting.
#include "machine/DocumentParser.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace vell
{
namespace
{

/// A text nested deeper than this is parsed without recursion, so that no document exhausts the
/// stack.
constexpr unsigned int kMaxRecursion = 1000;

std::string ReadWholeFile(const char* path)
{
    struct Close
    {
        void operator()(std::FILE* file) const
        {
            std::fclose(file);
        }
    };
    std::string text;
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path, "rb"));
    if (file == nullptr)
    {
        return text;
    }
    std::size_t filled = 0;
    std::size_t read = 0;
    do
    {
        text.resize(filled < 32768 ? 65536 : filled * 2);
        read = std::fread(&text[filled], 1, text.size() - filled, file.get());
        filled += read;
    } while (read != 0);
    text.resize(filled);
    return text;
}

/// Marks characters, for walking over all others.
struct CharacterSet
{
    explicit constexpr CharacterSet(std::string_view characters)
    {
        for (const char c : characters)
        {
            marks[static_cast<unsigned char>(c)] = true;
        }
    }

    /// Gives the first marked character from `c` on.
    const char* Find(const char* c) const
    {
        while (!marks[static_cast<unsigned char>(*c)])
        {
            ++c;
        }
        return c;
    }

    bool marks[256] = {};
};

// The end of the text belongs to both.
constexpr CharacterSet kOutsideStrings(std::string_view("\0\"[]{}", 6));
constexpr CharacterSet kInsideStrings(std::string_view("\0\"\\", 3));

/// Gives the quote that ends the string whose first character is `c`, or the end of the text.
const char* FindStringEnd(const char* c)
{
    c = kInsideStrings.Find(c);
    while (*c == '\\' && c[1] != '\0')
    {
        c = kInsideStrings.Find(c + 2);
    }
    return *c == '\\' ? c + 1 : c;
}

bool IsNestedDeeperThan(unsigned int limit, const char* text)
{
    unsigned int depth = 0;
    for (const char* c = kOutsideStrings.Find(text); *c != '\0'; c = kOutsideStrings.Find(c + 1))
    {
        switch (*c)
        {
        case '"':
            c = FindStringEnd(c + 1);
            if (*c == '\0')
            {
                return false;
            }
            break;
        case '[':
        case '{':
            if (++depth > limit)
            {
                return true;
            }
            break;
        default:
            depth -= depth == 0 ? 0 : 1;
            break;
        }
    }
    return false;
}

} // namespace

void ParseFile(const char* path, GenericDocument& document)
{
    const std::string text = ReadWholeFile(path);
    ParseText(text.c_str(), document);
}

void ParseText(const char* text, GenericDocument& document)
{
    // Without recursion the parser names some errors by other codes, so only deep texts take that
    // way.
    if (IsNestedDeeperThan(kMaxRecursion, text))
    {
        document.Parse<rapidjson::kParseDefaultFlags | rapidjson::kParseIterativeFlag>(text);
    }
    else
    {
        document.Parse(text);
    }
}

} // namespace vell
