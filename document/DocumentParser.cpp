// VELL: data-driven hierarchical state machines.
// document/DocumentParser.cpp: reading of files, and the guard against deep nesting.
#include "document/DocumentParser.h"

#include "foundation/OpenFile.h"

#include <rapidjson/document.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace vell
{
namespace
{

/// A text nested deeper than this is parsed without recursion, so that no document exhausts the
/// stack.
constexpr unsigned int kMaxRecursion = 1000;

/// Hands a parse on to a document and ends it at the first value that is nested too deep.
class ShallowHandler
{
public:
    using Ch = GenericDocument::Ch;
    using Size = rapidjson::SizeType;

    explicit ShallowHandler(GenericDocument& filledDocument) : document(filledDocument)
    {
    }
    bool Null()
    {
        return document.Null();
    }
    bool Bool(bool value)
    {
        return document.Bool(value);
    }
    bool Int(int value)
    {
        return document.Int(value);
    }
    bool Uint(unsigned int value)
    {
        return document.Uint(value);
    }
    bool Int64(std::int64_t value)
    {
        return document.Int64(value);
    }
    bool Uint64(std::uint64_t value)
    {
        return document.Uint64(value);
    }
    bool Double(double value)
    {
        return document.Double(value);
    }
    bool RawNumber(const Ch* text, Size length, bool copy)
    {
        return document.RawNumber(text, length, copy);
    }
    bool String(const Ch* text, Size length, bool copy)
    {
        return document.String(text, length, copy);
    }
    bool Key(const Ch* text, Size length, bool copy)
    {
        return document.Key(text, length, copy);
    }
    bool StartObject()
    {
        return ++depth <= kMaxRecursion && document.StartObject();
    }
    bool EndObject(Size count)
    {
        --depth;
        return document.EndObject(count);
    }
    bool StartArray()
    {
        return ++depth <= kMaxRecursion && document.StartArray();
    }
    bool EndArray(Size count)
    {
        --depth;
        return document.EndArray(count);
    }

private:
    GenericDocument& document;
    unsigned int depth = 0;
};

/// Puts a copy of the text into the document's memory pool, where it stays as long as the document.
/// Null when there is no memory.
char* CopyText(const char* text, GenericDocument& document)
{
    const std::size_t size = std::strlen(text) + 1;
    void* copy = document.GetAllocator().Malloc(size);
    return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

/// Fills the document when the text is well formed and not nested deep, which takes one pass. The
/// texts of the values stay in place in a copy of the whole, which saves copying each of them.
bool ParseShallow(const char* text, GenericDocument& document)
{
    char* copy = CopyText(text, document);
    if (copy == nullptr)
    {
        return false; // GCOVR_EXCL_LINE: no memory from the parser's own allocator
    }
    bool filled = false;
    const auto generate = [copy, &filled](GenericDocument& target)
    {
        rapidjson::Reader reader;
        rapidjson::InsituStringStream stream(copy);
        ShallowHandler handler(target);
        filled = !reader.Parse<rapidjson::kParseInsituFlag>(stream, handler).IsError();
        return filled;
    };
    document.Populate(generate);
    return filled;
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
    const std::unique_ptr<std::FILE, Close> file(OpenFileToRead(path));
    // Required: a file that cannot be opened is parsed as an empty text, so the log reports an
    // empty document, with the code 1.
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

void ParseText(const char* text, GenericDocument& document)
{
    // A document keeps the error of an earlier parse until it parses by itself.
    if (!document.HasParseError() && ParseShallow(text, document))
    {
        return;
    }
    // What is wrong with the text is for the document's own parse to say. Without recursion
    // the parser names some errors by other codes, so only deep texts take that way.
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
