// VELL: data-driven hierarchical state machines.
// tools/vell/Graph.cpp: from definitions to nodes and edges.
#include "tools/vell/Graph.h"

#include <vell/ConditionDef.h>
#include <vell/TransitionDef.h>

#include "definitions/EnterDef.h"
#include "definitions/ExitDef.h"
#include "definitions/GlobalDef.h"
#include "definitions/NodeDefTable.h"
#include "definitions/SubstateDef.h"
#include "tools/vell/ObservedMachine.h"
#include "tools/vell/ParameterText.h"

#include <algorithm>
#include <map>
#include <set>

namespace vell::tool
{
namespace
{

NodeShape ShapeOf(BaseDef& def)
{
    if (dynamic_cast<SubstateDef*>(&def) != nullptr)
    {
        return NodeShape::Level;
    }
    if (dynamic_cast<EnterDef*>(&def) != nullptr)
    {
        return NodeShape::Enter;
    }
    if (dynamic_cast<ExitDef*>(&def) != nullptr)
    {
        return NodeShape::Exit;
    }
    if (dynamic_cast<GlobalDef*>(&def) != nullptr)
    {
        return NodeShape::Global;
    }
    return (def.GetFlags() & DefTypesState) != 0 ? NodeShape::State : NodeShape::Other;
}

/// Builds one graph.
class Reader
{
public:
    explicit Reader(const ObservedMachine& newMachine)
        : machine(newMachine), table(*newMachine.Nodes())
    {
    }

    Graph Read()
    {
        Light(machine.MainStack(), NodeLight::Waiting);
        Light(machine.BlipStack(), NodeLight::Waiting);
        Light(machine.Stack(), NodeLight::Active);
        SortByLevel();
        for (BaseDef* def : levels[0])
        {
            AddNode(*def, graph.nodes);
        }
        // Substates that contain each other are not reached from the root.
        for (const auto& [id, def] : table.nodes)
        {
            if (IsNode(*def) && placed.count(id) == 0)
            {
                AddNode(*def, graph.nodes);
            }
        }
        for (const auto& [id, def] : table.nodes)
        {
            AddEdgesOf(id, *def);
        }
        AddUnlistedTransitions();
        AddUnknownNodes();
        return graph;
    }

private:
    static bool IsNode(BaseDef& def)
    {
        return (def.GetFlags() & (DefTypesTransition | DefTypesCondition | DefTypesParameter)) == 0;
    }

    void Light(const std::vector<SMState*>& stack, NodeLight light)
    {
        for (const SMState* state : stack)
        {
            lights[state->GetID()] = light;
        }
    }

    NodeLight LightOf(unsigned int id) const
    {
        const auto entry = lights.find(id);
        return entry == lights.end() ? NodeLight::None : entry->second;
    }

    void SortByLevel()
    {
        for (const auto& [id, def] : table.nodes)
        {
            if (IsNode(*def))
            {
                const bool isInside =
                    dynamic_cast<SubstateDef*>(table.Find(def->GetParentID())) != nullptr;
                levels[isInside ? def->GetParentID() : 0].push_back(def);
            }
        }
    }

    void AddNode(BaseDef& def, std::vector<GraphNode>& list)
    {
        const unsigned int id = def.GetID();
        if (!placed.insert(id).second)
        {
            return;
        }
        GraphNode node;
        node.id = id;
        node.name = NameOf(def);
        node.shape = ShapeOf(def);
        node.isStart = id == machine.StartStateId();
        node.light = LightOf(id);
        if (node.shape == NodeShape::Level)
        {
            for (BaseDef* inner : levels[id])
            {
                AddNode(*inner, node.inside);
            }
        }
        list.push_back(node);
    }

    void AddEdgesOf(unsigned int id, BaseDef& def)
    {
        std::vector<TransitionDef*> transitions;
        for (unsigned int i = 0; i < def.GetNumChildren(); ++i)
        {
            auto* transition = dynamic_cast<TransitionDef*>(table.Find(def.GetChildID(i)));
            if (transition != nullptr)
            {
                listed.insert(transition);
                transitions.push_back(transition);
            }
        }
        std::stable_sort(transitions.begin(), transitions.end(),
                         [](const TransitionDef* left, const TransitionDef* right)
                         {
                             return left->priority < right->priority;
                         });
        for (TransitionDef* transition : transitions)
        {
            AddTransition(id, *transition);
        }
        if (auto* enter = dynamic_cast<EnterDef*>(&def))
        {
            GraphEdge edge;
            edge.from = id;
            edge.to = enter->targetId;
            edge.isEntry = true;
            graph.edges.push_back(edge);
        }
    }

    void AddUnlistedTransitions()
    {
        for (const auto& [id, def] : table.nodes)
        {
            auto* transition = dynamic_cast<TransitionDef*>(def);
            if (transition != nullptr && listed.count(transition) == 0)
            {
                AddTransition(def->GetParentID(), *transition);
                graph.edges.back().isUnlisted = true;
            }
        }
    }

    void AddTransition(unsigned int from, TransitionDef& transition)
    {
        GraphEdge edge;
        edge.from = from;
        edge.to = transition.targetID;
        edge.name = NameOf(transition);
        edge.ends = NameOfId(from) + " -> " + NameOfId(transition.targetID);
        edge.priority = transition.priority;
        edge.isDisabled = transition.disabled;
        for (const ConditionDef* condition : transition.conditions)
        {
            edge.conditions.push_back(ConditionText(*condition, Parameters()));
        }
        graph.edges.push_back(edge);
    }

    std::string NameOfId(unsigned int id) const
    {
        BaseDef* def = table.Find(id);
        if (def != nullptr)
        {
            return NameOf(*def);
        }
        return id == 0 ? "no node" : "no node " + std::to_string(id);
    }

    IParameterTable* Parameters() const
    {
        return const_cast<ObservedMachine&>(machine).GetParameterTable();
    }

    void AddUnknownNodes()
    {
        for (const GraphEdge& edge : graph.edges)
        {
            AddUnknownNode(edge.from);
            AddUnknownNode(edge.to);
        }
        AddUnknownNode(machine.StartStateId());
    }

    void AddUnknownNode(unsigned int id)
    {
        if (!placed.insert(id).second)
        {
            return;
        }
        GraphNode node;
        node.id = id;
        node.name = NameOfId(id);
        node.shape = NodeShape::Unknown;
        node.isStart = id == machine.StartStateId();
        graph.nodes.push_back(node);
    }

    const ObservedMachine& machine;
    NodeDefTable& table;
    Graph graph;
    std::map<unsigned int, std::vector<BaseDef*>> levels; ///< what each level holds; 0 is the top
    std::map<unsigned int, NodeLight> lights;
    std::set<unsigned int> placed;
    std::set<const TransitionDef*> listed;
};

} // namespace

Graph ReadGraph(const ObservedMachine& machine)
{
    return machine.Nodes() == nullptr ? Graph() : Reader(machine).Read();
}

} // namespace vell::tool
