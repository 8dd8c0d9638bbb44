// VELL: data-driven hierarchical state machines.
// machine/DocumentParser.cpp: reading of files, and the guard against deep nesting.
#include "machine/DocumentParser.h"

#include <cstdio>
#include <memory>
#include <string>

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

bool IsNestedDeeperThan(unsigned int limit, const char* text)
{
    unsigned int depth = 0;
    for (const char* c = text; *c != '\0'; ++c)
    {
        switch (*c)
        {
        case '"':
            for (++c; *c != '"' && *c != '\0'; ++c)
            {
                if (*c == '\\' && c[1] != '\0')
                {
                    ++c;
                }
            }
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
        case ']':
        case '}':
            depth -= depth == 0 ? 0 : 1;
            break;
        default:
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
