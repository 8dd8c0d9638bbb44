// VELL: data-driven hierarchical state machines.
// tests/model/NaiveLoad.cpp: what the second machine takes from a document, and its conditions.

#include <durm/DURMBaseLib.h>

#include "tests/model/NaiveMachine.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace model
{

namespace
{

/// The four bytes at a parameter's value, whatever its type.
unsigned int WordOf(const Parameter& parameter, const Value& value)
{
    unsigned int word = 0;
    if (parameter.type == DURMBaseLib::PARAM_Bool)
    {
        word = value.flag ? 1 : 0;
    }
    else if (parameter.type == DURMBaseLib::PARAM_Integer)
    {
        std::memcpy(&word, &value.whole, sizeof(word));
    }
    else
    {
        std::memcpy(&word, &value.reals[0], sizeof(word));
    }
    return word;
}

bool IsText(int type)
{
    return type == DURMBaseLib::PARAM_Text || type == DURMBaseLib::PARAM_Message;
}

double Truncate(double number)
{
    if (number >= static_cast<double>(INT_MAX))
    {
        return static_cast<double>(INT_MAX);
    }
    return number <= static_cast<double>(INT_MIN) ? static_cast<double>(INT_MIN)
                                                  : std::trunc(number);
}

const char* BindingFunction(int type)
{
    switch (type)
    {
    case DURMBaseLib::PARAM_Bool:
        return "ConditionDefBool::ParameterBind";
    case DURMBaseLib::PARAM_Integer:
        return "ConditionDefInteger::ParameterBind";
    default:
        return "ConditionDefMessage::ParameterBind";
    }
}

} // namespace

NaiveMachine::NaiveMachine(const Document& caseDocument, const std::vector<ActionPlan>& actions,
                           Fault plantedFault)
    : document(caseDocument), actionPlans(actions), fault(plantedFault)
{
    for (const Parameter& def : document.parameters)
    {
        LoadedParameter parameter;
        parameter.def = def;
        parameter.assign = DURMBaseLib::GetAssignName(def.assign.c_str());
        Value value = def.initial;
        if (IsText(def.type))
        {
            value.text.clear(); // a document's text is empty until it is fired
        }
        SetValue(&parameter, value);
        parameters.emplace(def.Id(), parameter);
    }
    for (const std::vector<Node>& layer : document.layers)
    {
        Load(layer, false);
    }
    Load(document.globals, true);
    BindConditions(false);
}

// A node that is refused is offered once more and ends its array.
void NaiveMachine::Load(const std::vector<Node>& array, bool isGlobal)
{
    for (const Node& node : array)
    {
        // Without a layer the nodes have no table of the tree to go into, which refuses each.
        const bool isNew = nodes.emplace(node.id, &node).second;
        const bool isTaken = isNew && !document.layers.empty();
        nodeIds.push_back(node.id);
        if (isNew && node.builder == DURMBaseLib::BUILDER_Transition)
        {
            LoadTransition(node);
        }
        if (!isTaken)
        {
            nodeIds.push_back(node.id);
            return;
        }
        if (isGlobal && node.builder == DURMBaseLib::BUILDER_Global)
        {
            globalId = node.id;
        }
    }
}

// The first bad condition ends the list; those before it stay.
void NaiveMachine::LoadTransition(const Node& node)
{
    Transition& transition = transitions[node.id];
    transition.node = &node;
    for (const Condition& def : node.conditions)
    {
        LoadedCondition condition;
        condition.def = def;
        if (!LoadCondition(&condition))
        {
            return;
        }
        transition.conditions.push_back(condition);
    }
}

bool NaiveMachine::LoadCondition(LoadedCondition* condition)
{
    const Condition& def = condition->def;
    if (def.mistake != Mistake::None || def.parameterId == 0)
    {
        return false;
    }
    if (def.type == DURMBaseLib::PARAM_Message)
    {
        return !def.value.text.empty();
    }
    if (def.type == DURMBaseLib::PARAM_Bool)
    {
        condition->low = def.value.flag && !def.hasRange ? 1.0 : 0.0;
        return true;
    }
    if (def.evaluation == 10)
    {
        return LoadRange(condition);
    }
    if (!def.hasRange)
    {
        condition->low = def.type == DURMBaseLib::PARAM_Integer
                             ? static_cast<double>(def.value.whole)
                             : static_cast<double>(def.value.reals[0]);
    }
    return true;
}

bool NaiveMachine::LoadRange(LoadedCondition* condition)
{
    const std::string& text = condition->def.value.text;
    if (!condition->def.hasRange || text.size() >= 128)
    {
        return false;
    }
    std::vector<double> numbers;
    std::size_t begin = 0;
    while (begin <= text.size())
    {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        if (end > begin)
        {
            numbers.push_back(std::atof(text.substr(begin, end - begin).c_str()));
        }
        begin = end + 1;
    }
    if (numbers.size() < 2)
    {
        return false;
    }
    condition->low = std::min(numbers[0], numbers[1]);
    condition->high = std::max(numbers[0], numbers[1]);
    if (condition->def.type == DURMBaseLib::PARAM_Integer)
    {
        condition->low = Truncate(condition->low);
        condition->high = Truncate(condition->high);
    }
    return true;
}

void NaiveMachine::BindConditions(bool isLogged)
{
    const Lines linesBefore = lines;
    // As many ids as there are nodes, though refused ones have ids too.
    for (std::size_t i = 0; i < nodes.size(); ++i)
    {
        const auto found = transitions.find(nodeIds[i]);
        if (found == transitions.end())
        {
            continue;
        }
        for (LoadedCondition& condition : found->second.conditions)
        {
            LoadedParameter* parameter = FindParameter(condition.def.parameterId);
            if (parameter != nullptr)
            {
                condition.bound = parameter;
                continue;
            }
            Say("[WARNING]\t: Parameter definition is NULL");
            if (condition.def.type != DURMBaseLib::PARAM_Float)
            {
                Break(BindingFunction(condition.def.type));
            }
        }
    }
    if (!isLogged)
    {
        lines = linesBefore;
    }
}

// The class of the condition says how the bytes of the value are read.
bool NaiveMachine::Holds(const LoadedCondition& condition)
{
    if (condition.bound == nullptr)
    {
        return false;
    }
    const LoadedParameter& parameter = *condition.bound;
    if (condition.def.type == DURMBaseLib::PARAM_Message)
    {
        return IsText(parameter.def.type) && parameter.value.text == condition.def.value.text;
    }
    const unsigned int word = WordOf(parameter.def, parameter.value);
    if (condition.def.type == DURMBaseLib::PARAM_Bool)
    {
        return (word & 0xffu) == (condition.low > 0.0 ? 1u : 0u);
    }
    if (condition.def.type == DURMBaseLib::PARAM_Integer)
    {
        int value = 0;
        std::memcpy(&value, &word, sizeof(value));
        return HoldsWhole(condition, value);
    }
    float value = 0.0f;
    std::memcpy(&value, &word, sizeof(value));
    return HoldsReal(condition, value);
}

bool NaiveMachine::HoldsWhole(const LoadedCondition& condition, int value)
{
    const int target = static_cast<int>(condition.low);
    switch (condition.def.evaluation)
    {
    case 1:
        return value == target;
    case 2:
        return value != target;
    case 3:
        return value > target;
    case 4:
        return value >= target;
    case 5:
        return value < target;
    case 6:
        return value <= target;
    case 10:
        return value >= target && value <= static_cast<int>(condition.high);
    default:
        return false;
    }
}

bool NaiveMachine::HoldsReal(const LoadedCondition& condition, float value)
{
    const float target = static_cast<float>(condition.low);
    const float difference = target - value;
    switch (condition.def.evaluation)
    {
    case 1:
        return std::fabs(difference) < 0.01f;
    case 2:
        return value < target || value > target || std::isnan(value);
    case 3:
        return value > target;
    case 4:
        return value >= target;
    case 5:
        return value < target;
    case 6:
        return value <= target;
    case 10:
        return value >= target && value <= static_cast<float>(condition.high);
    default:
        return false;
    }
}

void NaiveMachine::SetValue(LoadedParameter* parameter, const Value& value)
{
    if (parameter->def.type == DURMBaseLib::PARAM_Bool && parameter->value.flag != value.flag)
    {
        parameter->treeWord = value.flag ? 1 : 0;
    }
    parameter->value = value;
    const std::array<float, 4>& reals = value.reals;
    if (parameter->def.type == DURMBaseLib::PARAM_Float2)
    {
        parameter->magnitude = std::sqrt(reals[0] * reals[0] + reals[1] * reals[1]);
    }
    if (parameter->def.type == DURMBaseLib::PARAM_Float3)
    {
        parameter->magnitude =
            std::sqrt(reals[0] * reals[0] + reals[1] * reals[1] + reals[2] * reals[2]);
    }
}

} // namespace model
