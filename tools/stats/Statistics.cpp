// VELL: data-driven hierarchical state machines.
// tools/stats/Statistics.cpp: counting, and the two formats.
#include "tools/stats/Statistics.h"

#include <durm/DURMBaseLib.h>

#include "tools/diff/DocumentModel.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <unordered_map>

namespace vell::stats
{
namespace
{

using namespace DURMBaseLib;
using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

constexpr int kRoom = 160;

Tally ToTally(const std::map<std::string, std::size_t>& numbers)
{
    Tally tally(numbers.begin(), numbers.end());
    std::stable_sort(tally.begin(), tally.end(),
                     [](const auto& left, const auto& right)
                     {
                         return left.second > right.second;
                     });
    return tally;
}

/// How many levels down nodes are, each node looked at once.
class Depths
{
public:
    explicit Depths(const diff::DocumentModel& newModel) : model(newModel)
    {
    }

    std::size_t Of(const diff::Node& node)
    {
        std::vector<const diff::Node*> path;
        const diff::Node* current = &node;
        // 0 marks a node of the path, so that a cycle of parents ends the walk.
        while (current != nullptr && known.emplace(current, 0).second)
        {
            path.push_back(current);
            current = model.FindNode(current->parent);
        }
        std::size_t depth = current == nullptr ? 0 : known[current];
        for (auto one = path.rbegin(); one != path.rend(); ++one)
        {
            known[*one] = ++depth;
        }
        return known[&node];
    }

private:
    const diff::DocumentModel& model;
    std::unordered_map<const diff::Node*, std::size_t> known;
};

std::string TypeOf(const diff::Parameter& parameter)
{
    for (const diff::Property& property : parameter.properties)
    {
        if (property.name == GetJsonName(JSON_ParameterType) && property.shown.size() > 2)
        {
            return property.shown.substr(1, property.shown.size() - 2); // without the quotes
        }
    }
    return "none";
}

std::string ListOf(const Tally& tally)
{
    std::string list;
    for (const auto& [name, number] : tally)
    {
        list += (list.empty() ? "" : ", ") + name + " " + std::to_string(number);
    }
    return list;
}

/// `1 layer`, `2 layers`.
std::string Plural(std::size_t number, const std::string& word)
{
    return std::to_string(number) + " " + word + (number == 1 ? "" : "s");
}

/// 27016 as `27,016`.
std::string Grouped(std::uint64_t number)
{
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3;)
    {
        at -= 3;
        digits.insert(at, ",");
    }
    return digits;
}

std::string Line(const char* name, const std::string& figure, const std::string& words)
{
    char line[kRoom];
    std::snprintf(line, sizeof(line), "%-12s%10s", name, figure.c_str());
    return line + (words.empty() ? "" : "  " + words) + "\n";
}

std::string Rounded(double number)
{
    char text[kRoom];
    std::snprintf(text, sizeof(text), number < 10.0 ? "%.2f" : "%.0f", number);
    return text;
}

std::string MemoryLines(const Statistics& statistics)
{
    const MemoryNeed& need = statistics.memory;
    const std::string declared = std::to_string(statistics.declaredMemory);
    if (!need.loads)
    {
        return Line("memory", declared, "the need is unknown: the document does not load");
    }
    if (!need.losses.empty())
    {
        return Line("memory", declared, "the need is unknown: " + need.losses);
    }
    const std::uint64_t units = need.Units();
    const bool isEnough = statistics.declaredMemory >= static_cast<std::int64_t>(units);
    return Line("memory", declared, isEnough ? "declared" : "declared, which is too little") +
           Line("  needed", std::to_string(units),
                Grouped(need.complete) + " bytes with every state entered, " +
                    Grouped(need.loaded) + " after loading");
}

std::string TimeLine(const Statistics& statistics)
{
    const LoadTime& time = statistics.time;
    return Line("load", Rounded(time.load) + " ms",
                Rounded(time.load / std::max(time.parse, 1e-6)) + " times the parse alone, " +
                    Rounded(time.parse) + " ms");
}

void WriteNumber(Writer& writer, const char* key, std::uint64_t number)
{
    writer.Key(key);
    writer.Uint64(number);
}

void WriteTally(Writer& writer, const char* key, const Tally& tally)
{
    writer.Key(key);
    writer.StartObject();
    for (const auto& [name, number] : tally)
    {
        WriteNumber(writer, name.c_str(), number);
    }
    writer.EndObject();
}

void WriteCost(Writer& writer, const Statistics& statistics)
{
    writer.Key("loads");
    writer.Bool(statistics.memory.loads);
    if (!statistics.memory.losses.empty())
    {
        writer.Key("losses");
        writer.String(statistics.memory.losses.c_str());
    }
    writer.Key("memory");
    writer.StartObject();
    writer.Key("declared");
    writer.Int64(statistics.declaredMemory);
    if (statistics.memory.IsKnown())
    {
        WriteNumber(writer, "needed", statistics.memory.Units());
        WriteNumber(writer, "bytes", statistics.memory.complete);
        WriteNumber(writer, "bytesAfterLoading", statistics.memory.loaded);
    }
    writer.EndObject();
    if (statistics.memory.IsKnown())
    {
        writer.Key("loadMilliseconds");
        writer.Double(statistics.time.load);
        writer.Key("parseMilliseconds");
        writer.Double(statistics.time.parse);
    }
}

} // namespace

Counts Count(const source::Text& text)
{
    const diff::DocumentModel model = diff::ReadModel(text.root);
    Counts counts;
    counts.bytes = text.bytes.size();
    counts.layers = model.layers.size();
    counts.nodes = model.nodes.size();
    counts.parameters = model.parameters.size();
    std::map<std::string, std::size_t> builders;
    std::map<std::string, std::size_t> types;
    Depths depths(model);
    for (const diff::Node& node : model.nodes)
    {
        ++builders[node.builder.empty() ? "none" : node.builder];
        counts.conditions += node.conditions.size();
        counts.attributes += node.attributes.size();
        if (!node.IsTransition())
        {
            counts.depth = std::max(counts.depth, depths.Of(node));
        }
    }
    for (const diff::Parameter& parameter : model.parameters)
    {
        ++types[TypeOf(parameter)];
    }
    counts.builders = ToTally(builders);
    counts.parameterTypes = ToTally(types);
    return counts;
}

std::string ToText(const Statistics& statistics)
{
    const Counts& counts = statistics.counts;
    std::string text = statistics.document + "\n";
    text += Line("text", Grouped(counts.bytes), "bytes");
    text += Line("nodes", std::to_string(counts.nodes),
                 "in " + Plural(counts.layers, "layer") + ", " + Plural(counts.depth, "level") +
                     " deep");
    for (const auto& [name, number] : counts.builders)
    {
        text += Line(("  " + name).c_str(), std::to_string(number), "");
    }
    text += Line("parameters", std::to_string(counts.parameters), ListOf(counts.parameterTypes));
    text += Line("conditions", std::to_string(counts.conditions), "");
    text += Line("attributes", std::to_string(counts.attributes), "");
    text += MemoryLines(statistics);
    return text + (statistics.memory.IsKnown() ? TimeLine(statistics) : "");
}

std::string ToJson(const Statistics& statistics)
{
    const Counts& counts = statistics.counts;
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    writer.Key("document");
    writer.String(statistics.document.c_str());
    WriteNumber(writer, "bytes", counts.bytes);
    WriteNumber(writer, "layers", counts.layers);
    WriteNumber(writer, "nodes", counts.nodes);
    WriteTally(writer, "builders", counts.builders);
    WriteNumber(writer, "depth", counts.depth);
    WriteNumber(writer, "parameters", counts.parameters);
    WriteTally(writer, "parameterTypes", counts.parameterTypes);
    WriteNumber(writer, "conditions", counts.conditions);
    WriteNumber(writer, "attributes", counts.attributes);
    WriteCost(writer, statistics);
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

} // namespace vell::stats
