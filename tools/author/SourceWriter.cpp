// VELL: data-driven hierarchical state machines.
// tools/author/SourceWriter.cpp: nested states, in the short forms where they say the same.
#include "tools/author/SourceWriter.h"

#include <durm/DURMBaseLib.h>

#include "tools/author/Elements.h"
#include "tools/author/ShortForms.h"
#include "tools/check/Check.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace vell::author
{
namespace
{

using namespace DURMBaseLib;
using check::NodeModel;
using source::Value;

class Writer
{
public:
    Writer(const source::Text& newDocument, const DocumentTree& newTree,
           const Additions& newAdditions, const DecompileOptions& newOptions)
        : document(newDocument), tree(newTree), additions(newAdditions), options(newOptions)
    {
    }

    Made Write()
    {
        Made root = Made::Object();
        AddHead(root);
        AddLayers(root);
        AddParameters(root);
        AddStart(root);
        root.Set("states", StatesOf(tree.top));
        AddInterrupts(root);
        AddRaw("nodes", false, root);
        AddRaw("globalNodes", true, root);
        if (const Value* skeleton = check::Find(document.root, JSON_Skeleton))
        {
            root.Set("skeleton", Copy(*skeleton));
        }
        AddAdditions(&document.root, &root);
        return root;
    }

private:
    Made Copy(const Value& value) const
    {
        return Made::Copy(document.bytes, value);
    }

    /// Copies a member under the name that it has in a source, when it is of a kind.
    void Take(const Value& object, __JSONTYPES__ member, const char* name,
              bool (Value::*is)() const, Made* made) const
    {
        const Value* const value = check::Find(object, member);
        if (value != nullptr && (value->*is)())
        {
            made->Set(name, Copy(*value));
        }
    }

    // The head.

    void AddHead(Made& root) const
    {
        static const Value kNone;
        const Value& head = tree.model.head == nullptr ? kNone : *tree.model.head;
        const std::string guid(check::ReadText(head, JSON_GUID));
        const std::string name = guid.empty() ? options.name : guid;
        root.Set("machine", Made::Text(name));
        const Value* const type = check::Find(head, JSON_HeadMachineType);
        const bool isKnown = type != nullptr && type->IsString() &&
                             check::NumberOf(check::Words::MachineTypes, type->text) != 0;
        if (isKnown && type->text != "character")
        {
            root.Set("type", Copy(*type));
        }
        Take(head, JSON_HeadBuildID, "buildId", &Value::IsString, &root);
        const Value* const version = check::Find(head, JSON_HeadVersion);
        if (version != nullptr && version->kind == source::Kind::UInt && version->bits != 3)
        {
            root.Set("version", Copy(*version));
        }
        if (!options.isTidy)
        {
            Take(head, JSON_HeadMemory, "memory", &Value::IsInteger, &root);
        }
        const auto added = additions.members.find(&head);
        if (added != additions.members.end())
        {
            root.Set("head", added->second);
        }
    }

    void AddStart(Made& root) const
    {
        const Value* const start = tree.model.head == nullptr
                                       ? nullptr
                                       : check::Find(*tree.model.head, JSON_HeadSubstateRoot);
        root.Set("start", NameOf(start == nullptr ? 0 : start->ReadUInt(), nullptr));
    }

    /// Lists the layers, unless the only one is that of a source without any.
    void AddLayers(Made& root) const
    {
        Made list = Made::Array();
        for (const check::NodeArray& array : tree.model.arrays)
        {
            if (!array.isGlobal)
            {
                list.Add(Made::Text(tree.layers[list.elements.size()]));
            }
        }
        if (list.elements.size() > 1 || DefaultLayer() != "Base")
        {
            root.Set("layers", std::move(list));
        }
    }

    /// The layer of states that name none.
    std::string DefaultLayer() const
    {
        return tree.model.arrays.empty() || tree.model.arrays.front().isGlobal
                   ? std::string("Base")
                   : tree.layers.front();
    }

    void AddParameters(Made& root) const
    {
        Made parameters = Made::Object();
        for (const check::ParameterModel& parameter : tree.model.parameters)
        {
            const auto added = additions.members.find(parameter.value);
            const bool isAdded = added != additions.members.end();
            Made made = ParameterOf(document, parameter, !isAdded);
            if (isAdded)
            {
                made.Set("members", added->second);
            }
            parameters.Set(parameter.name, std::move(made));
        }
        if (!parameters.IsEmpty())
        {
            root.Set("parameters", std::move(parameters));
        }
    }

    // Nodes.

    /// The name by which a state of `level` finds the node `id`, or else the id. A state of another
    /// level has a name only where one of `isAnywhere` may be meant.
    Made NameOf(unsigned int id, const Branch* level, bool isAnywhere = false) const
    {
        const Branch* const branch = tree.FindBranch(tree.model.FindNode(id));
        const bool isPlaced = branch != nullptr && branch->node != nullptr &&
                              tree.RoleOf(*branch->node) == Role::State;
        if (!isPlaced)
        {
            return Made::Id(id);
        }
        return branch->parent == level ? Made::Text(branch->key)
               : isAnywhere            ? Made::Text("/" + branch->path)
                                       : Made::Id(id);
    }

    /// Adds name, id, attributes, script and what was learned.
    void AddCommon(const NodeModel& node, const std::string& name, const std::string& path,
                   Made* made) const
    {
        const Value* const nameValue = check::Find(*node.value, JSON_Name);
        if (nameValue == nullptr)
        {
            made->Set("name", Made::Raw("null"));
        }
        else if (nameValue->IsString() && nameValue->text != name)
        {
            made->Set("name", Copy(*nameValue));
        }
        if (node.id != check::CrcOf(path) && !options.isTidy)
        {
            made->Set("id", Made::Id(node.id));
        }
        const Value* const list = check::Find(*node.value, JSON_Attributes);
        std::optional<Made> attributes =
            list == nullptr ? std::nullopt : AttributesOf(document, *list);
        if (attributes)
        {
            made->Set("attributes", std::move(*attributes));
        }
        Take(*node.value, JSON_ScriptName, "script", &Value::IsString, made);
        AddAdditions(node.value, made);
    }

    void AddAdditions(const Value* object, Made* made) const
    {
        const auto added = additions.members.find(object);
        if (added == additions.members.end())
        {
            return;
        }
        Made members = added->second;
        if (const Made* comment = members.Find(check::kCommentMember))
        {
            made->Set(check::kCommentMember, *comment);
            members.Remove(check::kCommentMember);
        }
        if (const Made* before = made->Find("members"))
        {
            for (const MadeMember& member : before->members)
            {
                members.Set(member.name, member.value);
            }
        }
        if (!members.IsEmpty())
        {
            made->Set("members", std::move(members));
        }
    }

    Made StatesOf(const Branch& branch) const
    {
        Made states = Made::Object();
        for (const Branch* child : branch.children)
        {
            states.members.push_back({child->key, StateOf(*child)});
        }
        return states;
    }

    Made StateOf(const Branch& branch) const
    {
        const NodeModel& node = *branch.node;
        Made made = Made::Object();
        AddKind(branch, &made);
        const std::string layer =
            branch.parent == nullptr ? DefaultLayer() : tree.LayerOf(*branch.parent->node);
        if (tree.LayerOf(node) != layer)
        {
            made.Set("layer", Made::Text(tree.LayerOf(node)));
        }
        if (node.Is(BUILDER_Substate))
        {
            AddEnds(branch, &made);
        }
        AddCommon(node, branch.key, branch.path, &made);
        if (!branch.children.empty())
        {
            made.Set("states", StatesOf(branch));
        }
        if (!branch.transitions.empty())
        {
            made.Set("go", TransitionsOf(branch.transitions, &branch));
        }
        return made;
    }

    /// Says of what kind a state is, where the source does not see it by its other members.
    void AddKind(const Branch& branch, Made* made) const
    {
        const NodeModel& node = *branch.node;
        Made kind = OwnOf(branch);
        const bool isSeen = IsSeen(branch, kind);
        if (const unsigned int connector = check::ReadId(*node.value, JSON_ExitConnector))
        {
            kind.Set("exitConnector", NameOf(connector, branch.parent, true));
        }
        const std::string builder(check::ReadText(*node.value, JSON_BuilderType));
        if (!isSeen || builder != WordFor(check::Words::Builders, node.builder))
        {
            made->Set("builder", Made::Text(builder));
        }
        for (MadeMember& member : kind.members)
        {
            made->members.push_back(std::move(member));
        }
    }

    /// Gives what a state of its kind has and others have not.
    Made OwnOf(const Branch& branch) const
    {
        const NodeModel& node = *branch.node;
        const Value& value = *node.value;
        Made own = Made::Object();
        if (node.Is(BUILDER_AnimClip))
        {
            Take(value, JSON_ClipName, "clip", &Value::IsString, &own);
            Take(value, JSON_ClipFlag, "clipFlag", &Value::IsBool, &own);
            DropDefault("clipFlag", own);
            Take(value, JSON_ClipSecondaryA, "secondaryA", &Value::IsString, &own);
            Take(value, JSON_ClipSecondaryB, "secondaryB", &Value::IsString, &own);
        }
        const std::string word(check::ReadText(value, JSON_ConnectorType));
        if (node.Is(BUILDER_Connector) && check::NumberOf(check::Words::Connectors, word) != 0)
        {
            own.Set("connector", Made::Text(word));
        }
        if (node.Is(BUILDER_Exit))
        {
            own.Set("ends", Made::Flag(true));
        }
        if ((node.Is(BUILDER_Exit) || node.Is(BUILDER_Enter)) && node.entryTarget != 0)
        {
            own.Set("next", NameOf(node.entryTarget, branch.parent));
        }
        return own;
    }

    /// A tidy source does not say what is so anyway.
    void DropDefault(const char* name, Made& made) const
    {
        const Made* const value = made.Find(name);
        if (options.isTidy && value != nullptr && value->json == "false")
        {
            made.Remove(name);
        }
    }

    /// Tells whether a source sees the kind of a state by its members.
    static bool IsSeen(const Branch& branch, const Made& own)
    {
        const NodeModel& node = *branch.node;
        return node.Is(BUILDER_Generic) || node.Is(BUILDER_Exit) ||
               (node.Is(BUILDER_AnimClip) && !own.IsEmpty()) ||
               (node.Is(BUILDER_Connector) && !own.IsEmpty()) ||
               (node.Is(BUILDER_Substate) && (!branch.children.empty() || branch.enter != nullptr));
    }

    /// Adds where a level starts and ends.
    void AddEnds(const Branch& branch, Made* made) const
    {
        const Value& value = *branch.node->value;
        Made members = Made::Object();
        const auto given = [this, &value, &members](__JSONTYPES__ member)
        {
            const Value* const id = check::Find(value, member);
            members.Set(GetJsonName(member), id == nullptr ? Made::Raw("null") : Copy(*id));
        };
        if (branch.enter != nullptr)
        {
            AddStartOf(branch, made);
            AddEnd(*branch.enter, branch, "enter", "In", "/(in)", false, made);
        }
        else
        {
            given(JSON_SubstateEnter);
        }
        AddExit(branch, made, given);
        if (!members.IsEmpty())
        {
            made->Set("members", std::move(members));
        }
    }

    void AddStartOf(const Branch& branch, Made* made) const
    {
        const unsigned int target = branch.enter->entryTarget;
        const Branch* const start = tree.FindBranch(tree.model.FindNode(target));
        const bool isChild = start != nullptr && start->node != nullptr && start->parent == &branch;
        made->Set("start", isChild ? Made::Text(start->key) : Made::Id(target));
    }

    template <class Given>
    void AddExit(const Branch& branch, Made* made, Given given) const
    {
        const Branch* first = nullptr;
        for (const Branch* child : branch.children)
        {
            first = first == nullptr && child->node->Is(BUILDER_Exit) ? child : first;
        }
        const unsigned int id = check::ReadId(*branch.node->value, JSON_SubstateExit);
        const Branch* const end = tree.FindBranch(tree.model.FindNode(id));
        if (branch.exit != nullptr)
        {
            AddEnd(*branch.exit, branch, "exit", "Out", "/(out)", first != nullptr, made);
        }
        else if (end != nullptr && end->node != nullptr && end->parent == &branch)
        {
            if (end != first)
            {
                made->Set("exit", Made::Text(end->key));
            }
        }
        else
        {
            given(JSON_SubstateExit);
        }
    }

    void AddEnd(const NodeModel& node, const Branch& branch, const char* member,
                const std::string& suffix, const std::string& pathSuffix, bool isForced,
                Made* made) const
    {
        Made end = Made::Object();
        AddCommon(node, branch.key + suffix, branch.path + pathSuffix, &end);
        if (options.isTidy)
        {
            end.Remove("name");
        }
        if (!end.IsEmpty() || isForced)
        {
            made->Set(member, std::move(end));
        }
    }

    // Transitions.

    Made TransitionsOf(const std::vector<const NodeModel*>& transitions, const Branch* owner) const
    {
        std::unordered_map<std::string, unsigned int> counts;
        Made list = Made::Array();
        for (const NodeModel* transition : transitions)
        {
            list.Add(TransitionOf(*transition, owner, counts));
        }
        return list;
    }

    Made TransitionOf(const NodeModel& node, const Branch* owner,
                      std::unordered_map<std::string, unsigned int>& counts) const
    {
        const Value& value = *node.value;
        Made made = Made::Object();
        const Value* const target = check::Find(value, JSON_TransitionTarget);
        const unsigned int id = target == nullptr ? 0 : target->ReadUInt();
        if (target != nullptr)
        {
            made.Set("to", NameOf(id, owner == nullptr ? nullptr : owner->parent));
        }
        else
        {
            made.Set("to", Made::Id(0));
        }
        made.Set("when", ConditionsOf(node));
        Take(value, JSON_TransitionPriority, "priority", &Value::IsInteger, &made);
        Take(value, JSON_TransitionDisabled, "disabled", &Value::IsBool, &made);
        Take(value, JSON_TransitionSwitchArgument, "blend", &Value::IsNumber, &made);
        Take(value, JSON_TransitionTag, "tag", &Value::IsInteger, &made);
        Take(value, JSON_TransitionTagArgument, "tagArgument", &Value::IsInteger, &made);
        const Branch* const branch = tree.FindBranch(tree.model.FindNode(id));
        const Branch* const level = owner == nullptr ? nullptr : owner->parent;
        const bool isPlaced =
            branch != nullptr && branch->node != nullptr && branch->parent == level;
        const std::string number = std::to_string(id);
        const std::string ownerKey = owner == nullptr ? "Interrupts" : owner->key;
        std::string name = TransitionName(ownerKey, isPlaced ? branch->key : number);
        std::string path = (owner == nullptr ? "(interrupts)" : owner->path) + " -> " +
                           (isPlaced ? branch->path : number);
        Number(node, counts, &name, &path);
        AddCommon(node, name, path, &made);
        return made;
    }

    /// The default name has a number when another transition has the same states, and a name of its
    /// own is a part of the path.
    static void Number(const NodeModel& node, std::unordered_map<std::string, unsigned int>& counts,
                       std::string* name, std::string* path)
    {
        const unsigned int next = counts[*path] + 1;
        const std::string numbered = *name + (next > 1 ? std::to_string(next) : "");
        const bool hasOwn = !node.name.empty() && node.name != numbered;
        *path += hasOwn ? " (" + std::string(node.name) + ")" : "";
        const unsigned int count = ++counts[*path];
        *name = count > 1 && !hasOwn ? numbered : *name;
        *path += count > 1 ? " #" + std::to_string(count) : "";
    }

    /// One condition is written alone.
    Made ConditionsOf(const NodeModel& node) const
    {
        Made list = Made::Array();
        for (const check::ConditionModel& condition : node.conditions)
        {
            list.Add(ConditionOf(condition));
        }
        return list.elements.size() == 1 ? list.elements.front() : list;
    }

    Made ConditionOf(const check::ConditionModel& condition) const
    {
        const std::string expression = ExpressionOf(tree.model, condition);
        Made made = Made::Object();
        if (expression.empty() || additions.verbatim.count(condition.value) != 0)
        {
            made.Set("members", Copy(*condition.value));
            return made;
        }
        const Value* const name = check::Find(*condition.value, JSON_Name);
        const unsigned int id = check::ReadId(*condition.value, JSON_ID);
        const bool isNamed = name != nullptr && name->IsString();
        if (options.isTidy || (isNamed && name->text == expression && id == 0))
        {
            return Made::Text(expression);
        }
        made.Set("if", Made::Text(expression));
        if (!isNamed || name->text != expression)
        {
            made.Set("name", isNamed ? Copy(*name) : Made::Raw("null"));
        }
        if (id != 0)
        {
            made.Set("id", Made::Id(id));
        }
        return made;
    }

    /// A document may have no node for interrupts, which a source gets by itself.
    void AddInterrupts(Made& root) const
    {
        if (tree.global == nullptr)
        {
            if (!options.isTidy)
            {
                root.Set("global", Made::Raw("null"));
            }
            return;
        }
        if (!tree.interrupts.empty())
        {
            root.Set("interrupts", TransitionsOf(tree.interrupts, nullptr));
        }
        Made global = Made::Object();
        AddCommon(*tree.global, "Interrupts", "(interrupts)", &global);
        if (!global.IsEmpty())
        {
            root.Set("global", std::move(global));
        }
    }

    // What has no place.

    void AddRaw(const char* member, bool isGlobal, Made& root) const
    {
        Made nodes = Made::Array();
        for (const NodeModel& node : tree.model.nodes)
        {
            if (tree.RoleOf(node) == Role::Raw && tree.model.IsInGlobal(node) == isGlobal)
            {
                nodes.Add(Copy(*node.value));
            }
        }
        if (!nodes.IsEmpty())
        {
            root.Set(member, std::move(nodes));
        }
    }

    const source::Text& document;
    const DocumentTree& tree;
    const Additions& additions;
    const DecompileOptions& options;
};

} // namespace

void Additions::Put(const Value* object, Made added)
{
    if (added.IsEmpty())
    {
        return;
    }
    Made& known = members.emplace(object, Made::Object()).first->second;
    for (MadeMember& member : added.members)
    {
        known.Set(member.name, std::move(member.value));
    }
}

Made WriteSource(const source::Text& document, const DocumentTree& tree, const Additions& additions,
                 const DecompileOptions& options)
{
    return Writer(document, tree, additions, options).Write();
}

} // namespace vell::author
