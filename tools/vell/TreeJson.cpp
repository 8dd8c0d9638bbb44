// VELL: data-driven hierarchical state machines.
// tools/vell/TreeJson.cpp: the walk over a tree by its keys.
#include "tools/vell/TreeJson.h"

#include "foundation/TreeKeys.h"
#include "tools/vell/ParameterText.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <system_error>
#include <vector>

namespace vell::tool
{
namespace
{

constexpr const char* kArrayKey = "[]";
constexpr const char* kNameMark = "#";

/// Both formats use this writer for values, so that texts are escaped in the same way.
template <class Writer>
class ValueWriter
{
public:
    explicit ValueWriter(Writer& newWriter) : writer(newWriter)
    {
    }

    void Text(const char* text)
    {
        if (text == nullptr)
        {
            writer.Null();
            return;
        }
        writer.String(text);
    }

    void Float(float number)
    {
        if (!std::isfinite(number))
        {
            writer.Null(); // JSON has no word for it
            return;
        }
        const std::string text = NumberText(number);
        writer.RawValue(text.data(), text.size(), rapidjson::kNumberType);
    }

    void Floats(const float* numbers, int count)
    {
        writer.StartArray();
        for (int i = 0; i < count; ++i)
        {
            Float(numbers[i]);
        }
        writer.EndArray();
    }

    /// Writes the value of a key that is not a table.
    void Value(Tessel::KVTable table, const char* key, int type)
    {
        switch (type)
        {
        case Tessel::ValueType_Text:
            Text(table->GetString(key));
            break;
        case Tessel::ValueType_Int:
            writer.Int(table->GetInt(key));
            break;
        case Tessel::ValueType_UInt:
            writer.Uint(table->GetUInt(key));
            break;
        case Tessel::ValueType_Float:
            Float(table->GetFloat(key));
            break;
        default:
            Vector(table, key, type);
            break;
        }
    }

private:
    void Vector(Tessel::KVTable table, const char* key, int type)
    {
        Tessel::Float2 two{};
        Tessel::Float3 three{};
        Tessel::Float4 four{};
        if (type == Tessel::ValueType_Float2 && table->GetFloat2(key, &two))
        {
            const float numbers[] = {two.x, two.y};
            Floats(numbers, 2);
        }
        else if (type == Tessel::ValueType_Float3 && table->GetFloat3(key, &three))
        {
            const float numbers[] = {three.x, three.y, three.z};
            Floats(numbers, 3);
        }
        else if (type == Tessel::ValueType_Float4 && table->GetFloat4(key, &four))
        {
            const float numbers[] = {four.x, four.y, four.z, four.w};
            Floats(numbers, 4);
        }
        else
        {
            writer.Null();
        }
    }

    Writer& writer;
};

/// Tells whether the table under `key` is an array even when it is empty.
bool IsStackKey(const std::string& key)
{
    return key == kMainStackKey || key == kBlipStackKey;
}

/// The parts of a machine's tree in which ids have names.
enum class Part
{
    Other,
    Root,
    Context,
    Parameters,
    Nodes
};

Part PartBelow(Part part, const std::string& key)
{
    if (part != Part::Root)
    {
        return Part::Other;
    }
    return key == kContextKey      ? Part::Context
           : key == kParametersKey ? Part::Parameters
           : key == kNodesKey      ? Part::Nodes
                                   : Part::Other;
}

/// One key of a table, with what is known of it.
struct Entry
{
    std::string key;
    int type = 0;
    std::optional<unsigned int> number; ///< of a key that is a number
};

/// Gives the keys in their order: words by the alphabet, then numbers by their value.
std::vector<Entry> SortedKeys(Tessel::KVTable table)
{
    std::vector<Entry> entries;
    const unsigned int count = table->GetKeyCount();
    for (unsigned int i = 0; i < count; ++i)
    {
        Entry entry;
        entry.key = table->GetKeyAt(i);
        entry.type = table->GetTypeAt(i);
        unsigned int number = 0;
        const char* end = entry.key.data() + entry.key.size();
        const auto [stop, error] = std::from_chars(entry.key.data(), end, number);
        if (error == std::errc() && stop == end)
        {
            entry.number = number;
        }
        entries.push_back(entry);
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b)
              {
                  return a.number == b.number ? a.key < b.key : a.number < b.number;
              });
    return entries;
}

/// The names of what a table's entries stand for.
class Names
{
public:
    Names(const TreeNames* newNames, Part newPart) : names(newNames), part(newPart)
    {
    }

    /// Of the parameter or node whose table is under this key.
    std::string OfTable(const Entry& entry) const
    {
        if (names == nullptr || !entry.number || (part != Part::Parameters && part != Part::Nodes))
        {
            return "";
        }
        return part == Part::Nodes ? names->node(*entry.number) : names->parameter(*entry.number);
    }

    /// Of the node whose id is the value under this key.
    std::string OfValue(Tessel::KVTable table, const Entry& entry) const
    {
        const bool isId = part == Part::Context && entry.type == Tessel::ValueType_UInt;
        return names == nullptr || !isId ? "" : names->node(table->GetUInt(entry.key.c_str()));
    }

    /// Of the nodes whose ids are the elements of a stack.
    std::vector<std::string> OfStack(Tessel::KVTable stack, const Entry& entry) const
    {
        std::vector<std::string> list;
        if (names != nullptr && part == Part::Context && IsStackKey(entry.key))
        {
            for (unsigned int i = 0; i < stack->GetCount(); ++i)
            {
                list.push_back(names->node(stack->GetValueAt(i)->GetUIntValue()));
            }
        }
        return list;
    }

    Names Below(const std::string& key) const
    {
        return Names(names, PartBelow(part, key));
    }

private:
    const TreeNames* names;
    Part part;
};

template <class Writer>
void WriteElements(Writer& writer, Tessel::KVTable table)
{
    writer.StartArray();
    for (unsigned int i = 0; i < table->GetCount(); ++i)
    {
        writer.Uint(table->GetValueAt(i)->GetUIntValue());
    }
    writer.EndArray();
}

template <class Writer>
void WriteName(Writer& writer, const std::string& key, const std::string& name)
{
    if (!name.empty())
    {
        writer.Key((key + kNameMark).c_str());
        writer.String(name.c_str());
    }
}

template <class Writer>
void WriteTable(Writer& writer, Tessel::KVTable table, const Entry& self, const std::string& name,
                const Names& names);

/// Writes a key with its value, and behind it the name of an id, or the names of a stack's ids.
template <class Writer>
void WriteEntry(Writer& writer, Tessel::KVTable table, const Entry& entry, const Names& names)
{
    const char* key = entry.key.c_str();
    writer.Key(key);
    if (entry.type != Tessel::ValueType_Table)
    {
        ValueWriter<Writer>(writer).Value(table, key, entry.type);
        WriteName(writer, entry.key, names.OfValue(table, entry));
        return;
    }
    const Tessel::KVTable inner = table->GetTable(key);
    WriteTable(writer, inner, entry, names.OfTable(entry), names.Below(entry.key));
    const std::vector<std::string> list = names.OfStack(inner, entry);
    if (!list.empty())
    {
        writer.Key((entry.key + kNameMark).c_str());
        writer.StartArray();
        for (const std::string& one : list)
        {
            writer.String(one.c_str());
        }
        writer.EndArray();
    }
}

template <class Writer>
void WriteTable(Writer& writer, Tessel::KVTable table, const Entry& self, const std::string& name,
                const Names& names)
{
    const std::vector<Entry> entries = SortedKeys(table);
    const bool hasElements = table->GetCount() != 0;
    if (entries.empty() && (hasElements || IsStackKey(self.key)))
    {
        WriteElements(writer, table);
        return;
    }
    writer.StartObject();
    WriteName(writer, "", name);
    for (const Entry& entry : entries)
    {
        WriteEntry(writer, table, entry, names);
    }
    if (hasElements)
    {
        writer.Key(kArrayKey);
        WriteElements(writer, table);
    }
    writer.EndObject();
}

std::string PathBelow(const std::string& path, const std::string& key)
{
    return path.empty() ? key : path + '/' + key;
}

void AppendLine(std::string& text, const std::string& path, const rapidjson::StringBuffer& value,
                const std::string& name)
{
    text += path + " = " + value.GetString() + (name.empty() ? "" : "  # " + name) + '\n';
}

/// Appends a line for each value below a table. `name` is what the table stands for.
void AppendTable(std::string& text, Tessel::KVTable table, const std::string& path,
                 const Entry& self, const std::string& name, const Names& names)
{
    using Writer = rapidjson::Writer<rapidjson::StringBuffer>;
    const std::vector<Entry> entries = SortedKeys(table);
    for (const Entry& entry : entries)
    {
        const std::string below = PathBelow(path, entry.key);
        if (entry.type == Tessel::ValueType_Table)
        {
            const Tessel::KVTable inner = table->GetTable(entry.key.c_str());
            std::string innerName = names.OfTable(entry);
            for (const std::string& one : names.OfStack(inner, entry))
            {
                innerName += (innerName.empty() ? "" : "/") + one;
            }
            AppendTable(text, inner, below, entry, innerName.empty() ? name : innerName,
                        names.Below(entry.key));
            continue;
        }
        rapidjson::StringBuffer buffer;
        Writer writer(buffer);
        ValueWriter<Writer>(writer).Value(table, entry.key.c_str(), entry.type);
        const std::string ofValue = names.OfValue(table, entry);
        AppendLine(text, below, buffer, ofValue.empty() ? name : ofValue);
    }
    if (table->GetCount() != 0 || (entries.empty() && IsStackKey(self.key)))
    {
        rapidjson::StringBuffer buffer;
        Writer writer(buffer);
        WriteElements(writer, table);
        AppendLine(text, entries.empty() ? path : PathBelow(path, kArrayKey), buffer, name);
    }
}

} // namespace

std::string TreeToJson(Tessel::KVTable table, const TreeNames* names)
{
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    writer.SetFormatOptions(rapidjson::kFormatSingleLineArray);
    WriteTable(writer, table, Entry(), "", Names(names, Part::Root));
    return std::string(buffer.GetString()) + '\n';
}

std::string TreeToText(Tessel::KVTable table, const TreeNames* names)
{
    std::string text;
    AppendTable(text, table, "", Entry(), "", Names(names, Part::Root));
    return text;
}

} // namespace vell::tool
