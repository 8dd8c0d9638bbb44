// VELL: data-driven hierarchical state machines.
// tests/model/LibraryMachine.cpp: drives the library's machine and records what a host sees.

#include "tests/model/LibraryMachine.h"

#include <durm/DURMBaseLib.h>
#include <vell/vell.h>

#include <cctype>
#include <cstring>
#include <deque>
#include <stdexcept>

namespace model
{

namespace
{

/// A machine whose stacks and flags can be read.
class OpenMachine : public vell::HSM
{
public:
    explicit OpenMachine(const char* json) : HSM(json)
    {
    }

    void CallChangeState(unsigned int id)
    {
        ChangeState(id);
    }

    void Paint(Picture* picture)
    {
        picture->stack = IdsOf(stateStack);
        picture->blip = IdsOf(blipStack);
        picture->blipActive = blipActive && IsBlipState();
        picture->blipPriority = blipPriority;
        picture->blipLevel = blipStackLevel;
        picture->onBlipStack = currentStack == &blipStack;
        picture->isStarted = currentStack != nullptr;
        picture->current = IdOf(GetCurrentState());
        picture->previous = IdOf(previousState);
        picture->global = IdOf(globalState);
        const Tessel::KVTable context = GetKVTable()->GetTable("contextInfo");
        picture->treeStack = Elements(context->GetTable("stackStates"));
        picture->treeBlip = Elements(context->GetTable("stackBlip"));
        picture->treeNext = context->GetUInt("nextState");
        picture->treePrevious = context->GetUInt("previousState");
        picture->treeTransition = context->GetUInt("transitionTriggered");
    }

    static unsigned int IdOf(const vell::SMState* state)
    {
        return state != nullptr ? state->GetID() : 0;
    }

private:
    static Ids IdsOf(const std::vector<vell::SMState*>& states)
    {
        Ids ids;
        for (const vell::SMState* state : states)
        {
            ids.push_back(IdOf(state));
        }
        return ids;
    }

    static Ids Elements(Tessel::KVTable table)
    {
        Ids ids;
        for (unsigned int index = 0; index < table->GetCount(); ++index)
        {
            ids.push_back(table->GetValueAt(index)->GetUIntValue());
        }
        return ids;
    }
};

/// What the callbacks without an object of their own work on.
struct Recorder
{
    OpenMachine* machine = nullptr;
    bool isOn = false;
    Lines lines;
    std::array<unsigned int, kTriggerCount> triggerCalls = {};
};

Recorder* recorder = nullptr;

void Say(const std::string& line)
{
    if (recorder != nullptr && recorder->isOn)
    {
        recorder->lines.push_back(line);
    }
}

std::size_t SkipDigits(const std::string& text, std::size_t at)
{
    while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0)
    {
        ++at;
    }
    return at;
}

// File names and line numbers of the library are its own affair.
std::string Mask(std::string text)
{
    if (!text.empty() && text.back() == '\n')
    {
        text.pop_back();
    }
    const char* const suffix = ".cpp : ";
    const std::size_t file = text.find(suffix);
    if (file != std::string::npos)
    {
        std::size_t begin = file;
        while (begin > 0 && std::isalpha(static_cast<unsigned char>(text[begin - 1])) != 0)
        {
            --begin;
        }
        text.replace(begin, SkipDigits(text, file + std::strlen(suffix)) - begin, "@");
    }
    const std::size_t at = text.find(") at ");
    if (at != std::string::npos)
    {
        text.replace(at + 5, SkipDigits(text, at + 5) - at - 5, "#");
    }
    return text;
}

void OnLog(int level, const char* text)
{
    if (recorder == nullptr || !recorder->isOn)
    {
        return;
    }
    const std::string line = Mask(text);
    const char* const tag = level == 3 ? "[ERROR]" : level == 4 ? "[WARNING]" : "[INFO]";
    const bool isTagged = level != 3 && level != 4 && level != 6 ? false : line.find(tag) == 0;
    Say(isTagged ? line : "level " + std::to_string(level) + " " + line);
}

void OnSwitch(vell::HSM* machine, vell::SMState* previous, vell::SMState* next, float argument)
{
    Say(CallbackLine(OpenMachine::IdOf(previous), OpenMachine::IdOf(next), argument));
    if (machine != recorder->machine)
    {
        Say("callback of another machine");
    }
}

template <int Number>
bool OnTrigger(vell::IHSM* machine, vell::SMState* state)
{
    Say(TriggerLine(Number));
    if (machine != recorder->machine || state != nullptr)
    {
        Say("trigger with wrong arguments");
    }
    return TriggerHolds(Number, ++recorder->triggerCalls[Number]);
}

class Listener : public vell::IBroadcastListener
{
public:
    int number = 0;
    bool isForChanges = false;
    Listener* removed = nullptr; ///< taken off the list that calls, or null

    int OnBroadcastEvent(int event, const void* record) override
    {
        if (isForChanges && event == vell::HSMEventStateChange)
        {
            unsigned int ids[3];
            std::memcpy(ids, record, sizeof(ids));
            Say(ChangeLine(number, ids[0], ids[1], ids[2]));
            if (removed != nullptr)
            {
                recorder->machine->UnsubscribeStateChange(removed);
            }
            return 0;
        }
        const auto* clip = static_cast<const vell::__PlayAnimEvent__*>(record);
        Say(ClipLine(number, event, clip->clipName, clip->flag, clip->scalar));
        if (removed != nullptr)
        {
            recorder->machine->UnsubscribeEvents(removed);
        }
        return 0;
    }
};

template <class Interface>
Interface* Find(OpenMachine* machine, unsigned int id)
{
    return dynamic_cast<Interface*>(machine->GetParameterTable()->FindParameter(id));
}

class PlannedAction : public vell::Action
{
public:
    PlannedAction(const ActionPlan& actionPlan, std::size_t actionIndex)
        : plan(actionPlan), index(actionIndex)
    {
    }

    int Perform(vell::__ActType__ type, float timeStep) override
    {
        Say(ActionLine(plan, index, type, timeStep));
        auto* parameter = Find<vell::IParameterIntDef>(recorder->machine, plan.parameterId);
        if (parameter != nullptr)
        {
            parameter->SetValue(plan.value);
        }
        return 0;
    }

private:
    ActionPlan plan;
    std::size_t index;
};

template <class Vector>
Vector ToVector(const Value& value)
{
    Vector vector = {};
    std::memcpy(&vector, value.reals.data(), sizeof(vector));
    return vector;
}

void SetParameter(OpenMachine* machine, unsigned int id, const Value& value)
{
    if (auto* flag = Find<vell::IParameterBoolDef>(machine, id))
    {
        flag->SetValue(value.flag);
    }
    else if (auto* whole = Find<vell::IParameterIntDef>(machine, id))
    {
        whole->SetValue(value.whole);
    }
    else if (auto* real = Find<vell::IParameterFloatDef>(machine, id))
    {
        real->SetValue(value.reals[0]);
    }
    else if (auto* two = Find<vell::IParameterAnalogDef>(machine, id))
    {
        two->SetValue(ToVector<Tessel::Float2>(value));
    }
    else if (auto* three = Find<vell::IParameterFloat3Def>(machine, id))
    {
        three->SetValue(ToVector<Tessel::Float3>(value));
    }
    else if (auto* four = Find<vell::IParameterFloat4Def>(machine, id))
    {
        four->SetValue(ToVector<Tessel::Float4>(value));
    }
    else if (auto* text = Find<vell::IParameterMessageDef>(machine, id))
    {
        text->SetValue(value.text);
    }
}

void WriteTree(OpenMachine* machine, unsigned int id, const Value& value)
{
    vell::ParameterDef* parameter = machine->GetParameterTable()->FindParameter(id);
    if (parameter == nullptr)
    {
        return;
    }
    const Tessel::KVTable table =
        machine->GetKVTable()->GetTable("parameterTable")->GetTable(std::to_string(id).c_str());
    const auto two = ToVector<Tessel::Float2>(value);
    const auto three = ToVector<Tessel::Float3>(value);
    const auto four = ToVector<Tessel::Float4>(value);
    switch (parameter->GetParamType())
    {
    case vell::__ePARAMTYPE__::PARAM_Bool:
    case vell::__ePARAMTYPE__::PARAM_Integer:
        table->SetInt("value", value.whole, 1);
        break;
    case vell::__ePARAMTYPE__::PARAM_Float:
        table->SetFloat("value", value.reals[0], 1);
        break;
    case vell::__ePARAMTYPE__::PARAM_Float2:
        table->SetFloat2("value", &two, 1);
        break;
    case vell::__ePARAMTYPE__::PARAM_Float3:
        table->SetFloat3("value", &three, 1);
        break;
    case vell::__ePARAMTYPE__::PARAM_Float4:
        table->SetFloat4("value", &four, 1);
        break;
    default:
        table->SetString("value", value.text.c_str(), 1);
        break;
    }
}

void CopyReals(ParameterPicture* picture, const void* reals, std::size_t size)
{
    std::memcpy(picture->words.data(), reals, size);
}

void CopyMagnitude(ParameterPicture* picture, float magnitude)
{
    std::memcpy(&picture->words[4], &magnitude, sizeof(magnitude));
}

void PaintValue(OpenMachine* machine, Tessel::KVTable table, ParameterPicture* picture)
{
    const unsigned int id = picture->id;
    if (auto* flag = Find<vell::IParameterBoolDef>(machine, id))
    {
        picture->words[0] = flag->GetValue() ? 1 : 0;
        picture->treeWord = table->GetUInt("value");
    }
    else if (auto* whole = Find<vell::IParameterIntDef>(machine, id))
    {
        picture->words[0] = static_cast<unsigned int>(whole->GetValue());
        picture->treeWord = table->GetUInt("value");
    }
    else if (auto* real = Find<vell::IParameterFloatDef>(machine, id))
    {
        const float value = real->GetValue();
        const float treeValue = table->GetFloat("value");
        CopyReals(picture, &value, sizeof(value));
        std::memcpy(&picture->treeWord, &treeValue, sizeof(treeValue));
    }
    else if (auto* two = Find<vell::IParameterAnalogDef>(machine, id))
    {
        const Tessel::Float2 value = two->GetValue();
        CopyReals(picture, &value, sizeof(value));
        CopyMagnitude(picture, two->GetMagnitude());
    }
    else if (auto* three = Find<vell::IParameterFloat3Def>(machine, id))
    {
        const Tessel::Float3 value = three->GetValue();
        CopyReals(picture, &value, sizeof(value));
        CopyMagnitude(picture, three->GetMagnitude());
    }
    else if (auto* four = Find<vell::IParameterFloat4Def>(machine, id))
    {
        const Tessel::Float4 value = four->GetValue();
        CopyReals(picture, &value, sizeof(value));
    }
    else if (auto* text = Find<vell::IParameterMessageDef>(machine, id))
    {
        const char* const treeText = table->GetString("value");
        picture->text = text->GetValue();
        picture->treeText = treeText != nullptr ? treeText : "(null)";
    }
}

} // namespace

class LibraryMachine::Impl
{
public:
    explicit Impl(const Case& modelCase)
        : document(modelCase.document),
          json(WriteDocument(document)),
          machine(std::make_unique<OpenMachine>(json.c_str()))
    {
        log.machine = machine.get();
        recorder = &log;
        vell::SetLogCallBackBase(&OnLog);
        isLoaded = machine->Init() == 1;
        PutActions(modelCase.actions);
        for (int number = 0; number < kListenerCount; ++number)
        {
            changeListeners[static_cast<std::size_t>(number)].number = number;
            changeListeners[static_cast<std::size_t>(number)].isForChanges = true;
            eventListeners[static_cast<std::size_t>(number)].number = number;
        }
        changeListeners[kRemovingListener].removed = &changeListeners[0];
        eventListeners[kRemovingListener].removed = &eventListeners[0];
        for (int number = 0; number < kRuntimeParameterCount; ++number)
        {
            runtimeParameters[static_cast<std::size_t>(number)] = RuntimeParameter(number);
        }
    }

    ~Impl()
    {
        log.isOn = false;
        machine->Uninit();
        machine->Destroy();
        machine.reset();
        vell::SetLogCallBackBase(nullptr);
        recorder = nullptr;
    }

    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    Step Apply(const Input& input)
    {
        Step step;
        log.lines.clear();
        log.isOn = true;
        try
        {
            Do(input);
        }
        catch (const std::out_of_range&)
        {
            step.threw = true;
        }
        log.isOn = false;
        step.lines = log.lines;
        machine->Paint(&step.picture);
        PaintParameters(&step.picture);
        return step;
    }

    bool isLoaded = false;

private:
    void PutActions(const std::vector<ActionPlan>& plans)
    {
        for (std::size_t index = 0; index < plans.size(); ++index)
        {
            vell::IBaseDef* def = machine->FindDef(plans[index].nodeId);
            if (def == nullptr)
            {
                continue;
            }
            auto* action = new PlannedAction(plans[index], index);
            switch (plans[index].list)
            {
            case vell::ActTypeEntry:
                def->RegisterEnter(action);
                break;
            case vell::ActTypeExecution:
                def->RegisterExecute(action);
                break;
            default:
                def->RegisterExit(action);
                break;
            }
        }
    }

    void Do(const Input& input)
    {
        switch (input.kind)
        {
        case InputKind::Tick:
            machine->Update(input.time);
            break;
        case InputKind::Start:
            machine->Start();
            break;
        case InputKind::Rebind:
            machine->BindParamCond();
            break;
        case InputKind::AssignTrigger:
            AssignTrigger(input);
            break;
        case InputKind::SetContext:
            SetContext(input);
            break;
        case InputKind::SetParameter:
        case InputKind::ToolWrite:
        case InputKind::ParameterEvent:
        case InputKind::Broadcast:
        case InputKind::SetMessage:
        case InputKind::CreateParameter:
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

    void DoWithStack(const Input& input)
    {
        switch (input.kind)
        {
        case InputKind::PushId:
            Say(ResultLine("push", OpenMachine::IdOf(machine->PushState(input.id))));
            break;
        case InputKind::PushCurrent:
            if (vell::SMState* state = machine->GetCurrentState())
            {
                Say(ResultLine("push", OpenMachine::IdOf(machine->PushState(state))));
            }
            break;
        case InputKind::Pop:
            Say(ResultLine("pop", OpenMachine::IdOf(machine->PopState())));
            break;
        case InputKind::RevertToPrevious:
            Say(ResultLine("revert", machine->RevertToPreviousState()));
            break;
        case InputKind::RevertToStart:
            Say(ResultLine("revert", machine->RevertToStartState()));
            break;
        default:
            machine->CallChangeState(input.id);
            break;
        }
    }

    void DoWithListeners(const Input& input)
    {
        Listener* change = &changeListeners[ListenerIndex(input)];
        Listener* event = &eventListeners[ListenerIndex(input)];
        const vell::__PlayAnimEvent__ record = {"fired", true, 1.0f};
        switch (input.kind)
        {
        case InputKind::SubscribeState:
            Say(ResultLine("subscribe", machine->SubscribeStateChange(change)));
            break;
        case InputKind::UnsubscribeState:
            Say(ResultLine("unsubscribe", machine->UnsubscribeStateChange(change)));
            break;
        case InputKind::SubscribeTransition:
            Say(ResultLine("subscribe", machine->SubscribeTransitionChange(change)));
            break;
        case InputKind::SubscribeEvents:
            Say(ResultLine("subscribe", machine->SubscribeEvents(event)));
            break;
        case InputKind::UnsubscribeEvents:
            Say(ResultLine("unsubscribe", machine->UnsubscribeEvents(event)));
            break;
        case InputKind::FireEvent:
            Say(ResultLine(
                "fire",
                machine->FireEvent(static_cast<vell::__HSMEventType__>(input.number), &record)));
            break;
        default:
            machine->SetStateSwitchCallback(input.number != 0 ? &OnSwitch : nullptr);
            break;
        }
    }

    static std::size_t ListenerIndex(const Input& input)
    {
        return static_cast<std::size_t>(input.number) % kListenerCount;
    }

    void DoWithParameter(const Input& input)
    {
        vell::IBroadcastListener* listener = nullptr;
        switch (input.kind)
        {
        case InputKind::SetParameter:
            SetParameter(machine.get(), input.id, input.value);
            break;
        case InputKind::ToolWrite:
            WriteTree(machine.get(), input.id, input.value);
            break;
        case InputKind::ParameterEvent:
            listener = machine->GetParameterTable()->GetBroadcastListener(input.id);
            if (listener != nullptr)
            {
                Say(ResultLine("event",
                               listener->OnBroadcastEvent(input.number, input.record.data())));
            }
            break;
        case InputKind::Broadcast:
            machine->BroadcastMessage(ParameterName(document, input.id).c_str());
            break;
        case InputKind::SetMessage:
            Say(ResultLine("message",
                           machine->SetParameterMessage(input.id, input.value.text.c_str())));
            break;
        default:
            CreateParameter(runtimeParameters[static_cast<std::size_t>(input.number)]);
            break;
        }
    }

    void CreateParameter(const Parameter& def)
    {
        vell::IParameterTable* table = machine->GetParameterTable();
        vell::IParameterBoolDef* flag = nullptr;
        vell::IParameterIntDef* whole = nullptr;
        vell::IParameterFloatDef* real = nullptr;
        vell::IParameterMessageDef* text = nullptr;
        const char* const name = def.name.c_str();
        int result = 0;
        switch (def.type)
        {
        case vell::__ePARAMTYPE__::PARAM_Bool:
            result = table->CreateBoolParameter(name, def.initial.flag, &flag);
            break;
        case vell::__ePARAMTYPE__::PARAM_Integer:
            result = table->CreateIntParameter(name, def.initial.whole, &whole);
            break;
        case vell::__ePARAMTYPE__::PARAM_Float:
            result = table->CreateFloatParameter(name, def.initial.reals[0], &real);
            break;
        default:
            result = table->CreateMessageParameter(name, def.initial.text.c_str(), &text);
            break;
        }
        Say(ResultLine("create", result));
    }

    void AssignTrigger(const Input& input)
    {
        static const vell::Trigger triggers[kTriggerCount] = {&OnTrigger<0>, &OnTrigger<1>,
                                                              &OnTrigger<2>, &OnTrigger<3>};
        const std::string name = NodeName(document, input.id);
        Say(ResultLine("assign", machine->AssignTrigger(name.c_str(), triggers[input.number])));
    }

    void SetContext(const Input& input)
    {
        const Tessel::KVTable context = Tessel::CreateTable("context");
        const auto fill = [&context](const char* key, const Ids& ids)
        {
            const Tessel::KVTable stack = context->AddTable(key, 1);
            for (const unsigned int id : ids)
            {
                stack->PushUInt(id, 1);
            }
        };
        fill("stackStates", input.stack);
        fill("stackBlip", input.blip);
        context->SetUInt("nextState", input.change[0], 1);
        context->SetUInt("previousState", input.change[1], 1);
        context->SetUInt("transitionTriggered", input.change[2], 1);
        Say(ResultLine("context", machine->SetContextInfo(context)));
        Tessel::CloseTable(context);
    }

    void PaintParameters(Picture* picture)
    {
        vell::IParameterTable* table = machine->GetParameterTable();
        const Tessel::KVTable tree = machine->GetKVTable()->GetTable("parameterTable");
        for (int index = 0; index < table->GetParameterCount(); ++index)
        {
            ParameterPicture shown;
            shown.id = table->GetParameterIDByIndex(static_cast<unsigned int>(index));
            PaintValue(machine.get(), tree->GetTable(std::to_string(shown.id).c_str()), &shown);
            picture->parameters.push_back(shown);
        }
    }

    const Document& document;
    std::string json;
    std::unique_ptr<OpenMachine> machine;
    Recorder log;
    std::array<Listener, kListenerCount> changeListeners;
    std::array<Listener, kListenerCount> eventListeners;
    std::array<Parameter, kRuntimeParameterCount> runtimeParameters; ///< their names must live
};

LibraryMachine::LibraryMachine(const Case& modelCase) : impl(std::make_unique<Impl>(modelCase))
{
}

LibraryMachine::~LibraryMachine() = default;

bool LibraryMachine::IsLoaded() const
{
    return impl->isLoaded;
}

Step LibraryMachine::Apply(const Input& input)
{
    return impl->Apply(input);
}

} // namespace model
