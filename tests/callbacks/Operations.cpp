// VELL: data-driven hierarchical state machines.
// tests/callbacks/Operations.cpp: all operations, the pairs that cannot work, and what a hand
// gives.
#include "tests/callbacks/Operations.h"

#include "tests/callbacks/Scene.h"

namespace vell::callbacks
{

const std::vector<Operation>& Operations()
{
    static const std::vector<Operation> operations = []
    {
        std::vector<Operation> all;
        for (const std::vector<Operation>& part :
             {MachineOperations(), ProtectedMachineOperations(), StateOperations(),
              DefinitionOperations(), TransitionOperations(), ActionOperations(),
              ParameterOperations(), AttributeOperations(), TableOperations()})
        {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }();
    return operations;
}

const std::vector<ImpossiblePair>& ImpossiblePairs()
{
    static const std::vector<ImpossiblePair> pairs = {
        {nullptr, "Uninit", "it frees the states and definitions that the caller works on"},
        {nullptr, "Create", "it frees them too, and builds new ones in their place"},
        {nullptr, "delete the machine", "it deletes what the caller works on"},
        {nullptr, "Update", "a tick has one walk of the stack; a second one goes after it"},
        {nullptr, "currentStack = null", "it is one of the two stacks from the start on"},
    };
    return pairs;
}

const ImpossiblePair* FindImpossible(const std::string& callback, const std::string& operation)
{
    for (const ImpossiblePair& pair : ImpossiblePairs())
    {
        if ((pair.callback == nullptr || callback == pair.callback) &&
            (pair.operation == nullptr || operation == pair.operation))
        {
            return &pair;
        }
    }
    return nullptr;
}

SMState* OwnState(const Hand& hand)
{
    if (hand.state != nullptr)
    {
        return hand.state;
    }
    SMState* current = hand.machine->GetCurrentState();
    return current != nullptr ? current : hand.machine->FindState(kIdle);
}

SMState* OtherState(const Hand& hand)
{
    const SMState* own = OwnState(hand);
    for (const unsigned int id : {kWalk, kIdle, kRest, kGuard})
    {
        SMState* state = hand.machine->FindState(id);
        if (state != nullptr && state != own)
        {
            return state;
        }
    }
    return nullptr;
}

BaseDef* OwnDef(const Hand& hand)
{
    if (hand.def != nullptr)
    {
        return hand.def;
    }
    const SMState* state = OwnState(hand);
    return state != nullptr && state->GetDef() != nullptr
               ? state->GetDef()
               : dynamic_cast<BaseDef*>(hand.machine->FindDef(kIdle));
}

BaseDef* OtherDef(const Hand& hand)
{
    auto* walk = dynamic_cast<BaseDef*>(hand.machine->FindDef(kWalk));
    return walk != OwnDef(hand) ? walk : dynamic_cast<BaseDef*>(hand.machine->FindDef(kIdle));
}

SubstateState* FindLevel(const Hand& hand)
{
    return dynamic_cast<SubstateState*>(hand.machine->FindState(kCombat));
}

TransitionDef* FindTransition(const Hand& hand, const char* name)
{
    return dynamic_cast<TransitionDef*>(hand.machine->FindDef(name));
}

ConditionDef* FindCondition(const Hand& hand)
{
    const TransitionDef* go = FindTransition(hand, "Go");
    return go == nullptr || go->conditions.empty() ? nullptr : go->conditions.front();
}

ParameterDef* OwnParameter(const Hand& hand)
{
    return hand.parameter != nullptr ? hand.parameter : FindParameter(hand, "cue");
}

ParameterDef* FindParameter(const Hand& hand, const char* name)
{
    IParameterTable* table = hand.machine->GetParameterTable();
    return table == nullptr ? nullptr : table->FindParameter(name);
}

AttribBase* FindAttribute(const Hand& hand, const char* name)
{
    IBaseDef* def = hand.machine->FindDef(kIdle);
    return def == nullptr ? nullptr : def->GetAttrib(name);
}

Tessel::KVTable ContextTable(const Hand& hand)
{
    return hand.machine->GetKVTable()->GetTable("contextInfo");
}

Tessel::KVTable OwnTable(const Hand& hand)
{
    if (hand.table)
    {
        return hand.table;
    }
    const ParameterDef* parameter = OwnParameter(hand);
    return parameter == nullptr ? Tessel::KVTable() : parameter->GetKVTable();
}

const GenericValue& NodeValues(const Hand& hand)
{
    static const GenericValue null;
    const GenericDocument& document = hand.machine->document;
    if (!document.IsObject())
    {
        return null;
    }
    const auto layers = document.FindMember(DURMBaseLib::GetJsonName(JSON_Layers));
    if (layers == document.MemberEnd())
    {
        return null;
    }
    const auto nodes = layers->value[0].FindMember(DURMBaseLib::GetJsonName(JSON_Nodes));
    return nodes == layers->value[0].MemberEnd() ? null : nodes->value;
}

const GenericValue& NodeValue(const Hand& hand, unsigned int id)
{
    static const GenericValue null;
    const GenericValue& nodes = NodeValues(hand);
    for (unsigned int i = 0; nodes.IsArray() && i < nodes.Size(); ++i)
    {
        const auto member = nodes[i].FindMember(DURMBaseLib::GetJsonName(JSON_ID));
        if (member != nodes[i].MemberEnd() && member->value.GetUint() == id)
        {
            return nodes[i];
        }
    }
    return null;
}

} // namespace vell::callbacks
