// VELL: data-driven hierarchical state machines.
// tools/author/Emit.cpp: from states and transitions to nodes in layers.
#include "tools/author/Emit.h"

#include <durm/DURMBaseLib.h>

#include "tools/author/Elements.h"
#include "tools/check/Check.h"
#include "tools/check/DocumentModel.h"
#include "tools/check/LibraryLoad.h"

#include <algorithm>
#include <string>
#include <utility>

namespace vell::author
{
namespace
{

using namespace DURMBaseLib;

constexpr const char* kDefaultLayer = "Base";
constexpr const char* kDefaultType = "character";
constexpr unsigned int kHeadVersion = 3;
constexpr std::uint64_t kUnitBytes = 100;      ///< of the arena per unit of `memory`
constexpr std::uint64_t kReserve = 4;          ///< one part in so many is added
constexpr std::uint64_t kStep = 10;            ///< the figure is a multiple of it
constexpr std::uint64_t kUnknownMemory = 1000; ///< of a document that does not load

std::string_view N(__JSONTYPES__ member)
{
    return GetJsonName(member);
}

class Emitter
{
public:
    explicit Emitter(const Machine& newMachine) : machine(newMachine)
    {
    }

    Made Make()
    {
        Made root = Made::Object({machine.root.file, {}, false});
        root.Set(N(JSON_Head), MakeHead());
        Made& parameters = root.Set(N(JSON_Parameters), Made::Array());
        for (const Parameter& parameter : machine.parameters)
        {
            if (parameter.type != 0)
            {
                parameters.Add(MakeParameter(machine, parameter));
            }
        }
        MakeLayers();
        for (const State& state : machine.states)
        {
            AddState(state);
        }
        AddRaw(machine.rawNodes, layers.elements.back());
        root.Set(N(JSON_Layers), std::move(layers));
        if (const Found skeleton = Find(machine.root, "skeleton"))
        {
            root.Set(N(JSON_Skeleton), Copy(skeleton));
        }
        AddGlobal(root);
        AddMembers(machine, {machine.root}, &root);
        AddAllowed({machine.root}, nullptr, &root);
        return root;
    }

private:
    Made Copy(const Found& found) const
    {
        return Made::Copy(machine.Bytes(found.file), found.member->value, found.file);
    }

    static unsigned int IdOf(const State* state, unsigned int id)
    {
        return state == nullptr ? id : state->id;
    }

    // The head.

    Made MakeHead()
    {
        const Piece& root = machine.root;
        Origin origin{root.file, {}, false};
        const Found name = Find(root, "machine");
        if (name)
        {
            origin = name.Where();
        }
        Made head = Made::Object(origin);
        const Found version = Find(root, "version");
        head.Set(N(JSON_HeadVersion), version ? Copy(version) : Made::Id(kHeadVersion, origin));
        const Found guid = Find(root, "guid");
        head.Set(N(JSON_GUID), guid ? Copy(guid) : Made::Text(TextOf(name), origin));
        if (const Found buildId = Find(root, "buildId"))
        {
            head.Set(N(JSON_HeadBuildID), Copy(buildId));
        }
        const Found type = Find(root, "type");
        head.Set(N(JSON_HeadMachineType), type ? Copy(type) : Made::Text(kDefaultType, origin));
        const Found memory = Find(root, "memory");
        head.Set(N(JSON_HeadMemory), memory ? Copy(memory) : Made::Id(kUnknownMemory, origin));
        const Found start = Find(root, "start");
        const Origin startOrigin = start ? start.Where() : origin;
        const unsigned int id = IdOf(machine.top.start, machine.top.startId);
        head.Set(N(JSON_HeadEnterNode), Made::Id(id, startOrigin));
        head.Set(N(JSON_HeadSubstateRoot), Made::Id(id, startOrigin));
        if (const Found further = Find(root, "head"))
        {
            SetAll(machine, further, &head);
        }
        return head;
    }

    // Layers.

    void MakeLayers()
    {
        if (const Found names = Find(machine.root, "layers"))
        {
            for (const source::Value& name : names->elements)
            {
                NodesOf(name.text, {names.file, name.span, true});
            }
        }
        if (!layers.elements.empty())
        {
            defaultLayer = Find(machine.root, "layers")->elements.front().text;
        }
        for (const State& state : machine.states)
        {
            NodesOf(LayerOf(state), state.origin);
        }
        if (layers.elements.empty())
        {
            NodesOf(defaultLayer, {});
        }
    }

    const std::string& LayerOf(const State& state) const
    {
        return state.layer.empty() ? defaultLayer : state.layer;
    }

    Made& NodesOf(const std::string& layer, const Origin& origin)
    {
        const auto [known, isNew] = layerIndex.emplace(layer, layers.elements.size());
        if (isNew)
        {
            Made made = Made::Object(origin);
            made.Set(N(JSON_Name), Made::Text(layer, origin));
            made.Set(N(JSON_Nodes), Made::Array(origin));
            layers.Add(std::move(made));
        }
        return layers.elements[known->second].members.back().value;
    }

    void AddRaw(const std::vector<Found>& all, Made& layer) const
    {
        for (const Found& nodes : all)
        {
            for (const source::Value& node : nodes->elements)
            {
                layer.members.back().value.Add(
                    Made::Copy(machine.Bytes(nodes.file), node, nodes.file));
            }
        }
    }

    // Nodes.

    /// Begins a node with the members that all have.
    Made BeginNode(const Node& node, const std::string& builder, int parentId)
    {
        Made made = Made::Object(node.origin);
        const Found name = Find(node.pieces, "name");
        if (!name || name->IsString())
        {
            made.Set(N(JSON_Name), name ? Copy(name) : Made::Text(node.name, node.origin));
        }
        const Found id = Find(node.pieces, "id");
        made.Set(N(JSON_ID), Made::Id(node.id, id ? id.Where() : node.origin));
        if (parentId >= 0)
        {
            made.Set(N(JSON_ParentID), Made::Id(0, node.origin));
        }
        made.Set(N(JSON_BuilderType), Made::Text(builder, node.origin));
        return made;
    }

    void EndNode(const Node& node, const State* around, Made* made)
    {
        if (const Found attributes = Find(node.pieces, "attributes"))
        {
            made->Set(N(JSON_Attributes), MakeAttributes(machine, attributes));
        }
        if (const Found script = Find(node.pieces, "script"))
        {
            made->Set(N(JSON_ScriptName), Copy(script));
        }
        AddMembers(machine, node.pieces, made);
        AddAllowed(node.pieces, around, made);
    }

    /// Codes that are allowed in an object of the source are allowed in all nodes that come of it.
    void AddAllowed(const std::vector<Piece>& pieces, const State* around, Made* made)
    {
        Made codes = Made::Array();
        const auto add = [this, &codes](const std::vector<Piece>& from)
        {
            for (const Piece& piece : from)
            {
                if (const Found found = Find(piece, check::kAllowMember))
                {
                    for (const source::Value& code : found->elements)
                    {
                        codes.Add(Made::Copy(machine.Bytes(found.file), code, found.file));
                    }
                }
            }
        };
        add(pieces);
        for (; around != nullptr; around = around->parent)
        {
            add(around->pieces);
        }
        if (!codes.IsEmpty())
        {
            made->Set(check::kAllowMember, std::move(codes));
        }
    }

    static Made ChildIds(const std::vector<Transition*>& transitions)
    {
        Made ids = Made::Array();
        for (const Transition* transition : transitions)
        {
            ids.Add(Made::Id(transition->id, transition->origin));
        }
        return ids;
    }

    void AddState(const State& state)
    {
        Made& nodes = NodesOf(LayerOf(state), state.origin);
        const std::string builder = state.builderText.empty()
                                        ? WordFor(check::Words::Builders, state.builder)
                                        : state.builderText;
        Made made = BeginNode(state, builder, 0);
        const unsigned int parentId = state.parent == nullptr ? 0 : state.parent->id;
        made.Set(N(JSON_ParentID), Made::Id(parentId, state.origin));
        if (!state.transitions.empty())
        {
            made.Set(N(JSON_Children), ChildIds(state.transitions));
        }
        AddOwn(state, &made);
        EndNode(state, state.parent, &made);
        nodes.Add(std::move(made));
        for (const Transition* transition : state.transitions)
        {
            nodes.Add(MakeTransition(*transition, state.id));
        }
        if (state.hasEnter)
        {
            nodes.Add(MakeEnter(state));
        }
        if (state.hasExit)
        {
            nodes.Add(MakeExit(state));
        }
    }

    /// Adds what a state of this kind has and others have not.
    void AddOwn(const State& state, Made* made) const
    {
        const auto copy = [this, &state, made](const char* name, __JSONTYPES__ member)
        {
            if (const Found found = Find(state.pieces, name))
            {
                made->Set(N(member), Copy(found));
            }
        };
        copy("clip", JSON_ClipName);
        copy("clipFlag", JSON_ClipFlag);
        copy("secondaryA", JSON_ClipSecondaryA);
        copy("secondaryB", JSON_ClipSecondaryB);
        copy("connector", JSON_ConnectorType);
        if (state.hasEnter)
        {
            made->Set(N(JSON_SubstateEnter), Made::Id(state.enter.id, state.origin));
        }
        if (state.hasExit || state.end != nullptr)
        {
            made->Set(N(JSON_SubstateExit),
                      Made::Id(state.hasExit ? state.exit.id : state.end->id, state.origin));
        }
        if (const Found next = Find(state.pieces, "next"))
        {
            made->Set(N(JSON_EntryTarget),
                      Made::Id(IdOf(state.start, state.startId), next.Where()));
        }
        if (const Found connector = Find(state.pieces, "exitConnector"))
        {
            made->Set(
                N(JSON_ExitConnector),
                Made::Id(IdOf(state.exitConnector, connector->ReadUInt()), connector.Where()));
        }
    }

    Made MakeEnter(const State& state)
    {
        Made made = BeginNode(state.enter, WordFor(check::Words::Builders, BUILDER_Enter), 0);
        made.Set(N(JSON_ParentID), Made::Id(state.id, state.enter.origin));
        const Found start = Find(state.pieces, "start");
        made.Set(N(JSON_EntryTarget), Made::Id(IdOf(state.start, state.startId),
                                               start ? start.Where() : state.enter.origin));
        EndNode(state.enter, &state, &made);
        return made;
    }

    Made MakeExit(const State& state)
    {
        Made made = BeginNode(state.exit, WordFor(check::Words::Builders, BUILDER_Exit), 0);
        made.Set(N(JSON_ParentID), Made::Id(state.id, state.exit.origin));
        EndNode(state.exit, &state, &made);
        return made;
    }

    Made MakeTransition(const Transition& transition, unsigned int sourceId)
    {
        Made made = BeginNode(transition, WordFor(check::Words::Builders, BUILDER_Transition), -1);
        const Found to = Find(transition.pieces, "to");
        const auto copy = [this, &transition, &made](const char* name, __JSONTYPES__ member)
        {
            if (const Found found = Find(transition.pieces, name))
            {
                made.Set(N(member), Copy(found));
            }
        };
        made.Set(N(JSON_TransitionSource), Made::Id(sourceId, transition.origin));
        if (to)
        {
            made.Set(N(JSON_TransitionTarget),
                     Made::Id(IdOf(transition.target, transition.targetId), to.Where()));
        }
        copy("priority", JSON_TransitionPriority);
        copy("disabled", JSON_TransitionDisabled);
        copy("blend", JSON_TransitionSwitchArgument);
        copy("tag", JSON_TransitionTag);
        copy("tagArgument", JSON_TransitionTagArgument);
        made.Set(N(JSON_Conditions), MakeConditions(machine, transition));
        EndNode(transition, transition.owner, &made);
        return made;
    }

    void AddGlobal(Made& root)
    {
        if (!machine.hasGlobal && machine.rawGlobalNodes.empty())
        {
            return;
        }
        Made& nodes = root.Set(N(JSON_Global), Made::Array());
        if (machine.hasGlobal)
        {
            Made made =
                BeginNode(machine.global, WordFor(check::Words::Builders, BUILDER_Global), 0);
            if (!machine.interrupts.empty())
            {
                made.Set(N(JSON_Children), ChildIds(machine.interrupts));
            }
            EndNode(machine.global, nullptr, &made);
            nodes.Add(std::move(made));
        }
        for (const Transition* transition : machine.interrupts)
        {
            nodes.Add(MakeTransition(*transition, machine.global.id));
        }
        AddRaw(machine.rawGlobalNodes, root);
    }

    const Machine& machine;
    Made layers = Made::Array();
    std::string defaultLayer = kDefaultLayer;
    std::unordered_map<std::string, std::size_t> layerIndex;
};

/// Tells whether the source gives the memory.
bool IsMemoryGiven(const Machine& machine)
{
    const Found head = Find(machine.root, "head");
    const Found members = Find(machine.root, "members");
    return Find(machine.root, "memory") ||
           (head && head->Find(GetJsonName(JSON_HeadMemory)) != nullptr) ||
           (members && members->Find(GetJsonName(JSON_Head)) != nullptr);
}

} // namespace

Made MakeDocument(const Machine& machine)
{
    return Emitter(machine).Make();
}

void GiveMemory(const Machine& machine, Made* document)
{
    if (IsMemoryGiven(machine))
    {
        return;
    }
    const source::Text text = source::ReadText(ToJson(*document));
    const check::DocumentModel model(text.root);
    const check::Loading loading = check::LoadDocument(model, text.bytes);
    if (!loading.isLoaded)
    {
        return;
    }
    const std::uint64_t bytes = loading.used + check::CountStateBytes(model);
    const std::uint64_t units = (bytes + bytes / kReserve + kUnitBytes - 1) / kUnitBytes;
    Made& head = document->members.front().value;
    Origin origin = head.origin;
    head.Set(N(JSON_HeadMemory), Made::Id((units + kStep - 1) / kStep * kStep, origin));
}

} // namespace vell::author
