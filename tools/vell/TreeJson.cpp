// VELL: data-driven hierarchical state machines.
// tools/vell/TreeJson.cpp: the walk over a tree by its keys.
#include "tools/vell/TreeJson.h"

#include "foundation/TreeKeys.h"
#include "tools/vell/ParameterText.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <cstring>

namespace vell::tool
{
namespace
{

constexpr const char* kArrayKey = "[]";

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
bool IsStackKey(const char* key)
{
    return std::strcmp(key, kMainStackKey) == 0 || std::strcmp(key, kBlipStackKey) == 0;
}

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
void WriteTable(Writer& writer, Tessel::KVTable table, const char* name)
{
    const unsigned int keys = table->GetKeyCount();
    const bool hasElements = table->GetCount() != 0;
    if (keys == 0 && (hasElements || IsStackKey(name)))
    {
        WriteElements(writer, table);
        return;
    }
    writer.StartObject();
    for (unsigned int i = 0; i < keys; ++i)
    {
        const char* key = table->GetKeyAt(i);
        writer.Key(key);
        if (table->GetTypeAt(i) == Tessel::ValueType_Table)
        {
            WriteTable(writer, table->GetTable(key), key);
        }
        else
        {
            ValueWriter<Writer>(writer).Value(table, key, table->GetTypeAt(i));
        }
    }
    if (hasElements)
    {
        writer.Key(kArrayKey);
        WriteElements(writer, table);
    }
    writer.EndObject();
}

void AppendLine(std::string& text, const std::string& path, const rapidjson::StringBuffer& value)
{
    text += path + " = " + value.GetString() + '\n';
}

void AppendTable(std::string& text, Tessel::KVTable table, const std::string& path,
                 const char* name)
{
    const std::string prefix = path.empty() ? path : path + '/';
    const unsigned int keys = table->GetKeyCount();
    for (unsigned int i = 0; i < keys; ++i)
    {
        const char* key = table->GetKeyAt(i);
        if (table->GetTypeAt(i) == Tessel::ValueType_Table)
        {
            AppendTable(text, table->GetTable(key), prefix + key, key);
            continue;
        }
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        ValueWriter<rapidjson::Writer<rapidjson::StringBuffer>>(writer).Value(table, key,
                                                                              table->GetTypeAt(i));
        AppendLine(text, prefix + key, buffer);
    }
    if (table->GetCount() != 0 || (keys == 0 && IsStackKey(name)))
    {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        WriteElements(writer, table);
        AppendLine(text, keys == 0 ? path : prefix + kArrayKey, buffer);
    }
}

} // namespace

std::string TreeToJson(Tessel::KVTable table)
{
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    writer.SetFormatOptions(rapidjson::kFormatSingleLineArray);
    WriteTable(writer, table, "");
    return std::string(buffer.GetString()) + '\n';
}

std::string TreeToText(Tessel::KVTable table)
{
    std::string text;
    AppendTable(text, table, "", "");
    return text;
}

} // namespace vell::tool
