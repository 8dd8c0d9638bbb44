// VELL: data-driven hierarchical state machines.
// tools/vell/Losses.cpp: the walk over the nodes of a document.
#include "tools/vell/Losses.h"

#include <durm/DURMBaseLib.h>
#include <vell/Types.h>

#include "definitions/NodeDefTable.h"
#include "document/JsonReader.h"
#include "tools/vell/ObservedMachine.h"

#include <cstddef>
#include <set>

namespace vell::tool
{
namespace
{

/// Counts the nodes of a document, and finds those that were lost.
class Count
{
public:
    explicit Count(const NodeDefTable& newTable) : table(newTable)
    {
    }

    void AddLayer(const GenericValue& layer, unsigned int index)
    {
        const GenericValue* list = FindMember(layer, JSON_Nodes);
        if (list == nullptr || !list->IsArray())
        {
            const char* name = ReadText(layer, JSON_Name);
            layerFault = layerFault.empty()
                             ? "layer " + (name == nullptr ? std::to_string(index) : name) +
                                   " has no list of nodes"
                             : layerFault;
            return;
        }
        AddNodes(*list);
    }

    void AddNodes(const GenericValue& list)
    {
        for (const GenericValue& node : list.GetArray())
        {
            ++nodes;
            NoteBuilder(node);
            const unsigned int id = ReadUInt(node, JSON_ID);
            if (table.Find(id) == nullptr || !ids.insert(id).second)
            {
                first = lost == 0 ? NameText(node) : first;
                ++lost;
            }
        }
    }

    std::string Text() const
    {
        if (lost == 0)
        {
            return layerFault;
        }
        const std::string much =
            lost == nodes ? "all " + std::to_string(lost) + " nodes are lost"
            : lost == 1   ? "a node is lost"
                        : std::to_string(lost) + " of " + std::to_string(nodes) + " nodes are lost";
        return much + (lost == 1 ? ": " : ", the first is ") + first +
               (layerFault.empty() ? "" : "; " + layerFault) +
               (builderFault.empty() ? "" : "; " + builderFault);
    }

private:
    /// Remembers the first node that cannot be built because nobody knows its builder.
    void NoteBuilder(const GenericValue& node)
    {
        const char* builder = ReadText(node, JSON_BuilderType);
        if (builderFault.empty() && DURMBaseLib::GetBuilderIndex(builder) == 0)
        {
            builderFault = NameText(node) + (builder == nullptr ? " has no \"builder\""
                                                                : " has the unknown builder '" +
                                                                      std::string(builder) + "'");
        }
    }

    static std::string NameText(const GenericValue& node)
    {
        const char* name = ReadText(node, JSON_Name);
        return (name == nullptr ? "" : std::string(name) + " ") + "(" +
               std::to_string(ReadUInt(node, JSON_ID)) + ")";
    }

    const NodeDefTable& table;
    std::set<unsigned int> ids;
    std::size_t nodes = 0;
    std::size_t lost = 0;
    std::string first; ///< name and id of the first lost node
    std::string layerFault;
    std::string builderFault;
};

} // namespace

std::string LossText(const GenericDocument& document, const NodeDefTable& table)
{
    Count count(table);
    const GenericValue& layers = GetMember(document, JSON_Layers);
    if (layers.IsArray())
    {
        for (unsigned int i = 0; i < layers.Size(); ++i)
        {
            count.AddLayer(layers[i], i);
        }
    }
    const GenericValue& global = GetMember(document, JSON_Global);
    if (global.IsArray())
    {
        count.AddNodes(global);
    }
    return count.Text();
}

} // namespace vell::tool
