// VELL: data-driven hierarchical state machines.
// tools/author/Decompile.cpp: writing the source, comparing what it gives, and writing it again
// with what is missing.
#include "tools/author/Decompile.h"

#include <durm/DURMBaseLib.h>

#include "tools/author/Compile.h"
#include "tools/author/DocumentTree.h"
#include "tools/author/ShortForms.h"
#include "tools/author/SourceWriter.h"
#include "tools/layout/Layout.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace vell::author
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

const char* N(__JSONTYPES__ member)
{
    return GetJsonName(member);
}

/// Gives a copy with its members sorted and each text and number written in one way.
Made Normal(const source::Text& text, const Value& value)
{
    if (value.IsString())
    {
        return Made::Text(value.text);
    }
    Made made = Made::Copy(text.bytes, value);
    made.members.clear();
    made.elements.clear();
    for (const source::Member& member : value.members)
    {
        if (!member.isRepeated)
        {
            made.members.push_back({member.name, Normal(text, member.value)});
        }
    }
    std::sort(made.members.begin(), made.members.end(),
              [](const MadeMember& left, const MadeMember& right)
              {
                  return left.name < right.name;
              });
    for (const Value& element : value.elements)
    {
        made.Add(Normal(text, element));
    }
    return made;
}

/// Gives the nodes of all layers, in the order of their ids.
std::vector<Made> SortedNodes(const source::Text& text, bool isGlobal)
{
    std::vector<std::pair<std::string, Made>> nodes;
    const check::DocumentModel model(text.root);
    for (const check::NodeModel& node : model.nodes)
    {
        if (model.IsInGlobal(node) == isGlobal)
        {
            Made made = Normal(text, *node.value);
            std::string key = std::to_string(node.id) + " " + std::string(node.name);
            nodes.emplace_back(std::move(key), std::move(made));
        }
    }
    std::stable_sort(nodes.begin(), nodes.end(),
                     [](const auto& left, const auto& right)
                     {
                         return left.first < right.first;
                     });
    std::vector<Made> sorted;
    sorted.reserve(nodes.size());
    for (auto& [key, made] : nodes)
    {
        sorted.push_back(std::move(made));
    }
    return sorted;
}

bool AreSame(const std::vector<Made>& left, const std::vector<Made>& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), IsSameMeaning);
}

/// The source of one document, written twice: from what the first lacks, the second learns what it
/// has to add.
class Decompiler
{
public:
    Decompiler(const source::Text& newText, const DecompileOptions& newOptions)
        : text(newText), options(newOptions), tree(newText.root)
    {
    }

    std::string Run()
    {
        Additions additions;
        const DecompileOptions faithful{options.name, false};
        for (int round = 0; round < kRounds; ++round)
        {
            const std::string bytes = Write(additions, faithful);
            const Compiled compiled = Compile(kPath,
                                              [&bytes](const std::string&)
                                              {
                                                  return FileContent{bytes, ""};
                                              });
            const source::Text made = source::ReadText(compiled.bytes);
            if (compiled.IsGood() && IsSameDocument(text, made))
            {
                return options.isTidy ? Write(additions, options) : bytes;
            }
            if (compiled.IsGood())
            {
                Learn(made, &additions);
            }
        }
        return WriteWhole();
    }

private:
    static constexpr int kRounds = 3;
    static constexpr const char* kPath = "decompiled.hsm.json";

    std::string Write(const Additions& additions, const DecompileOptions& wanted) const
    {
        const Made source = WriteSource(text, tree, additions, wanted);
        return layout::LayOutSource(source::ReadText(ToJson(source)));
    }

    /// Finds what the document says and the source does not.
    void Learn(const source::Text& made, Additions* additions) const
    {
        const check::DocumentModel model(made.root);
        for (const check::NodeModel& node : tree.model.nodes)
        {
            const check::NodeModel* const other = model.FindNode(node.id);
            if (other == nullptr || !node.isFirst)
            {
                continue;
            }
            additions->Put(node.value, Difference(made, *other->value, *node.value));
            const std::size_t count = std::min(node.conditions.size(), other->conditions.size());
            for (std::size_t i = 0; i < count; ++i)
            {
                LearnCondition(made, *other->conditions[i].value, *node.conditions[i].value,
                               additions);
            }
        }
        for (const check::ParameterModel& parameter : tree.model.parameters)
        {
            const check::ParameterModel* const other = model.FindParameterByName(parameter.name);
            if (other != nullptr)
            {
                additions->Put(parameter.value, Difference(made, *other->value, *parameter.value));
            }
        }
        if (model.head != nullptr && tree.model.head != nullptr)
        {
            additions->Put(tree.model.head, Difference(made, *model.head, *tree.model.head));
        }
        additions->Put(&text.root, RootDifference(made));
    }

    /// Conditions are compared one by one; a node has them in a list of their own.
    Made Difference(const source::Text& made, const Value& has, const Value& wanted) const
    {
        Made members = DifferenceOf(Made::Copy(made.bytes, has), Made::Copy(text.bytes, wanted));
        const Value* const hasList = has.Find(N(JSON_Conditions));
        const Value* const wantedList = wanted.Find(N(JSON_Conditions));
        if (hasList != nullptr && wantedList != nullptr && hasList->IsArray() &&
            wantedList->IsArray() && hasList->elements.size() == wantedList->elements.size())
        {
            members.Remove(N(JSON_Conditions));
        }
        return members;
    }

    void LearnCondition(const source::Text& made, const Value& has, const Value& wanted,
                        Additions* additions) const
    {
        const Made members =
            DifferenceOf(Made::Copy(made.bytes, has), Made::Copy(text.bytes, wanted));
        if (!members.IsEmpty())
        {
            additions->verbatim.insert(&wanted);
        }
    }

    /// What is in lists is compared elsewhere.
    Made RootDifference(const source::Text& made) const
    {
        Made has = Made::Copy(made.bytes, made.root);
        Made wanted = Made::Copy(text.bytes, text.root);
        for (const __JSONTYPES__ member :
             {JSON_Head, JSON_Parameters, JSON_Layers, JSON_Skeleton, JSON_Global})
        {
            const Made* const kept = wanted.Find(N(member));
            if (kept != nullptr && kept->members.empty() && kept->elements.empty() &&
                has.Find(N(member)) == nullptr)
            {
                continue;
            }
            has.Remove(N(member));
            wanted.Remove(N(member));
        }
        return DifferenceOf(has, wanted);
    }

    /// A source that copies the document's root: for what has no structure.
    std::string WriteWhole() const
    {
        Made source = Made::Object();
        source.Set("machine", Made::Text(options.name));
        source.Set("start", Made::Id(0));
        Made members = Made::Copy(text.bytes, text.root);
        for (const __JSONTYPES__ member : {JSON_Head, JSON_Parameters, JSON_Layers, JSON_Global})
        {
            if (members.Find(N(member)) == nullptr)
            {
                members.Set(N(member), Made::Raw("null"));
            }
        }
        source.Set("members", std::move(members));
        return layout::LayOutSource(source::ReadText(ToJson(source)));
    }

    const source::Text& text;
    const DecompileOptions& options;
    const DocumentTree tree;
};

} // namespace

bool IsSameDocument(const source::Text& left, const source::Text& right)
{
    for (const bool isGlobal : {false, true})
    {
        if (!AreSame(SortedNodes(left, isGlobal), SortedNodes(right, isGlobal)))
        {
            return false;
        }
    }
    const auto hasLayers = [](const source::Text& text)
    {
        const Value* const layers = text.root.Find(N(JSON_Layers));
        return layers != nullptr && layers->IsArray() && !layers->elements.empty();
    };
    if (hasLayers(left) != hasLayers(right))
    {
        return false;
    }
    Made a = Normal(left, left.root);
    Made b = Normal(right, right.root);
    for (const __JSONTYPES__ member : {JSON_Layers, JSON_Global})
    {
        a.Remove(N(member));
        b.Remove(N(member));
    }
    return IsSameMeaning(a, b);
}

std::string Decompile(const source::Text& document, const DecompileOptions& options)
{
    return document.isWhole && document.root.IsObject() ? Decompiler(document, options).Run() : "";
}

} // namespace vell::author
