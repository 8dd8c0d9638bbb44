// VELL: data-driven hierarchical state machines.
// tests/model/NaiveHost.cpp: the calls of a host on the second machine, and what the host sees.

#include "tests/model/NaiveMachine.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace model
{

namespace
{

unsigned int Bits(float value)
{
    unsigned int word = 0;
    std::memcpy(&word, &value, sizeof(word));
    return word;
}

long Subscribe(std::vector<int>* list, int listener)
{
    if (std::find(list->begin(), list->end(), listener) != list->end())
    {
        return 0;
    }
    list->push_back(listener);
    return 1;
}

long Unsubscribe(std::vector<int>* list, int listener)
{
    const auto found = std::find(list->begin(), list->end(), listener);
    if (found == list->end())
    {
        return 0;
    }
    list->erase(found);
    return 1;
}

} // namespace

Step NaiveMachine::Apply(const Input& input)
{
    lines.clear();
    Step step;
    try
    {
        Do(input);
    }
    catch (const std::out_of_range&)
    {
        step.threw = true;
    }
    step.lines = lines;
    Paint(&step.picture);
    return step;
}

void NaiveMachine::Do(const Input& input)
{
    switch (input.kind)
    {
    case InputKind::Tick:
        Tick(input.time);
        break;
    case InputKind::Start:
        Start();
        break;
    case InputKind::Rebind:
        BindConditions(true);
        break;
    case InputKind::CreateParameter:
        CreateParameter(input.number);
        break;
    case InputKind::AssignTrigger:
        AssignTrigger(input.id, input.number);
        break;
    case InputKind::SetContext:
        SetContext(input);
        Say(ResultLine("context", 1));
        break;
    case InputKind::SetParameter:
    case InputKind::ToolWrite:
    case InputKind::ParameterEvent:
    case InputKind::Broadcast:
    case InputKind::SetMessage:
        DoWithParameter(input);
        break;
    case InputKind::PushId:
    case InputKind::PushCurrent:
    case InputKind::Pop:
    case InputKind::RevertToPrevious:
    case InputKind::RevertToStart:
    case InputKind::ChangeState:
        DoWithStack(input);
        break;
    default:
        DoWithListeners(input);
        break;
    }
}

void NaiveMachine::DoWithStack(const Input& input)
{
    const auto say = [this](const char* what, const State* state)
    {
        Say(ResultLine(what, state != nullptr ? static_cast<long>(state->node->id) : 0));
    };
    switch (input.kind)
    {
    case InputKind::PushId:
        say("push", PushById(input.id));
        break;
    case InputKind::PushCurrent:
        if (Current() != nullptr)
        {
            say("push", Push(Current()));
        }
        break;
    case InputKind::Pop:
        say("pop", Pop());
        break;
    case InputKind::RevertToPrevious:
        Say(ResultLine("revert", RevertToPrevious()));
        break;
    case InputKind::RevertToStart:
        Say(ResultLine("revert", RevertToStart()));
        break;
    default:
        ChangeState(input.id);
        break;
    }
}

void NaiveMachine::DoWithListeners(const Input& input)
{
    switch (input.kind)
    {
    case InputKind::SubscribeState:
        Say(ResultLine("subscribe", Subscribe(&stateListeners, input.number)));
        break;
    case InputKind::UnsubscribeState:
        Say(ResultLine("unsubscribe", Unsubscribe(&stateListeners, input.number)));
        break;
    case InputKind::SubscribeTransition:
        Say(ResultLine("subscribe", Subscribe(&transitionListeners, input.number)));
        break;
    case InputKind::SubscribeEvents:
        Say(ResultLine("subscribe", Subscribe(&eventListeners, input.number)));
        break;
    case InputKind::UnsubscribeEvents:
        Say(ResultLine("unsubscribe", Unsubscribe(&eventListeners, input.number)));
        break;
    case InputKind::FireEvent:
        Say(ResultLine("fire", SendEvent(input.number, "fired", true, 1.0f)));
        break;
    default:
        hasCallback = input.number != 0;
        break;
    }
}

void NaiveMachine::DoWithParameter(const Input& input)
{
    LoadedParameter* parameter = FindParameter(input.id);
    const bool isText = parameter != nullptr && (parameter->def.type == DURMBaseLib::PARAM_Text ||
                                                 parameter->def.type == DURMBaseLib::PARAM_Message);
    if (input.kind == InputKind::SetMessage)
    {
        const bool isMessage =
            parameter != nullptr && parameter->def.type == DURMBaseLib::PARAM_Message;
        if (isMessage)
        {
            SetValue(parameter, input.value);
        }
        Say(ResultLine("message", isMessage ? 1 : 0));
        return;
    }
    if (parameter == nullptr)
    {
        return;
    }
    switch (input.kind)
    {
    case InputKind::SetParameter:
        SetValue(parameter, input.value);
        break;
    case InputKind::ToolWrite:
        ToolWrite(parameter, input.value);
        break;
    case InputKind::ParameterEvent:
        Say(ResultLine("event", ParameterEvent(parameter, input)));
        break;
    default:
        if (isText)
        {
            SetValue(parameter, parameter->def.initial);
        }
        break;
    }
}

// A bool that does not change leaves the integer that the tool wrote.
void NaiveMachine::ToolWrite(LoadedParameter* parameter, const Value& value)
{
    if (parameter->def.type != DURMBaseLib::PARAM_Bool)
    {
        SetValue(parameter, value);
        return;
    }
    parameter->treeWord = value.whole;
    Value flag;
    flag.flag = value.whole != 0;
    SetValue(parameter, flag);
}

Value NaiveMachine::RealsOf(const Input& input, std::size_t first)
{
    Value value;
    for (std::size_t index = 0; index < 4 && first + index < input.record.size(); ++index)
    {
        std::memcpy(&value.reals[index], &input.record[first + index], sizeof(float));
    }
    return value;
}

long NaiveMachine::ParameterEvent(LoadedParameter* parameter, const Input& input)
{
    const bool isMine = input.record[1] == parameter->assign;
    Value flag;
    flag.flag = input.record[4] != 0;
    switch (parameter->def.type)
    {
    case DURMBaseLib::PARAM_Bool:
        if (input.number == 4 || (input.number == 1 && isMine && input.record[0] == 1))
        {
            SetValue(parameter, flag);
        }
        return input.number == 4 || (input.number == 1 && isMine) ? 1 : 0;
    case DURMBaseLib::PARAM_Float:
        if (input.number == 1 || input.number == 6)
        {
            SetValue(parameter, RealsOf(input, input.number == 1 ? 5 : 0));
        }
        if (input.number == 7)
        {
            SetValue(parameter, parameter->def.initial);
        }
        return 1;
    case DURMBaseLib::PARAM_Float2:
    case DURMBaseLib::PARAM_Float3:
    case DURMBaseLib::PARAM_Float4:
        return VectorEvent(parameter, input);
    default:
        if (isMine)
        {
            SetValue(parameter, parameter->def.initial);
        }
        return isMine ? 1 : 0;
    }
}

long NaiveMachine::VectorEvent(LoadedParameter* parameter, const Input& input)
{
    if (input.number == 6)
    {
        SetValue(parameter, RealsOf(input, 0));
    }
    if (input.number == 7)
    {
        SetValue(parameter, parameter->def.initial);
    }
    if (input.number != 1 || input.record[1] != parameter->assign)
    {
        return 0;
    }
    SetValue(parameter, RealsOf(input, parameter->def.type == DURMBaseLib::PARAM_Float2 ? 5 : 4));
    return 1;
}

void NaiveMachine::AssignTrigger(unsigned int id, int trigger)
{
    const std::string name = NodeName(document, id);
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [&name](const auto& entry)
                                    {
                                        return entry.second->Name() == name;
                                    });
    const bool isTransition =
        found != nodes.end() && found->second->builder == DURMBaseLib::BUILDER_Transition;
    if (isTransition)
    {
        transitions[found->first].triggers.push_back(trigger);
    }
    else
    {
        Break("HSM::AssignTrigger");
    }
    Say(ResultLine("assign", isTransition ? 1 : 0));
}

void NaiveMachine::CreateParameter(int number)
{
    const Parameter def = RuntimeParameter(number);
    const bool isNew = FindParameter(def.Id()) == nullptr;
    if (isNew)
    {
        LoadedParameter& parameter = parameters[def.Id()];
        parameter.def = def;
        SetValue(&parameter, def.initial);
    }
    Say(ResultLine("create", isNew ? 1 : 0));
}

NaiveMachine::LoadedParameter* NaiveMachine::FindParameter(unsigned int id)
{
    const auto found = parameters.find(id);
    return found != parameters.end() ? &found->second : nullptr;
}

void NaiveMachine::Say(const std::string& line)
{
    lines.push_back(line);
}

void NaiveMachine::Info(const std::string& text)
{
    Say("[INFO]\t: " + text);
}

void NaiveMachine::Error(const std::string& text)
{
    Say("[ERROR]\t: " + text);
}

void NaiveMachine::Break(const char* function)
{
    Error("ERROR_BREAK(0) at # in vell::" + std::string(function));
}

void NaiveMachine::Paint(Picture* picture) const
{
    const auto ids = [](const std::vector<State*>& list)
    {
        Ids result;
        for (const State* state : list)
        {
            result.push_back(state->node->id);
        }
        return result;
    };
    const auto id = [](const State* state)
    {
        return state != nullptr ? state->node->id : 0;
    };
    picture->stack = ids(stack);
    picture->blip = ids(blip);
    picture->blipActive = blipActive;
    picture->blipPriority = blipPriority;
    picture->blipLevel = blipLevel;
    picture->onBlipStack = currentStack == &blip;
    picture->isStarted = currentStack != nullptr;
    picture->current = id(Current());
    picture->previous = id(previousState);
    picture->global = id(globalState);
    picture->treeStack = treeStack;
    picture->treeBlip = treeBlip;
    picture->treeNext = treeNext;
    picture->treePrevious = treePrevious;
    picture->treeTransition = treeTransition;
    for (const auto& entry : parameters)
    {
        picture->parameters.push_back(PaintParameter(entry.second));
    }
}

ParameterPicture NaiveMachine::PaintParameter(const LoadedParameter& parameter)
{
    ParameterPicture shown;
    shown.id = parameter.def.Id();
    switch (parameter.def.type)
    {
    case DURMBaseLib::PARAM_Bool:
        shown.words[0] = parameter.value.flag ? 1 : 0;
        shown.treeWord = static_cast<unsigned int>(parameter.treeWord);
        break;
    case DURMBaseLib::PARAM_Integer:
        shown.words[0] = static_cast<unsigned int>(parameter.value.whole);
        shown.treeWord = shown.words[0];
        break;
    case DURMBaseLib::PARAM_Text:
    case DURMBaseLib::PARAM_Message:
        shown.text = parameter.value.text;
        shown.treeText = shown.text;
        break;
    default:
        for (int index = 0; index < parameter.def.type - 2; ++index)
        {
            const auto at = static_cast<std::size_t>(index);
            shown.words[at] = Bits(parameter.value.reals[at]);
        }
        shown.words[4] = Bits(parameter.magnitude);
        shown.treeWord = parameter.def.type == DURMBaseLib::PARAM_Float ? shown.words[0] : 0;
        break;
    }
    return shown;
}

} // namespace model
