// VELL: data-driven hierarchical state machines.
// tools/author/DocumentTree.cpp: which node has a place, and under which name.
#include "tools/author/DocumentTree.h"

#include <durm/DURMBaseLib.h>

#include "tools/check/MemberTable.h"

#include <algorithm>

namespace vell::author
{
namespace
{

using namespace DURMBaseLib;
using check::NodeModel;

/// Gives the name, or else another, that `known` has not.
std::string Unique(const std::string& name, std::unordered_set<std::string>& known)
{
    std::string unique = name;
    for (int number = 2; !known.insert(unique).second; ++number)
    {
        unique = name + " " + std::to_string(number);
    }
    return unique;
}

std::string KeyOf(const NodeModel& node)
{
    std::string key(node.name);
    std::replace(key.begin(), key.end(), '/', '-');
    if (key.empty())
    {
        const std::string title = check::TitleOfNode(node.builder);
        key = title.substr(title.find(' ') + 1) + " " + std::to_string(node.id);
    }
    return key;
}

} // namespace

DocumentTree::DocumentTree(const source::Value& root) : model(root)
{
    NameLayers();
    FindGlobal();
    FindStates();
    FindEnds();
    FindTransitions();
    Grow();
}

Role DocumentTree::RoleOf(const NodeModel& node) const
{
    const auto found = roles.find(&node);
    return found == roles.end() ? Role::Raw : found->second;
}

const Branch* DocumentTree::FindBranch(const NodeModel* node) const
{
    const auto found = branches.find(node);
    return found == branches.end() ? nullptr : &found->second;
}

void DocumentTree::NameLayers()
{
    std::unordered_set<std::string> known;
    for (const check::NodeArray& array : model.arrays)
    {
        layers.push_back(Unique(array.layer.empty() ? "Base" : std::string(array.layer), known));
    }
}

/// The first node of `global`, when it is the only one of its kind.
void DocumentTree::FindGlobal()
{
    const auto isGlobal = [this](const NodeModel& node)
    {
        return model.IsInGlobal(node);
    };
    const auto first = std::find_if(model.nodes.begin(), model.nodes.end(), isGlobal);
    if (first == model.nodes.end() || !first->Is(BUILDER_Global) || !first->isFirst ||
        first->id == 0)
    {
        return;
    }
    const auto count = std::count_if(model.nodes.begin(), model.nodes.end(),
                                     [](const NodeModel& node)
                                     {
                                         return node.Is(BUILDER_Global);
                                     });
    if (count == 1)
    {
        global = &*first;
        roles[global] = Role::Global;
    }
}

bool DocumentTree::IsState(const NodeModel& node) const
{
    return node.isFirst && node.id != 0 && !model.IsInGlobal(node) && node.builder != 0 &&
           !node.Is(BUILDER_Transition) && !node.Is(BUILDER_Condition) && !node.Is(BUILDER_Global);
}

/// Its parents are substates, up to the top.
bool DocumentTree::HasSoundParents(const NodeModel& node) const
{
    std::size_t depth = 0;
    for (unsigned int id = node.parentId; id != 0;)
    {
        const NodeModel* const parent = model.FindNode(id);
        if (parent == nullptr || !IsState(*parent) || !parent->Is(BUILDER_Substate) ||
            ++depth > kMostLevels)
        {
            return false;
        }
        id = parent->parentId;
    }
    return true;
}

void DocumentTree::FindStates()
{
    for (const NodeModel& node : model.nodes)
    {
        if (IsState(node) && HasSoundParents(node))
        {
            roles[&node] = Role::State;
        }
        if (node.Is(BUILDER_Transition))
        {
            targets.insert(node.target);
        }
        targets.insert(node.entryTarget);
        targets.insert(check::ReadId(*node.value, JSON_ExitConnector));
    }
    if (model.head != nullptr)
    {
        targets.insert(check::ReadId(*model.head, JSON_HeadEnterNode));
        targets.insert(check::ReadId(*model.head, JSON_HeadSubstateRoot));
    }
}

/// A level gets its enter node, and an exit node to which nothing leads. The compiler writes both
/// before the states of the level; an exit node behind one of them was a state of its own.
void DocumentTree::FindEnds()
{
    for (const NodeModel& node : model.nodes)
    {
        if (RoleOf(node) != Role::State || !node.Is(BUILDER_Substate))
        {
            continue;
        }
        const auto isOwn = [this, &node](const NodeModel* end, int builder)
        {
            return end != nullptr && end->Is(builder) && end->parentId == node.id &&
                   end->array == node.array && RoleOf(*end) == Role::State &&
                   end->children.empty() && targets.count(end->id) == 0;
        };
        const NodeModel* const enter =
            model.FindNode(check::ReadId(*node.value, JSON_SubstateEnter));
        const NodeModel* const exit = model.FindNode(check::ReadId(*node.value, JSON_SubstateExit));
        if (isOwn(enter, BUILDER_Enter))
        {
            roles[enter] = Role::Enter;
            branches[&node].enter = enter;
        }
        if (isOwn(exit, BUILDER_Exit) && IsFirstIn(node, *exit))
        {
            roles[exit] = Role::Exit;
            branches[&node].exit = exit;
        }
    }
}

bool DocumentTree::IsFirstIn(const NodeModel& level, const NodeModel& end) const
{
    const unsigned int enter = check::ReadId(*level.value, JSON_SubstateEnter);
    for (const NodeModel& node : model.nodes)
    {
        if (&node == &end)
        {
            return true;
        }
        if (node.parentId == level.id && node.array == end.array && node.id != enter &&
            RoleOf(node) == Role::State)
        {
            return false;
        }
    }
    return false;
}

void DocumentTree::FindTransitions()
{
    for (const NodeModel& node : model.nodes)
    {
        if (RoleOf(node) == Role::State)
        {
            FindTransitionsOf(node, branches[&node].transitions);
        }
    }
    if (global != nullptr)
    {
        FindTransitionsOf(*global, interrupts);
    }
}

void DocumentTree::FindTransitionsOf(const NodeModel& owner, std::vector<const NodeModel*>& list)
{
    for (const check::ChildModel& child : owner.children)
    {
        const NodeModel* const node = child.node;
        const bool isOwn = node != nullptr && node->Is(BUILDER_Transition) && node->isFirst &&
                           node->id != 0 && node->listers.size() == 1 &&
                           model.IsInGlobal(*node) == model.IsInGlobal(owner) &&
                           RoleOf(*node) == Role::Raw;
        if (isOwn)
        {
            roles[node] = Role::Transition;
            list.push_back(node);
        }
    }
}

void DocumentTree::Grow()
{
    for (const NodeModel& node : model.nodes)
    {
        if (RoleOf(node) == Role::State)
        {
            Branch& branch = branches[&node];
            Branch& parent = node.parentId == 0 ? top : branches[model.FindNode(node.parentId)];
            branch.node = &node;
            branch.parent = node.parentId == 0 ? nullptr : &parent;
            parent.children.push_back(&branch);
        }
    }
    NameChildren(top);
}

void DocumentTree::NameChildren(Branch& branch)
{
    std::unordered_set<std::string> known;
    for (Branch* child : branch.children)
    {
        child->key = Unique(KeyOf(*child->node), known);
        child->path = (branch.path.empty() ? "" : branch.path + "/") + child->key;
        NameChildren(*child);
    }
}

} // namespace vell::author
