// VELL: data-driven hierarchical state machines.
// tests/twin/Side.cpp: the host around a machine, and what it sees of it.
#include "tests/twin/Side.h"

#include <durm/DURMBaseLib.h>

#include "tests/support/TreeLines.h"
#include "tests/twin/OperationKinds.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace twin
{
namespace
{

Side* current = nullptr;

/// Makes a side the one at work for as long as it lives.
class AtWork
{
public:
    explicit AtWork(Side& side)
    {
        current = &side;
    }
    ~AtWork()
    {
        current = nullptr;
    }
    AtWork(const AtWork&) = delete;
    AtWork& operator=(const AtWork&) = delete;
};

// Addresses differ from machine to machine.
std::string WithoutAddresses(std::string text)
{
    for (std::size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at + 2))
    {
        std::size_t end = at + 2;
        while (end < text.size() && std::isxdigit(static_cast<unsigned char>(text[end])) != 0)
        {
            ++end;
        }
        text.replace(at, end - at, "0x");
    }
    return text;
}

void OnLog(int level, const char* text)
{
    if (current == nullptr)
    {
        return;
    }
    std::string line = WithoutAddresses(text);
    if (!line.empty() && line.back() == '\n')
    {
        line.pop_back();
    }
    Say(std::to_string(level) + " " + line);
    current->Called(Caller::Log);
}

int OnTreeWrite(void*, Tessel::opResult, Tessel::KVTable table, const char* key)
{
    if (current != nullptr)
    {
        const char* const name = Tessel::GetTableName(table);
        Say(std::string("written: ") + (name == nullptr ? "(closed)" : name) + " " + key);
        current->Called(Caller::Tree);
    }
    return 1;
}

template <unsigned int Number>
bool OnTrigger(vell::IHSM*, vell::SMState* state)
{
    Say("trigger " + std::to_string(Number) + (state == nullptr ? "" : " with a state"));
    Side* side = current;
    const unsigned int calls = ++side->triggerCalls[Number];
    side->Called(Caller::Trigger);
    return Number != 0 && calls % (Number + 2) == 0;
}

long long BitsOf(const void* value, std::size_t size)
{
    long long bits = 0;
    std::memcpy(&bits, value, size);
    return bits;
}

void AddValue(vell::ParameterDef& def, std::vector<long long>& numbers)
{
    const auto* place = static_cast<const unsigned char*>(def.GetValuePtr());
    if (auto* text = dynamic_cast<vell::ParameterMessageDef*>(&def))
    {
        numbers.push_back(static_cast<long long>(std::hash<std::string>()(text->GetValue())));
        return;
    }
    std::size_t floats = dynamic_cast<vell::ParameterAnalogDef*>(&def) != nullptr   ? 2
                         : dynamic_cast<vell::ParameterFloat3Def*>(&def) != nullptr ? 3
                         : dynamic_cast<vell::ParameterFloat4Def*>(&def) != nullptr ? 4
                                                                                    : 1;
    if (dynamic_cast<vell::ParameterBoolDef*>(&def) != nullptr)
    {
        numbers.push_back(*place);
        return;
    }
    for (; floats > 0; --floats, place += sizeof(float))
    {
        numbers.push_back(BitsOf(place, sizeof(float)));
    }
}

void AddHash(unsigned long long* hash, const void* bytes, std::size_t size)
{
    // FNV-1a, 64 bits.
    const auto* byte = static_cast<const unsigned char*>(bytes);
    for (std::size_t i = 0; i < size; ++i)
    {
        *hash = (*hash ^ byte[i]) * 0x100000001b3ull;
    }
}

void AddText(unsigned long long* hash, const char* text)
{
    AddHash(hash, text == nullptr ? "(null)" : text, text == nullptr ? 6 : std::strlen(text) + 1);
}

void AddKey(unsigned long long* hash, Tessel::KVTable table, const char* key, int type)
{
    AddText(hash, key);
    AddHash(hash, &type, sizeof(type));
    AddText(hash, table->GetString(key));
    const unsigned int whole = table->GetUInt(key);
    AddHash(hash, &whole, sizeof(whole));
    Tessel::Float4 floats = {table->GetFloat(key), 0.0f, 0.0f, 0.0f};
    Tessel::Float2 two = {};
    Tessel::Float3 three = {};
    table->GetFloat2(key, &two);
    table->GetFloat3(key, &three);
    table->GetFloat4(key, &floats);
    AddHash(hash, &two, sizeof(two));
    AddHash(hash, &three, sizeof(three));
    AddHash(hash, &floats, sizeof(floats));
}

void AddTable(unsigned long long* hash, Tessel::KVTable table)
{
    AddText(hash, Tessel::GetTableName(table));
    const unsigned int count = table->GetCount();
    for (unsigned int i = 0; i < count; ++i)
    {
        const unsigned int element = table->GetValueAt(i)->GetUIntValue();
        AddHash(hash, &element, sizeof(element));
    }
    const unsigned int keys = table->GetKeyCount();
    for (unsigned int i = 0; i < keys; ++i)
    {
        const char* const key = table->GetKeyAt(i);
        const int type = table->GetTypeAt(i);
        AddKey(hash, table, key, type);
        if (type == Tessel::ValueType_Table)
        {
            AddTable(hash, table->GetTable(key));
        }
    }
}

} // namespace

void Say(const std::string& line)
{
    if (current != nullptr)
    {
        current->lines.push_back(line);
    }
}

Side* CurrentSide()
{
    return current;
}

SideLog::SideLog()
{
    vell::SetLogCallBackBase(OnLog);
}

SideLog::~SideLog()
{
    vell::SetLogCallBackBase(nullptr);
}

vell::Trigger TriggerAt(unsigned int pick)
{
    static const vell::Trigger triggers[kTriggers] = {OnTrigger<0>, OnTrigger<1>, OnTrigger<2>,
                                                      OnTrigger<3>};
    return triggers[pick % kTriggers];
}

void OnSwitch(vell::HSM* machine, vell::SMState* previous, vell::SMState* next, float argument)
{
    Side* side = current;
    Say("switch " + side->Name(previous) + " -> " + side->Name(next) + " " +
        std::to_string(argument) + (machine == &side->machine ? "" : " of another machine"));
    side->Called(Caller::Switch);
}

TwinAction::TwinAction(Side& actionSide, unsigned int actionNumber,
                       const std::vector<Operation>& doing)
    : number(actionNumber), side(actionSide), inner(doing)
{
}

TwinAction::~TwinAction()
{
    Say("action " + std::to_string(number) + " deleted");
    side.actions[number] = nullptr;
}

int TwinAction::Perform(vell::__ActType__ type, float timeStep)
{
    Say("action " + std::to_string(number) + " type " + std::to_string(type) + " time " +
        std::to_string(timeStep));
    if (inner.empty() || left == 0)
    {
        return 1;
    }
    // What an exit action does to the stack is another test's.
    const Operation operation = inner.front();
    const Place place = AllOperations()[operation.kind].place;
    if (place < (type == vell::ActTypeExit ? Place::Callbacks : Place::Actions))
    {
        return 1;
    }
    --left;
    // The operation may delete this action.
    side.Do(operation);
    return 1;
}

int TwinListener::OnBroadcastEvent(int event, const void* record)
{
    std::string line = "listener " + std::to_string(number) + " event " + std::to_string(event);
    if (event == vell::HSMEventStateChange)
    {
        vell::StateChangeEvent change = {};
        std::memcpy(&change, record, sizeof(change));
        line += ": " + std::to_string(change.transitionID) + " " +
                std::to_string(change.previousID) + " -> " + std::to_string(change.nextID);
    }
    else
    {
        const auto* clip = static_cast<const vell::__PlayAnimEvent__*>(record);
        line += std::string(": ") + (clip->clipName == nullptr ? "(null)" : clip->clipName);
    }
    Say(line);
    current->Called(Caller::Listener);
    return 1;
}

Side::Side(const model::Document& modelDocument, bool hasShortcut)
    : document(modelDocument), machine(model::WriteDocument(document), hasShortcut)
{
    for (unsigned int number = 0; number < kListeners; ++number)
    {
        listeners[number].number = number;
    }
}

Side::~Side()
{
    for (TwinAction* action : std::vector<TwinAction*>(actions))
    {
        delete action;
    }
}

bool Side::Load()
{
    machine.RegisterNodeDef(DURMBaseLib::BUILDER_Generic, CreatePlainDef);
    isLoaded = machine.Init() == 1;
    if (isLoaded)
    {
        ownParameterTable = machine.parameterTable;
        arenaCapacity = machine.alloc.capacity;
        Collect();
    }
    return isLoaded;
}

void Side::Collect()
{
    constexpr auto all = static_cast<unsigned int>(vell::DefTypesAll);
    for (vell::IBaseDef* def = machine.BeginDef(all); def != nullptr; def = machine.NextDef(all))
    {
        auto* node = dynamic_cast<vell::BaseDef*>(def);
        defs.push_back(node);
        defNumbers.emplace(node, static_cast<long long>(defNumbers.size()) + 1);
        if (auto* transition = dynamic_cast<vell::TransitionDef*>(def))
        {
            transitions.push_back(transition);
            for (vell::ConditionDef* condition : transition->conditions)
            {
                AddCondition(condition);
            }
        }
        else if (def->GetType() != vell::DefTypeConnector)
        {
            stateDefs.push_back(node);
        }
    }
    for (int i = 0; i < machine.GetParameterTable()->GetParameterCount(); ++i)
    {
        const unsigned int id =
            machine.GetParameterTable()->GetParameterIDByIndex(static_cast<unsigned int>(i));
        AddParameter(machine.GetParameterTable()->FindParameter(id));
    }
    Listen(machine.GetKVTable()->GetTable("contextInfo"));
}

void Side::Listen(Tessel::KVTable table)
{
    Tessel::KVListener* listener = table->GetTableListener();
    if (listener != nullptr)
    {
        listener->function = OnTreeWrite;
    }
}

Lines Side::Apply(const Operation& operation)
{
    const AtWork atWork(*this);
    lines.clear();
    Do(operation);
    return lines;
}

Lines Side::End()
{
    const AtWork atWork(*this);
    lines.clear();
    waiting.clear();
    machine.Uninit();
    machine.Destroy();
    hostDefs.clear();
    return lines;
}

void Side::Do(const Operation& operation)
{
    try
    {
        AllOperations()[operation.kind].apply(*this, operation);
    }
    catch (const std::out_of_range&)
    {
        Say("threw std::out_of_range");
    }
}

void Side::Called(Caller caller)
{
    for (std::size_t i = 0; i < waiting.size(); ++i)
    {
        if (waiting[i].first == caller)
        {
            const Operation operation = waiting[i].second;
            waiting.erase(waiting.begin() + static_cast<std::ptrdiff_t>(i));
            machine.ExpectNoResets();
            Do(operation);
            return;
        }
    }
}

namespace
{

template <class List>
auto PickFrom(const List& list, unsigned int pick) ->
    typename std::remove_const<typename List::value_type>::type
{
    return list.empty() ? nullptr : list[pick % list.size()];
}

} // namespace

vell::BaseDef* Side::PickDef(unsigned int pick) const
{
    return PickFrom(defs, pick);
}

vell::BaseDef* Side::PickStateDef(unsigned int pick) const
{
    return PickFrom(stateDefs, pick);
}

vell::TransitionDef* Side::PickTransition(unsigned int pick) const
{
    return PickFrom(transitions, pick);
}

vell::ConditionDef* Side::PickCondition(unsigned int pick) const
{
    return PickFrom(conditions, pick);
}

vell::ParameterDef* Side::PickParameter(unsigned int pick) const
{
    return PickFrom(parameters, pick);
}

vell::SMState* Side::PickState(unsigned int pick)
{
    // Mostly one that is ticked.
    if (pick % 3 != 0 && !machine.stateStack.empty())
    {
        return PickFrom(machine.stateStack, pick / 3);
    }
    return PickFrom(States(), pick / 3);
}

vell::SubstateState* Side::PickSubstate(unsigned int pick)
{
    std::vector<vell::SubstateState*> substates;
    for (vell::SMState* state : States())
    {
        if (auto* substate = dynamic_cast<vell::SubstateState*>(state))
        {
            substates.push_back(substate);
        }
    }
    return PickFrom(substates, pick);
}

unsigned int Side::PickStateId(unsigned int pick) const
{
    vell::BaseDef* def = PickStateDef(pick);
    return def == nullptr ? 0 : def->GetID();
}

std::string Side::PickParameterName(unsigned int pick) const
{
    const std::size_t count = document.parameters.size();
    const std::size_t index = pick % (count + model::kRuntimeParameterCount);
    return index < count ? document.parameters[index].name
                         : model::RuntimeParameter(static_cast<int>(index - count)).name;
}

std::vector<vell::SMState*> Side::States()
{
    std::vector<vell::SMState*> all;
    for (const auto& entry : machine.states)
    {
        all.push_back(entry.second);
    }
    for (const auto& state : hostStates)
    {
        all.push_back(state.get());
    }
    return all;
}

long long Side::NumberOf(const vell::SMState* state)
{
    return state == nullptr
               ? 0
               : stateNumbers.emplace(state, static_cast<long long>(stateNumbers.size()) + 1)
                     .first->second;
}

long long Side::NumberOf(const vell::BaseDef* def) const
{
    if (def == nullptr)
    {
        return 0;
    }
    const auto entry = defNumbers.find(def);
    return entry == defNumbers.end() ? -1 : entry->second;
}

std::string Side::Name(const vell::BaseDef* def) const
{
    if (def == nullptr)
    {
        return "(null)";
    }
    const char* const name = const_cast<vell::BaseDef*>(def)->GetName();
    return std::string(name == nullptr ? "(unnamed)" : name) + "#" + std::to_string(NumberOf(def));
}

std::string Side::Name(const vell::SMState* state)
{
    return state == nullptr
               ? "(null)"
               : "state " + std::to_string(NumberOf(state)) + " of " + Name(state->GetDef());
}

TwinAction* Side::MakeAction(const std::vector<Operation>& inner)
{
    actions.push_back(nullptr);
    actions.back() = new TwinAction(*this, static_cast<unsigned int>(actions.size()) - 1, inner);
    return actions.back();
}

const vell::GenericValue& Side::Parse(const std::string& text)
{
    texts.emplace_back();
    texts.back().Parse(text.c_str());
    return texts.back();
}

void Side::AddCondition(vell::ConditionDef* condition)
{
    conditions.push_back(condition);
    defNumbers.emplace(condition, static_cast<long long>(defNumbers.size()) + 1);
}

void Side::AddParameter(vell::ParameterDef* parameter)
{
    parameters.push_back(parameter);
    defNumbers.emplace(parameter, static_cast<long long>(defNumbers.size()) + 1);
    Listen(parameter->GetKVTable());
}

std::vector<long long> Side::Numbers()
{
    std::vector<long long> numbers;
    for (const auto* stack : {&machine.stateStack, &machine.blipStack})
    {
        numbers.push_back(static_cast<long long>(stack->size()));
        for (const vell::SMState* state : *stack)
        {
            numbers.push_back(NumberOf(state));
        }
    }
    numbers.push_back(machine.currentStack == nullptr               ? 0
                      : machine.currentStack == &machine.stateStack ? 1
                                                                    : 2);
    for (const vell::SMState* state : {machine.globalState, machine.previousState})
    {
        numbers.push_back(NumberOf(state));
    }
    numbers.insert(numbers.end(), {machine.blipActive ? 1 : 0, machine.blipPriority,
                                   machine.blipStackLevel, machine.applyingContext ? 1 : 0});
    for (vell::SMState* state : States())
    {
        numbers.insert(numbers.end(), {NumberOf(state), NumberOf(state->GetDef()),
                                       NumberOf(state->GetParent()), state->GetNumTransitions()});
        if (const auto* substate = dynamic_cast<vell::SubstateState*>(state))
        {
            numbers.insert(numbers.end(),
                           {NumberOf(substate->currentChild), NumberOf(substate->previousChild),
                            substate->currentChildID, substate->previousChildID});
        }
    }
    for (vell::ParameterDef* parameter : parameters)
    {
        AddValue(*parameter, numbers);
    }
    return numbers;
}

Lines Side::Show()
{
    Lines shown;
    for (const long long number : Numbers())
    {
        shown.push_back("number " + std::to_string(shown.size()) + " is " + std::to_string(number));
    }
    return shown;
}

unsigned long long Side::TreeHash() const
{
    unsigned long long hash = 0xcbf29ce484222325ull;
    AddTable(&hash, machine.GetKVTable());
    return hash;
}

Lines Side::TreeLines() const
{
    return vell::test::TreeLines(machine.GetKVTable());
}

} // namespace twin
