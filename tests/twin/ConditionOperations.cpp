// VELL: data-driven hierarchical state machines.
// tests/twin/ConditionOperations.cpp: what a host does to conditions.
#include "tests/support/DocumentBuilder.h"
#include "tests/twin/OperationKinds.h"
#include "transitions/ConditionDefMessage.h"

namespace twin
{
namespace
{

bool IsText(const vell::ParameterDef* parameter)
{
    return dynamic_cast<const vell::ParameterMessageDef*>(parameter) != nullptr;
}

bool ComparesTexts(const vell::ConditionDef* condition)
{
    return dynamic_cast<const vell::ConditionDefMessage*>(condition) != nullptr;
}

/// Gives a parameter for `condition`. One that compares numbers would read a text's inside,
/// addresses and all.
vell::ParameterDef* PickFitting(Side& side, vell::ConditionDef* condition, unsigned int pick)
{
    for (std::size_t i = 0; i < side.parameters.size(); ++i)
    {
        vell::ParameterDef* parameter = side.PickParameter(pick + static_cast<unsigned int>(i));
        if (!IsText(parameter) || ComparesTexts(condition))
        {
            return parameter;
        }
    }
    return nullptr;
}

void WriteEvaluation(Side& side, const Operation& operation)
{
    static const int numbers[] = {1, 2, 3, 4, 5, 6, 10, 0, 7, -1};
    if (vell::ConditionDef* condition = side.PickCondition(operation.picks[0]))
    {
        condition->evaluation = numbers[operation.picks[1] % 10];
        Say("> evaluation of " + side.Name(condition) + " = " +
            std::to_string(condition->evaluation));
    }
}

void WriteParameterID(Side& side, const Operation& operation)
{
    vell::ConditionDef* condition = side.PickCondition(operation.picks[0]);
    if (condition == nullptr)
    {
        return;
    }
    vell::ParameterDef* parameter = PickFitting(side, condition, operation.picks[1]);
    condition->parameterID = parameter == nullptr || operation.picks[2] % 8 == 0
                                 ? operation.picks[2] % 2
                                 : parameter->GetID();
    Say("> parameterID of " + side.Name(condition));
}

void WriteParameter(Side& side, const Operation& operation)
{
    vell::ConditionDef* condition = side.PickCondition(operation.picks[0]);
    if (condition == nullptr)
    {
        return;
    }
    vell::ParameterDef* parameter = PickFitting(side, condition, operation.picks[1]);
    Say("> parameter of " + side.Name(condition) + " = " + side.Name(parameter));
    condition->parameter = parameter;
    if (operation.picks[2] % 2 == 0)
    {
        Say("> ParameterBind");
        condition->ParameterBind();
    }
}

void SetParameter(Side& side, const Operation& operation)
{
    vell::ConditionDef* condition = side.PickCondition(operation.picks[0]);
    if (condition == nullptr)
    {
        return;
    }
    vell::ParameterDef* parameter = PickFitting(side, condition, operation.picks[1]);
    Say("> SetParameter of " + side.Name(condition) + " to " + side.Name(parameter));
    condition->SetParameter(parameter);
    condition->ParameterBind();
}

void AssignCondition(Side& side, const Operation& operation)
{
    vell::ConditionDef* target = side.PickCondition(operation.picks[0]);
    vell::ConditionDef* source = side.PickCondition(operation.picks[1]);
    if (target == nullptr || ComparesTexts(target) != ComparesTexts(source))
    {
        return;
    }
    Say("> *" + side.Name(target) + " = *" + side.Name(source));
    *target = *source;
    if (operation.picks[2] % 2 == 0)
    {
        Say("> ParameterBind");
        target->ParameterBind();
    }
}

void UninitCondition(Side& side, const Operation& operation)
{
    if (vell::ConditionDef* condition = side.PickCondition(operation.picks[0]))
    {
        Say("> Uninit of " + side.Name(condition));
        condition->Uninit();
    }
}

void BindParamCond(Side& side, const Operation&)
{
    Say("> BindParamCond");
    side.machine.BindParamCond();
}

} // namespace

/// Gives the text of a condition on one of the document's parameters.
std::string ConditionText(Side& side, const Operation& operation)
{
    static const int operators[] = {1, 2, 3, 4, 5, 6};
    const model::Parameter& parameter =
        side.document.parameters[operation.picks[1] % side.document.parameters.size()];
    const int evaluation = operators[operation.picks[2] % 6];
    switch (parameter.type)
    {
    case DURMBaseLib::PARAM_Bool:
        return vell::test::BoolCondition(parameter.name, operation.value.flag).Text();
    case DURMBaseLib::PARAM_Integer:
        return vell::test::IntCondition(parameter.name, evaluation, operation.value.whole).Text();
    case 7:
    case DURMBaseLib::PARAM_Message:
        return vell::test::MessageCondition(parameter.name, operation.value.text).Text();
    default:
        return vell::test::FloatCondition(parameter.name, evaluation,
                                          static_cast<double>(operation.value.reals[0]))
            .Text();
    }
}

namespace
{

/// Reads a condition again, from a text of its own class.
void InitCondition(Side& side, const Operation& operation)
{
    vell::ConditionDef* condition = side.PickCondition(operation.picks[0]);
    const vell::HSMAlloc& alloc = side.machine.alloc;
    // A text's condition that finds no room loses the text that it compares with.
    if (condition == nullptr || side.document.parameters.empty() ||
        dynamic_cast<HostCondition*>(condition) != nullptr || alloc.capacity - alloc.used < 4096)
    {
        return;
    }
    // Its class shows only in what it makes of a text: one of another type fails, with log lines.
    Say("> Init of " + side.Name(condition));
    const int result =
        condition->Init(side.Parse(ConditionText(side, operation)), &side.machine.alloc);
    Say("gives " + std::to_string(result));
    condition->parameterID = condition->parameter == nullptr ? 0 : condition->parameter->GetID();
}

} // namespace

OperationKinds ConditionOperations()
{
    return {{"WriteEvaluation", 10, Place::Callbacks, WriteEvaluation},
            {"WriteParameterID", 6, Place::Callbacks, WriteParameterID},
            {"WriteParameter", 8, Place::Callbacks, WriteParameter},
            {"SetParameter", 8, Place::Callbacks, SetParameter},
            {"AssignCondition", 6, Place::Callbacks, AssignCondition},
            {"UninitCondition", 5, Place::Callbacks, UninitCondition},
            {"InitCondition", 6, Place::Outside, InitCondition},
            {"BindParamCond", 8, Place::Outside, BindParamCond}};
}

} // namespace twin
