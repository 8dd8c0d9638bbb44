// VELL: data-driven hierarchical state machines.
// tests/model/ModelRandom.cpp: random documents and random calls of a host.

#include "tests/model/ModelCase.h"
#include "tests/model/Random.h"

#include <cfloat>
#include <climits>
#include <cstring>

namespace model
{

namespace
{

constexpr int kMaxDepth = 4;
constexpr unsigned int kUnknownId = 999999;

/// Makes one case. A level is a list of nodes, the first of which is its exit node.
class Maker
{
public:
    explicit Maker(unsigned long long seed) : random(seed)
    {
    }

    Case Make()
    {
        MakeParameters();
        MakeLevel(0, 0);
        MakeOddNodes();
        for (std::size_t index = 0; index < levels.size(); ++index)
        {
            MakeTransitions(levels[index]);
        }
        MakeGlobal();
        Spread();
        DropLayers();
        made.document.startId = PickStart();
        MakeActions();
        MakeInputs();
        return made;
    }

private:
    Value MakeValue()
    {
        static const int wholes[] = {0, 1, 2, 3, 4, 5, -1, -2, INT_MAX, INT_MIN, 1056964608};
        static const float reals[] = {0.0f, 0.5f,  1.0f,   1.005f,   1.01f,   0.01f,   -1.0f,
                                      2.5f, -0.0f, 100.0f, 0.99501f, FLT_MAX, -FLT_MAX};
        static const char* const texts[] = {"go", "stop", "Go", ""};
        Value value;
        value.flag = random.Chance(50);
        value.whole = random.PickFrom(wholes);
        for (float& real : value.reals)
        {
            real = random.PickFrom(reals);
        }
        value.text = random.PickFrom(texts);
        return value;
    }

    void MakeParameters()
    {
        static const int types[] = {1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 5, 6, 7, 8, 8, 8};
        static const char* const assigns[] = {"", "", "host", "leftStick", "buttonSouth", "keyA"};
        const int count = random.Between(2, 8);
        for (int number = 0; number < count; ++number)
        {
            Parameter parameter;
            parameter.name = "parameter" + std::to_string(number);
            parameter.type = random.PickFrom(types);
            parameter.assign = random.PickFrom(assigns);
            parameter.hasReset = random.Chance(20);
            parameter.initial = MakeValue();
            made.document.parameters.push_back(parameter);
        }
    }

    unsigned int NewId()
    {
        lastId += static_cast<unsigned int>(random.Between(1, 3));
        return lastId;
    }

    Node& Add(int builder, unsigned int parentId)
    {
        Node node;
        node.builder = builder;
        node.id = NewId();
        node.parentId = random.Chance(94) || stateIds.empty() ? parentId : random.Pick(stateIds);
        if (random.Chance(1))
        {
            node.parentId = node.id;
        }
        nodes.push_back(node);
        return nodes.back();
    }

    unsigned int AddState(int builder, unsigned int parentId, Ids* level)
    {
        const unsigned int id = Add(builder, parentId).id;
        level->push_back(id);
        stateIds.push_back(id);
        return id;
    }

    // Returns the id of the level's first plain node.
    void MakeLevel(unsigned int parentId, int depth)
    {
        Ids level;
        AddState(DURMBaseLib::BUILDER_Exit, parentId, &level);
        const int count = random.Between(1, 4);
        Ids substates;
        for (int index = 0; index < count; ++index)
        {
            const bool isSubstate = depth < kMaxDepth && random.Chance(depth == 0 ? 45 : 30);
            const bool isClip = random.Chance(25);
            const int builder = isSubstate ? DURMBaseLib::BUILDER_Substate
                                : isClip   ? DURMBaseLib::BUILDER_AnimClip
                                           : DURMBaseLib::BUILDER_Generic;
            const unsigned int id = AddState(builder, parentId, &level);
            if (isSubstate)
            {
                substates.push_back(id);
            }
            else if (isClip)
            {
                nodes.back().clipName = random.Chance(80) ? "clip" + std::to_string(id) : "";
                nodes.back().clipFlag = random.Chance(50);
            }
        }
        levels.push_back(level);
        for (const unsigned int id : substates)
        {
            const std::size_t inner = levels.size();
            MakeLevel(id, depth + 1);
            FinishSubstate(id, inner);
        }
    }

    Node& Find(unsigned int id)
    {
        std::size_t index = 0;
        while (nodes[index].id != id)
        {
            ++index;
        }
        return nodes[index];
    }

    // The enter node, and now and then a level that cannot be entered.
    void FinishSubstate(unsigned int id, std::size_t inner)
    {
        const unsigned int exitId = levels[inner][0];
        const unsigned int target =
            random.Chance(92) ? random.Pick(levels[inner]) : PickAnyTarget();
        const unsigned int enterId = AddState(DURMBaseLib::BUILDER_Enter, id, &levels[inner]);
        Find(enterId).entryTarget = target == 0 ? kUnknownId : target;
        Node& substate = Find(id);
        substate.enterId = random.Chance(95) ? enterId : PickAnyNode();
        substate.exitId = random.Chance(95) ? exitId : PickAnyNode();
    }

    unsigned int PickAnyNode()
    {
        return random.Chance(50) ? kUnknownId : random.Pick(stateIds);
    }

    void MakeOddNodes()
    {
        static const int builders[] = {DURMBaseLib::BUILDER_Connector, DURMBaseLib::BUILDER_Base,
                                       DURMBaseLib::BUILDER_Global};
        const int count = random.Between(0, 2);
        for (int index = 0; index < count; ++index)
        {
            oddIds.push_back(Add(random.PickFrom(builders), 0).id);
        }
    }

    unsigned int PickAnyTarget()
    {
        const int kind = random.Between(1, 100);
        if (kind <= 12)
        {
            return 0;
        }
        if (kind <= 25)
        {
            return kUnknownId;
        }
        if (kind <= 40 && !oddIds.empty())
        {
            return random.Pick(oddIds);
        }
        return random.Pick(stateIds);
    }

    unsigned int PickTarget(const Ids& level)
    {
        const int kind = random.Between(1, 100);
        if (kind <= 15)
        {
            return level[0];
        }
        return kind <= 85 ? random.Pick(level) : PickAnyTarget();
    }

    void MakeTransitions(const Ids& level)
    {
        for (const unsigned int id : level)
        {
            const int count = random.Chance(99) ? random.Between(0, 3) : random.Between(30, 40);
            for (int index = 0; index < count; ++index)
            {
                const unsigned int transition = MakeTransition(id, PickTarget(level));
                Find(id).children.push_back(transition);
                if (random.Chance(8))
                {
                    Find(random.Pick(stateIds)).children.push_back(transition);
                }
            }
            if (random.Chance(6))
            {
                Find(id).children.push_back(PickAnyNode());
            }
        }
    }

    unsigned int MakeTransition(unsigned int sourceId, unsigned int targetId)
    {
        static const int priorities[] = {INT_MIN, -7, -1, 0, 1, 2, 4, 5, 5, 5, 6, 9, INT_MAX};
        Node& node = Add(DURMBaseLib::BUILDER_Transition, sourceId);
        node.targetId = targetId;
        node.hasPriority = random.Chance(60);
        node.priority = node.hasPriority ? random.PickFrom(priorities) : 5;
        node.disabled = random.Chance(5);
        node.switchArgument = random.Chance(50) ? 0.25f : 0.0f;
        const int count = random.Chance(8) ? 0 : random.Between(1, 3);
        for (int index = 0; index < count; ++index)
        {
            node.conditions.push_back(MakeCondition());
        }
        transitionIds.push_back(node.id);
        return node.id;
    }

    Condition MakeCondition()
    {
        static const int evaluations[] = {1, 1, 1, 2, 3, 3, 4, 5, 5, 6, 10, 10, 7};
        static const int crossTypes[] = {1, 2, 3};
        const Parameter parameter =
            random.Chance(90) ? random.Pick(made.document.parameters)
                              : RuntimeParameter(random.Between(0, kRuntimeParameterCount - 1));
        Condition condition;
        condition.type = parameter.type == 7 ? 8 : parameter.type;
        const bool isVector = condition.type >= 4 && condition.type <= 6;
        const bool isCross = (condition.type == 2 || condition.type == 3) && random.Chance(8);
        if (isVector || isCross)
        {
            condition.type = random.PickFrom(crossTypes);
        }
        if (condition.type != 8 && parameter.type < 7 && random.Chance(2))
        {
            condition.type = 8;
        }
        condition.parameterId = random.Chance(97) ? parameter.Id() : PickParameterMistake();
        condition.evaluation = random.PickFrom(evaluations);
        condition.value = MakeValue();
        FinishOperand(&condition);
        if (random.Chance(3))
        {
            static const Mistake mistakes[] = {Mistake::NoOperator, Mistake::NoOperand,
                                               Mistake::VectorType};
            condition.mistake = random.PickFrom(mistakes);
        }
        return condition;
    }

    unsigned int PickParameterMistake()
    {
        return random.Chance(40) ? 0 : kUnknownId;
    }

    void FinishOperand(Condition* condition)
    {
        static const char* const wholeRanges[] = {"0,3",   "5,1",        "1.9,4.9",     "-2,2",
                                                  "3",     ",,1,,4,9",   "x,2",         "",
                                                  "2 , 3", "1e12,-1e12", "-1,-4.99,100"};
        static const char* const realRanges[] = {"0,1", "1.005,0.5",   "-1,1", "0",
                                                 "a,1", ",0.25,0.75,", "2,3",  "-0.5,100"};
        const bool isNumber = condition->type == 2 || condition->type == 3;
        condition->hasRange = isNumber && (condition->evaluation == 10) != random.Chance(2);
        if (condition->hasRange)
        {
            condition->value.text =
                condition->type == 2 ? random.PickFrom(wholeRanges) : random.PickFrom(realRanges);
            if (random.Chance(2))
            {
                condition->value.text += std::string(120, ' ') + "1,2,3";
            }
        }
    }

    void MakeGlobal()
    {
        if (random.Chance(15))
        {
            return;
        }
        Node global;
        global.builder = DURMBaseLib::BUILDER_Global;
        global.id = NewId();
        const int count = random.Between(0, 4);
        for (int index = 0; index < count; ++index)
        {
            const unsigned int target =
                random.Chance(25) ? random.Pick(levels)[0]
                                  : (random.Chance(80) ? random.Pick(stateIds) : PickAnyTarget());
            global.children.push_back(MakeTransition(global.id, target));
        }
        oddIds.push_back(global.id);
        made.document.globals.push_back(global);
        if (random.Chance(5))
        {
            global.id = NewId();
            made.document.globals.push_back(global);
        }
    }

    // Puts the nodes into layers, in any order, some into the global array.
    void Spread()
    {
        made.document.layers.resize(static_cast<std::size_t>(random.Between(1, 3)));
        std::vector<Node>& globals = made.document.globals;
        for (std::size_t left = nodes.size(); left > 0; --left)
        {
            const std::size_t index = random.Below(left);
            Node node = nodes[index];
            nodes[index] = nodes[left - 1];
            nodes[left - 1] = node;
            std::vector<Node>& layer =
                random.Chance(4) ? globals
                                 : made.document.layers[random.Below(made.document.layers.size())];
            layer.push_back(node);
            if (random.Chance(1) && random.Chance(15))
            {
                node.targetId = random.Pick(stateIds);
                layer.push_back(node); // a second one of its id
            }
        }
    }

    // Without a layer nothing but the first global node is there.
    void DropLayers()
    {
        if (random.Chance(1) && random.Chance(30))
        {
            made.document.layers.clear();
        }
    }

    unsigned int PickStart()
    {
        return random.Chance(96) ? random.Pick(levels[0]) : PickAnyTarget();
    }

    void MakeActions()
    {
        static const vell::__ActType__ lists[] = {vell::ActTypeEntry, vell::ActTypeExecution,
                                                  vell::ActTypeExit};
        const int count = random.Between(0, 12);
        for (int index = 0; index < count; ++index)
        {
            ActionPlan plan;
            plan.nodeId = random.Chance(95) ? random.Pick(stateIds) : PickAnyTarget();
            plan.list = random.PickFrom(lists);
            if (random.Chance(25))
            {
                plan.parameterId = random.Pick(made.document.parameters).Id();
                plan.value = random.Between(-1, 5);
            }
            if (plan.nodeId != 0)
            {
                made.actions.push_back(plan);
            }
        }
    }

    void MakeInputs()
    {
        const bool isRough = random.Chance(50);
        AddInput(InputKind::SetCallback).number = random.Chance(85) ? 1 : 0;
        for (int index = 0; index < 6; ++index)
        {
            AddSubscription();
        }
        const int triggers = random.Chance(40) ? random.Between(1, 3) : 0;
        for (int index = 0; index < triggers; ++index)
        {
            AddTrigger();
        }
        AddInput(InputKind::Start);
        const int count = random.Between(20, 100);
        for (int index = 0; index < count; ++index)
        {
            AddCall(isRough);
        }
    }

    Input& AddInput(InputKind kind)
    {
        Input input;
        input.kind = kind;
        made.inputs.push_back(input);
        return made.inputs.back();
    }

    void AddSubscription()
    {
        static const InputKind kinds[] = {
            InputKind::SubscribeState,      InputKind::SubscribeState,
            InputKind::SubscribeEvents,     InputKind::SubscribeEvents,
            InputKind::SubscribeTransition, InputKind::UnsubscribeState,
            InputKind::UnsubscribeEvents};
        AddInput(random.PickFrom(kinds)).number = random.Between(0, kListenerCount - 1);
    }

    void AddTrigger()
    {
        Input& input = AddInput(InputKind::AssignTrigger);
        input.number = random.Between(0, kTriggerCount - 1);
        input.id = random.Chance(92) && !transitionIds.empty() ? random.Pick(transitionIds)
                                                               : PickAnyNode();
    }

    void AddCall(bool isRough)
    {
        static const float times[] = {0.016f, 0.5f, 0.0f, 1.25f};
        const int kind = random.Between(1, 100);
        if (kind <= 50)
        {
            AddInput(InputKind::Tick).time = random.PickFrom(times);
        }
        else if (kind <= 85 || !isRough)
        {
            AddParameterCall();
        }
        else if (kind <= 93)
        {
            AddStackCall();
        }
        else
        {
            AddHostCall();
        }
    }

    void AddParameterCall()
    {
        static const InputKind kinds[] = {
            InputKind::SetParameter, InputKind::SetParameter,   InputKind::SetParameter,
            InputKind::SetParameter, InputKind::SetParameter,   InputKind::SetMessage,
            InputKind::Broadcast,    InputKind::ParameterEvent, InputKind::ToolWrite};
        static const int bindings[] = {0, 0, 1, 2, 10, 26};
        static const int events[] = {1, 1, 1, 4, 6, 7, 2};
        Input& input = AddInput(random.PickFrom(kinds));
        input.id = random.Chance(96)
                       ? random.Pick(made.document.parameters).Id()
                       : RuntimeParameter(random.Between(0, kRuntimeParameterCount - 1)).Id();
        input.value = MakeValue();
        input.number = random.PickFrom(events);
        for (std::size_t word = 2; word < input.record.size(); ++word)
        {
            const float real = MakeValue().reals[0];
            std::memcpy(&input.record[word], &real, sizeof(real));
        }
        input.record[0] = random.Between(0, 2);
        input.record[1] = random.PickFrom(bindings);
    }

    void AddStackCall()
    {
        static const InputKind kinds[] = {
            InputKind::PushId,        InputKind::PushId,           InputKind::PushCurrent,
            InputKind::Pop,           InputKind::RevertToPrevious, InputKind::RevertToPrevious,
            InputKind::RevertToStart, InputKind::ChangeState,      InputKind::Start};
        Input& input = AddInput(random.PickFrom(kinds));
        input.id = random.Chance(85) ? random.Pick(stateIds) : PickAnyTarget();
    }

    void AddHostCall()
    {
        switch (random.Between(0, 8))
        {
        case 0:
            AddTrigger();
            break;
        case 1:
            AddInput(InputKind::SetCallback).number = random.Between(0, 1);
            break;
        case 2:
            AddInput(InputKind::CreateParameter).number =
                random.Between(0, kRuntimeParameterCount - 1);
            break;
        case 3:
        case 7:
        case 8:
            AddInput(InputKind::Rebind);
            break;
        case 4:
            AddInput(InputKind::FireEvent).number = random.Between(4, 6);
            break;
        case 5:
            AddContext();
            break;
        default:
            AddSubscription();
            break;
        }
    }

    void AddContext()
    {
        Input input;
        input.kind = InputKind::SetContext;
        for (int index = random.Between(0, 4); index > 0; --index)
        {
            input.stack.push_back(random.Chance(93) ? random.Pick(stateIds) : PickAnyTarget());
        }
        for (int index = random.Between(0, 3); index > 0; --index)
        {
            input.blip.push_back(random.Chance(93) ? random.Pick(stateIds) : PickAnyTarget());
        }
        for (unsigned int& id : input.change)
        {
            id = random.Pick(stateIds);
        }
        made.inputs.push_back(input);
    }

    Random random;
    Case made;
    std::vector<Node> nodes;
    std::vector<Ids> levels;
    Ids stateIds;
    Ids oddIds;
    Ids transitionIds;
    unsigned int lastId = 1;
};

} // namespace

Case MakeCase(unsigned long long seed)
{
    return Maker(seed).Make();
}

} // namespace model
