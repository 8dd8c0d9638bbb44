// VELL: data-driven hierarchical state machines.
// tests/support/TreeLines.cpp: the walk over a tree.
#include "tests/support/TreeLines.h"

#include "tests/support/DocumentBuilder.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <map>

namespace vell::test
{
namespace
{

std::string Quoted(const char* text)
{
    return text == nullptr ? "(null)" : "\"" + std::string(text) + "\"";
}

std::string ValueText(Tessel::KVTable table, const char* key, int type)
{
    Tessel::Float4 floats{};
    switch (type)
    {
    case Tessel::ValueType_Text:
        return "text " + Quoted(table->GetString(key));
    case Tessel::ValueType_Int:
        return "int " + std::to_string(table->GetInt(key));
    case Tessel::ValueType_UInt:
        return "uint " + std::to_string(table->GetUInt(key));
    case Tessel::ValueType_Float:
        floats.x = table->GetFloat(key);
        return "float " + FloatText(&floats.x, 1);
    case Tessel::ValueType_Float2:
    {
        Tessel::Float2 two{};
        table->GetFloat2(key, &two);
        return "float2 " + FloatText(&two.x, 2);
    }
    case Tessel::ValueType_Float3:
    {
        Tessel::Float3 three{};
        table->GetFloat3(key, &three);
        return "float3 " + FloatText(&three.x, 3);
    }
    case Tessel::ValueType_Float4:
        table->GetFloat4(key, &floats);
        return "float4 " + FloatText(&floats.x, 4);
    default:
        return "type " + std::to_string(type);
    }
}

void Walk(Tessel::KVTable table, const std::string& path, Lines& lines)
{
    for (unsigned i = 0; i < table->GetCount(); ++i)
    {
        lines.push_back(path + "[" + std::to_string(i) + "] uint " +
                        std::to_string(table->GetValueAt(i)->GetUIntValue()));
    }
    std::map<std::string, int> keys;
    for (unsigned i = 0; i < table->GetKeyCount(); ++i)
    {
        keys[table->GetKeyAt(i)] = table->GetTypeAt(i);
    }
    for (const auto& entry : keys)
    {
        const std::string below = path.empty() ? entry.first : path + "/" + entry.first;
        const char* key = entry.first.c_str();
        if (entry.second != Tessel::ValueType_Table)
        {
            lines.push_back(below + " " + ValueText(table, key, entry.second));
            continue;
        }
        Tessel::KVTable child = table->GetTable(key);
        const char* name = Tessel::GetTableName(child);
        lines.push_back(below + " table " + (name == nullptr ? "(closed)" : name));
        Walk(child, below, lines);
    }
}

} // namespace

Lines TreeLines(Tessel::KVTable root)
{
    const char* name = Tessel::GetTableName(root);
    Lines lines{std::string("(root) table ") + (name == nullptr ? "(closed)" : name)};
    Walk(root, "", lines);
    return lines;
}

Tessel::KVTable TableAt(Tessel::KVTable root, const std::string& path)
{
    Tessel::KVTable table = root;
    for (std::size_t start = 0; start < path.size();)
    {
        const std::size_t end = std::min(path.find('/', start), path.size());
        table = table->GetTable(path.substr(start, end - start).c_str());
        start = end + 1;
    }
    return table;
}

std::vector<unsigned int> IdsOf(Tessel::KVTable table)
{
    std::vector<unsigned int> ids;
    const unsigned int count = table ? table->GetCount() : 0;
    for (unsigned int i = 0; i < count; ++i)
    {
        ids.push_back(table->GetValueAt(i)->GetUIntValue());
    }
    return ids;
}

std::string ParameterPath(const std::string& name)
{
    return "parameterTable/" + std::to_string(ParameterId(name));
}

std::string FloatText(const float* values, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
    {
        char digits[32];
        std::snprintf(digits, sizeof(digits), "%.9g", static_cast<double>(values[i]));
        text += (i == 0 ? "" : ",") + std::string(digits);
    }
    return text;
}

Lines Differences(Lines before, Lines after)
{
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    Lines went;
    Lines came;
    std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                        std::back_inserter(went));
    std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                        std::back_inserter(came));
    Lines differences;
    for (const std::string& line : went)
    {
        differences.push_back("- " + line);
    }
    for (const std::string& line : came)
    {
        differences.push_back("+ " + line);
    }
    return differences;
}

} // namespace vell::test
