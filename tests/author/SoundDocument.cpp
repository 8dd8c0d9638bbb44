// VELL: data-driven hierarchical state machines.
// tests/author/SoundDocument.cpp: growing a tree of states.
#include "tests/author/SoundDocument.h"

#include <vell/ConditionDef.h>

#include "tests/support/DocumentBuilder.h"

#include <algorithm>
#include <random>
#include <vector>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

constexpr int kLayers = 3;

class Grower
{
public:
    explicit Grower(unsigned int seed) : random(seed)
    {
    }

    std::string Grow()
    {
        builder.Head().Set(JSON_HeadMemory, 4000);
        AddParameters();
        const Ids top = Level(0, 0);
        builder.Start(top.front());
        if (Below(2) == 0)
        {
            AddGlobal(top);
        }
        for (int layer = 0; layer < kLayers; ++layer)
        {
            std::shuffle(nodes[layer].begin(), nodes[layer].end(), random);
            builder.Layer("Layer" + std::to_string(layer)).Nodes(nodes[layer]);
        }
        return builder.Text();
    }

private:
    unsigned int Below(unsigned int limit)
    {
        return static_cast<unsigned int>(random()) % limit;
    }

    unsigned int NextId()
    {
        return lastId += 1 + Below(1000);
    }

    std::string Name()
    {
        static const char* const kNames[] = {"Stand", "Walk", "Run", "a/b", "not", "T\xc3\xbcr"};
        return kNames[Below(6)] + (Below(4) == 0 ? "" : std::to_string(Below(1000)));
    }

    void AddParameters()
    {
        builder.Parameter(BoolParameter("sees", Below(2) == 0))
            .Parameter(IntParameter("combo", static_cast<int>(Below(9)) - 4))
            .Parameter(FloatParameter("my speed", 0.25 * Below(9)))
            .Parameter(Parameter(PARAM_Float, "whole", static_cast<int>(Below(9))))
            .Parameter(MessageParameter("use", "it's \"open\""))
            .Parameter(PulseParameter("hit"))
            .Parameter(
                VectorParameter(PARAM_Float2 + static_cast<int>(Below(3)), "stick", "0,1.5, -2,1e3")
                    .Set(JSON_ParameterAssign, AssignName(2)));
    }

    JsonObject AnyCondition()
    {
        static const int kOperators[] = {EvaluateEqual, EvaluateNotEqual,    EvaluateGreater,
                                         EvaluateLess,  EvaluateLessOrEqual, EvaluateInRange};
        const int evaluation = kOperators[Below(6)];
        const bool isRange = evaluation == EvaluateInRange;
        const int number = static_cast<int>(Below(7)) - 3;
        switch (Below(5))
        {
        case 0:
            return BoolCondition(Below(2) == 0 ? "sees" : "hit", Below(2) == 0);
        case 1:
            return MessageCondition("use", Below(2) == 0 ? "it's \"open\"" : "x");
        case 2:
            return Condition(PARAM_Float, "my speed", evaluation,
                             isRange ? Json("0.5,2") : Json(0.5 * number));
        case 3:
            return Condition(PARAM_Float, "whole", evaluation,
                             isRange ? Json("-1, 1e0") : Json(number));
        default:
            return Condition(PARAM_Integer, "combo", evaluation,
                             isRange ? Json("-1,3") : Json(number));
        }
    }

    /// Adds a node to one of the layers, with the members that any node may have.
    void Add(JsonObject node)
    {
        if (Below(8) == 0)
        {
            node.Remove(JSON_Name);
        }
        if (Below(4) == 0)
        {
            node.Set(JSON_Attributes,
                     Json::Array(std::vector<Json>{
                         Attribute("surface", Below(9) == 0 ? "qstring" : "QString", "stone"),
                         Attribute("length", "double", Json(0.5 * Below(9))),
                         Attribute("steps", "int", static_cast<int>(Below(9))),
                         Attribute("place", "QVector3D", "1,2, 3")}));
        }
        if (Below(9) == 0)
        {
            node.Set(JSON_ScriptName, "a.lua").Set("host", Json::Array(std::vector<Json>{1, 2}));
        }
        nodes[Below(4) == 0 ? Below(kLayers) : 0].push_back(std::move(node));
    }

    JsonObject Rule(unsigned int id, unsigned int source, unsigned int target)
    {
        std::vector<Json> conditions;
        for (unsigned int count = 1 + Below(3); count != 0; --count)
        {
            conditions.push_back(AnyCondition());
        }
        JsonObject rule = Transition(Name(), id, source, target, conditions);
        if (Below(2) == 0)
        {
            rule.Remove(JSON_ParentID);
        }
        if (Below(3) == 0)
        {
            rule.Set(JSON_TransitionPriority, static_cast<int>(Below(30)))
                .Set(JSON_TransitionDisabled, Below(3) == 0)
                .Set(JSON_TransitionSwitchArgument, Json(0.25 * Below(5)));
        }
        if (Below(9) == 0)
        {
            rule.Set(JSON_TransitionTag, 3).Set(JSON_TransitionTagArgument, 4);
        }
        return rule;
    }

    Ids AddRules(unsigned int source, const Ids& targets)
    {
        Ids ids;
        for (unsigned int count = Below(4); count != 0; --count)
        {
            ids.push_back(NextId());
            Add(Rule(ids.back(), source,
                     targets[Below(static_cast<unsigned int>(targets.size()))]));
        }
        return ids;
    }

    /// Adds a level of states, and gives their ids.
    Ids Level(unsigned int parent, int depth)
    {
        Ids ids(2 + Below(3));
        for (unsigned int& id : ids)
        {
            id = NextId();
        }
        for (std::size_t i = 0; i < ids.size(); ++i)
        {
            const Ids rules = AddRules(ids[i], ids);
            AddState(ids[i], rules, parent, i == 0 ? 0 : Below(5), depth);
        }
        return ids;
    }

    void AddState(unsigned int id, const Ids& rules, unsigned int parent, unsigned int kind,
                  int depth)
    {
        if (kind == 1)
        {
            Add(Clip(Name(), id, "clip", rules, parent).Set(JSON_ClipFlag, Below(2) == 0));
        }
        else if (kind == 2)
        {
            Add(Exit(Name(), id, parent).Set(JSON_Children, Json::Array(rules)));
        }
        else if (kind == 3 && depth < 3)
        {
            AddLevel(id, rules, parent, depth);
        }
        else
        {
            Add(Generic(Name(), id, rules, parent));
        }
    }

    void AddLevel(unsigned int id, const Ids& rules, unsigned int parent, int depth)
    {
        const std::string name = Name();
        const Ids inner = Level(id, depth + 1);
        const unsigned int enter = NextId();
        const unsigned int exit = NextId();
        const bool isDefault = Below(2) == 0;
        Add(Substate(name, id, enter, exit, rules, parent));
        Add(Enter(isDefault ? name + "In" : "In", enter, inner[0], id));
        Add(Exit(isDefault ? name + "Out" : "Out", exit, id));
    }

    void AddGlobal(const Ids& top)
    {
        const unsigned int id = NextId();
        Ids rules;
        std::vector<Json> transitions;
        for (unsigned int count = 1 + Below(3); count != 0; --count)
        {
            rules.push_back(NextId());
            transitions.push_back(
                Rule(rules.back(), id, top[Below(static_cast<unsigned int>(top.size()))]));
        }
        builder.GlobalNode(Global(Below(2) == 0 ? "Interrupts" : "Reactions", id, rules));
        for (const Json& transition : transitions)
        {
            builder.GlobalNode(transition);
        }
    }

    std::mt19937 random;
    DocumentBuilder builder;
    std::vector<Json> nodes[kLayers];
    unsigned int lastId = 0;
};

} // namespace

std::string SoundDocument(unsigned int seed)
{
    return Grower(seed).Grow();
}

} // namespace vell::test
