// VELL: data-driven hierarchical state machines.
// tools/diff/Difference.cpp: the comparison, subject by subject.
#include "tools/diff/Difference.h"

#include <durm/DURMBaseLib.h>

#include "tools/diff/Matching.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace vell::diff
{
namespace
{

using namespace DURMBaseLib;

constexpr const char* kTopLevel = "the top level";

using Details = std::vector<Detail>;
using Keys = std::vector<std::string>;

/// Which elements of two lists have no equal in the other, and whether the rest is in the same
/// order.
struct ListDifference
{
    std::vector<std::size_t> removed;
    std::vector<std::size_t> added;
    bool isReordered = false;
};

ListDifference CompareLists(const Keys& before, const Keys& after)
{
    std::map<std::string, int> surplus;
    for (const std::string& key : after)
    {
        ++surplus[key];
    }
    ListDifference difference;
    Keys keptBefore;
    for (std::size_t i = 0; i < before.size(); ++i)
    {
        if (--surplus[before[i]] < 0)
        {
            difference.removed.push_back(i);
            continue;
        }
        keptBefore.push_back(before[i]);
    }
    Keys keptAfter;
    for (std::size_t i = after.size(); i-- > 0;)
    {
        if (surplus[after[i]]-- > 0)
        {
            difference.added.push_back(i);
            continue;
        }
        keptAfter.push_back(after[i]);
    }
    std::reverse(difference.added.begin(), difference.added.end());
    std::reverse(keptAfter.begin(), keptAfter.end());
    difference.isReordered = keptBefore != keptAfter;
    return difference;
}

class Comparer
{
public:
    Comparer(const DocumentModel& newBefore, const DocumentModel& newAfter)
        : before(newBefore),
          after(newAfter),
          nodes(MatchNodes(before, after)),
          parameters(MatchParameters(before, after))
    {
    }

    std::vector<Difference> Compare()
    {
        AddProperties(Subject::Head, before.head, after.head);
        CompareParameters();
        CompareLayers();
        CompareNodes(false);
        CompareNodes(true);
        AddProperties(Subject::Skeleton, before.skeleton, after.skeleton);
        AddProperties(Subject::Other, before.others, after.others);
        return std::move(result);
    }

private:
    // Of references.

    std::size_t IndexIn(const DocumentModel& model, unsigned int id) const
    {
        const Node* node = model.FindNode(id);
        return node == nullptr ? kUnmatched : static_cast<std::size_t>(node - model.nodes.data());
    }

    /// Gives a text that is equal for the same node of both documents.
    std::string KeyBefore(unsigned int id) const
    {
        const std::size_t index = IndexIn(before, id);
        if (index == kUnmatched)
        {
            return "absent " + std::to_string(id);
        }
        return nodes.before[index] == kUnmatched ? "removed " + std::to_string(id)
                                                 : "node " + std::to_string(nodes.before[index]);
    }

    std::string KeyAfter(unsigned int id) const
    {
        const std::size_t index = IndexIn(after, id);
        if (index == kUnmatched)
        {
            return "absent " + std::to_string(id);
        }
        return nodes.after[index] == kUnmatched ? "added " + std::to_string(id)
                                                : "node " + std::to_string(index);
    }

    bool IsSameNode(unsigned int left, unsigned int right) const
    {
        return KeyBefore(left) == KeyAfter(right);
    }

    std::string ParameterKey(const DocumentModel& model, unsigned int id) const
    {
        const Parameter* parameter = model.FindParameter(id);
        if (parameter == nullptr)
        {
            return "absent " + std::to_string(id);
        }
        const auto index = static_cast<std::size_t>(parameter - model.parameters.data());
        const std::size_t partner = &model == &before ? parameters.before[index] : index;
        const bool isMatched =
            &model == &before ? partner != kUnmatched : parameters.after[index] != kUnmatched;
        return isMatched ? "parameter " + std::to_string(partner)
                         : (&model == &before ? "removed " : "added ") + std::to_string(id);
    }

    // Of properties.

    static std::string Shown(const Property& property, const DocumentModel& model)
    {
        return property.isReference ? model.NameOfNode(property.number) : property.shown;
    }

    bool IsSame(const Property& left, const Property& right) const
    {
        return left.isReference && right.isReference ? IsSameNode(left.number, right.number)
                                                     : left.canonical == right.canonical;
    }

    static const Property* FindProperty(const Properties& properties, const std::string& name)
    {
        for (const Property& property : properties)
        {
            if (property.name == name)
            {
                return &property;
            }
        }
        return nullptr;
    }

    void CompareProperties(const Properties& left, const Properties& right, Details* details) const
    {
        for (const Property& property : right)
        {
            const Property* old = FindProperty(left, property.name);
            const std::string standard = DefaultOf(property.name);
            if (old != nullptr && IsSame(*old, property))
            {
                continue;
            }
            const std::string shown = old != nullptr     ? Shown(*old, before)
                                      : standard.empty() ? ""
                                                         : standard + " (default)";
            details->push_back({shown.empty() ? Change::Added : Change::Changed, property.name,
                                shown, Shown(property, after)});
        }
        for (const Property& property : left)
        {
            const std::string standard = DefaultOf(property.name);
            if (FindProperty(right, property.name) == nullptr)
            {
                details->push_back({standard.empty() ? Change::Removed : Change::Changed,
                                    property.name, Shown(property, before),
                                    standard.empty() ? "" : standard + " (default)"});
            }
        }
    }

    void AddProperties(Subject subject, const Properties& left, const Properties& right)
    {
        Difference difference;
        difference.subject = subject;
        CompareProperties(left, right, &difference.details);
        AddIfChanged(difference);
    }

    void AddIfChanged(const Difference& difference)
    {
        if (!difference.details.empty())
        {
            result.push_back(difference);
        }
    }

    static void CompareText(const char* what, const std::string& left, const std::string& right,
                            Details* details)
    {
        if (left != right)
        {
            details->push_back({Change::Changed, what, left, right});
        }
    }

    // Of parameters.

    static std::string DescribeProperties(const Properties& properties, const DocumentModel& model)
    {
        std::string text;
        for (const Property& property : properties)
        {
            text += (text.empty() ? "" : ", ") + property.name + " " + Shown(property, model);
        }
        return text;
    }

    void CompareParameters()
    {
        Difference difference;
        difference.subject = Subject::Parameter;
        if (IsReordered(parameters.after))
        {
            difference.change = Change::Reordered;
            result.push_back(difference);
        }
        for (std::size_t i = 0; i < after.parameters.size(); ++i)
        {
            const Parameter& parameter = after.parameters[i];
            difference = {Subject::Parameter, Change::Added, parameter.name, parameter.id, "", {}};
            if (parameters.after[i] == kUnmatched)
            {
                difference.description = DescribeProperties(parameter.properties, after);
                result.push_back(difference);
                continue;
            }
            const Parameter& old = before.parameters[parameters.after[i]];
            difference.change = Change::Changed;
            CompareText("name", old.name, parameter.name, &difference.details);
            CompareText("id", std::to_string(old.id), std::to_string(parameter.id),
                        &difference.details);
            CompareProperties(old.properties, parameter.properties, &difference.details);
            AddIfChanged(difference);
        }
        for (std::size_t i = 0; i < before.parameters.size(); ++i)
        {
            const Parameter& parameter = before.parameters[i];
            if (parameters.before[i] == kUnmatched)
            {
                result.push_back({Subject::Parameter,
                                  Change::Removed,
                                  parameter.name,
                                  parameter.id,
                                  DescribeProperties(parameter.properties, before),
                                  {}});
            }
        }
    }

    static bool IsReordered(const std::vector<std::size_t>& partners)
    {
        std::size_t last = 0;
        for (const std::size_t partner : partners)
        {
            if (partner == kUnmatched)
            {
                continue;
            }
            if (partner < last)
            {
                return true;
            }
            last = partner;
        }
        return false;
    }

    // Of layers.

    static bool AreUnique(const Keys& names)
    {
        return std::set<std::string>(names.begin(), names.end()).size() == names.size();
    }

    /// Finds the layers that were added, removed or renamed. As many new names as old ones are
    /// taken for renamed layers.
    void CompareLayers()
    {
        const ListDifference list = CompareLists(before.layers, after.layers);
        const bool isRenamed = list.added.size() == list.removed.size() &&
                               AreUnique(before.layers) && AreUnique(after.layers);
        for (std::size_t i = 0; i < list.added.size(); ++i)
        {
            const std::string& name = after.layers[list.added[i]];
            Difference difference{Subject::Layer, Change::Added, name, 0, "", {}};
            if (isRenamed)
            {
                const std::string& old = before.layers[list.removed[i]];
                renamedLayers[old] = name;
                difference.change = Change::Changed;
                CompareText("name", old, name, &difference.details);
            }
            result.push_back(difference);
        }
        for (std::size_t i = 0; i < list.removed.size() && !isRenamed; ++i)
        {
            result.push_back(
                {Subject::Layer, Change::Removed, before.layers[list.removed[i]], 0, "", {}});
        }
        if (list.isReordered)
        {
            result.push_back({Subject::Layer, Change::Reordered, "", 0, "", {}});
        }
        CompareOrderOfNodes();
    }

    std::string LayerBefore(const Node& node) const
    {
        const auto found = renamedLayers.find(node.layer);
        return found == renamedLayers.end() ? node.layer : found->second;
    }

    void CompareOrderOfNodes()
    {
        Keys names;
        std::map<std::string, std::vector<std::size_t>> partners;
        for (std::size_t i = 0; i < after.nodes.size(); ++i)
        {
            const Node& node = after.nodes[i];
            const std::size_t partner = nodes.after[i];
            if (partner != kUnmatched && LayerBefore(before.nodes[partner]) == node.layer)
            {
                if (partners[node.layer].empty())
                {
                    names.push_back(node.layer);
                }
                partners[node.layer].push_back(partner);
            }
        }
        for (const std::string& name : names)
        {
            if (IsReordered(partners[name]))
            {
                result.push_back({Subject::Layer,
                                  Change::Changed,
                                  name,
                                  0,
                                  "",
                                  {{Change::Reordered, "nodes", "", ""}}});
            }
        }
    }

    // Of nodes.

    void CompareNodes(bool isTransition)
    {
        const Subject subject = isTransition ? Subject::Transition : Subject::State;
        for (std::size_t i = 0; i < after.nodes.size(); ++i)
        {
            const Node& node = after.nodes[i];
            if (node.IsTransition() != isTransition)
            {
                continue;
            }
            if (nodes.after[i] == kUnmatched)
            {
                result.push_back(
                    {subject, Change::Added, node.name, node.id, Describe(node, after), {}});
                continue;
            }
            Difference difference{subject, Change::Changed, node.name, node.id, "", {}};
            difference.description = isTransition ? DescribePath(node, after) : "";
            CompareNode(before.nodes[nodes.after[i]], node, &difference.details);
            AddIfChanged(difference);
        }
        for (std::size_t i = 0; i < before.nodes.size(); ++i)
        {
            const Node& node = before.nodes[i];
            if (node.IsTransition() == isTransition && nodes.before[i] == kUnmatched)
            {
                result.push_back(
                    {subject, Change::Removed, node.name, node.id, Describe(node, before), {}});
            }
        }
    }

    void CompareNode(const Node& old, const Node& node, Details* details) const
    {
        CompareText("name", old.name, node.name, details);
        CompareText("id", std::to_string(old.id), std::to_string(node.id), details);
        CompareText("builder", old.builder, node.builder, details);
        if (!IsSameNode(old.parent, node.parent))
        {
            const bool isTransition = node.IsTransition();
            details->push_back({isTransition ? Change::Changed : Change::Moved,
                                isTransition ? GetJsonName(JSON_ParentID) : "level",
                                LevelName(old.parent, before), LevelName(node.parent, after)});
        }
        if (LayerBefore(old) != node.layer)
        {
            details->push_back({Change::Moved, "layer", old.layer, node.layer});
        }
        CompareProperties(old.properties, node.properties, details);
        CompareChildren(old, node, details);
        CompareConditions(old.conditions, node.conditions, details);
        CompareAttributes(old.attributes, node.attributes, details);
    }

    static std::string LevelName(unsigned int id, const DocumentModel& model)
    {
        return id == 0 ? kTopLevel : model.NameOfNode(id);
    }

    static unsigned int PropertyNumber(const Node& node, __JSONTYPES__ member)
    {
        const Property* property = FindProperty(node.properties, GetJsonName(member));
        return property != nullptr ? property->number : 0;
    }

    /// Gives the id of the node that `node` says it belongs to.
    static unsigned int OwnerOf(const Node& node)
    {
        return node.IsTransition() ? PropertyNumber(node, JSON_TransitionSource) : node.parent;
    }

    /// Tells whether the line of the child itself, added or moved, says that it is now here.
    bool IsImpliedAfter(unsigned int child, const Node& owner) const
    {
        const std::size_t index = IndexIn(after, child);
        if (index == kUnmatched || OwnerOf(after.nodes[index]) != owner.id)
        {
            return false;
        }
        const std::size_t partner = nodes.after[index];
        return partner == kUnmatched || !IsSameNode(OwnerOf(before.nodes[partner]), owner.id);
    }

    bool IsImpliedBefore(unsigned int child, const Node& owner) const
    {
        const std::size_t index = IndexIn(before, child);
        if (index == kUnmatched || OwnerOf(before.nodes[index]) != owner.id)
        {
            return false;
        }
        const std::size_t partner = nodes.before[index];
        return partner == kUnmatched || !IsSameNode(owner.id, OwnerOf(after.nodes[partner]));
    }

    void CompareChildren(const Node& old, const Node& node, Details* details) const
    {
        Keys left;
        Keys right;
        for (const unsigned int child : old.children)
        {
            left.push_back(KeyBefore(child));
        }
        for (const unsigned int child : node.children)
        {
            right.push_back(KeyAfter(child));
        }
        const ListDifference list = CompareLists(left, right);
        for (const std::size_t i : list.added)
        {
            if (!IsImpliedAfter(node.children[i], node))
            {
                details->push_back(
                    {Change::Added, "child", "", after.NameOfNode(node.children[i])});
            }
        }
        for (const std::size_t i : list.removed)
        {
            if (!IsImpliedBefore(old.children[i], old))
            {
                details->push_back(
                    {Change::Removed, "child", before.NameOfNode(old.children[i]), ""});
            }
        }
        if (list.isReordered)
        {
            details->push_back(
                {Change::Reordered, "children", ChildNames(old, before), ChildNames(node, after)});
        }
    }

    static std::string ChildNames(const Node& node, const DocumentModel& model)
    {
        std::string names;
        for (const unsigned int child : node.children)
        {
            names += (names.empty() ? "" : ", ") + model.NameOfNode(child);
        }
        return names;
    }

    // Of conditions and attributes.

    static std::string Shown(const Condition& condition, const DocumentModel& model)
    {
        return condition.comparison.empty()
                   ? condition.whole
                   : model.NameOfParameter(condition.parameter) + " " + condition.comparison;
    }

    void CompareConditions(const std::vector<Condition>& left, const std::vector<Condition>& right,
                           Details* details) const
    {
        const ListDifference list =
            CompareLists(ConditionKeys(left, before), ConditionKeys(right, after));
        std::vector<std::size_t> added = list.added;
        const bool isOnly = list.removed.size() == 1 && added.size() == 1;
        for (const std::size_t i : list.removed)
        {
            const std::string parameter = ParameterKey(before, left[i].parameter);
            const auto partner = std::find_if(
                added.begin(), added.end(),
                [&](std::size_t j)
                {
                    return isOnly || ParameterKey(after, right[j].parameter) == parameter;
                });
            if (partner == added.end())
            {
                details->push_back({Change::Removed, "condition", Shown(left[i], before), ""});
                continue;
            }
            AddChanged(left[i], right[*partner], details);
            added.erase(partner);
        }
        for (const std::size_t i : added)
        {
            details->push_back({Change::Added, "condition", "", Shown(right[i], after)});
        }
    }

    Keys ConditionKeys(const std::vector<Condition>& conditions, const DocumentModel& model) const
    {
        Keys keys;
        for (const Condition& condition : conditions)
        {
            keys.push_back(ParameterKey(model, condition.parameter) + condition.canonical);
        }
        return keys;
    }

    void AddChanged(const Condition& left, const Condition& right, Details* details) const
    {
        const Detail detail{Change::Changed, "condition", Shown(left, before), Shown(right, after)};
        if (detail.before != detail.after)
        {
            details->push_back(detail);
            return;
        }
        // They test the same; another member, such as the name, has changed.
        const std::size_t size = details->size();
        std::map<std::string, std::string> members = left.members;
        members.insert(right.members.begin(), right.members.end());
        for (const auto& member : members)
        {
            const std::string& name = member.first;
            const std::string old = MemberOf(left, name);
            const std::string now = MemberOf(right, name);
            if (old != now)
            {
                details->push_back({Change::Changed, "condition " + name, old, now});
            }
        }
        if (details->size() == size)
        {
            details->push_back({Change::Changed, "condition", left.whole, right.whole});
        }
    }

    static std::string MemberOf(const Condition& condition, const std::string& name)
    {
        const auto found = condition.members.find(name);
        return found == condition.members.end() ? "none" : found->second;
    }

    static const Attribute* FindAttribute(const std::vector<Attribute>& attributes,
                                          const std::string& name, int occurrence)
    {
        for (const Attribute& attribute : attributes)
        {
            if (attribute.name == name && occurrence-- == 0)
            {
                return &attribute;
            }
        }
        return nullptr;
    }

    static void CompareAttributes(const std::vector<Attribute>& left,
                                  const std::vector<Attribute>& right, Details* details)
    {
        std::map<std::string, int> occurrences;
        for (const Attribute& attribute : right)
        {
            const std::string what = "attribute " + attribute.name;
            const Attribute* old =
                FindAttribute(left, attribute.name, occurrences[attribute.name]++);
            if (old == nullptr)
            {
                details->push_back({Change::Added, what, "", attribute.shown});
            }
            else if (old->canonical != attribute.canonical)
            {
                const bool isSame = old->shown == attribute.shown;
                details->push_back({Change::Changed, what, isSame ? old->whole : old->shown,
                                    isSame ? attribute.whole : attribute.shown});
            }
        }
        occurrences.clear();
        for (const Attribute& attribute : left)
        {
            if (FindAttribute(right, attribute.name, occurrences[attribute.name]++) == nullptr)
            {
                details->push_back(
                    {Change::Removed, "attribute " + attribute.name, attribute.shown, ""});
            }
        }
    }

    // Of what was added or removed.

    static std::string DescribePath(const Node& node, const DocumentModel& model)
    {
        return model.NameOfNode(PropertyNumber(node, JSON_TransitionSource)) + " \xE2\x86\x92 " +
               model.NameOfNode(PropertyNumber(node, JSON_TransitionTarget));
    }

    static std::string DescribePlace(const Node& node, const DocumentModel& model)
    {
        return node.builder + (node.parent == 0 ? " at " : " in ") + LevelName(node.parent, model) +
               (node.layer.empty() ? "" : ", layer " + node.layer);
    }

    static std::string Describe(const Node& node, const DocumentModel& model)
    {
        const bool isTransition = node.IsTransition();
        std::string text = isTransition ? DescribePath(node, model)
                                        : node.builder + (node.parent == 0 ? " at " : " in ") +
                                              LevelName(node.parent, model) +
                                              (node.layer.empty() ? "" : ", layer " + node.layer);
        for (const Property& property : node.properties)
        {
            const bool isPath = property.name == GetJsonName(JSON_TransitionSource) ||
                                property.name == GetJsonName(JSON_TransitionTarget);
            text +=
                isTransition && isPath ? "" : ", " + property.name + " " + Shown(property, model);
        }
        const char* separator = ", when ";
        for (const Condition& condition : node.conditions)
        {
            text += separator + Shown(condition, model);
            separator = " or ";
        }
        for (const Attribute& attribute : node.attributes)
        {
            text += ", attribute " + attribute.name + " " + attribute.shown;
        }
        return text;
    }

    const DocumentModel& before;
    const DocumentModel& after;
    const Matching nodes;
    const Matching parameters;
    std::map<std::string, std::string> renamedLayers; ///< new names by old ones
    std::vector<Difference> result;
};

} // namespace

std::vector<Difference> Compare(const DocumentModel& before, const DocumentModel& after)
{
    return Comparer(before, after).Compare();
}

} // namespace vell::diff
