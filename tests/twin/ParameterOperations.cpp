// VELL: data-driven hierarchical state machines.
// tests/twin/ParameterOperations.cpp: what a host does to parameters.
#include "tests/twin/OperationKinds.h"

#include <cstring>

namespace twin
{
namespace
{

template <class Vector>
Vector ToVector(const Operation& operation)
{
    Vector vector = {};
    std::memcpy(&vector, operation.value.reals.data(), sizeof(vector));
    return vector;
}

/// Calls `use` with the parameter as its own class and a value of its type.
template <class Use>
void WithValue(vell::ParameterDef* def, const Operation& operation, Use use)
{
    if (auto* flag = dynamic_cast<vell::ParameterBoolDef*>(def))
    {
        use(*flag, operation.value.flag);
    }
    else if (auto* whole = dynamic_cast<vell::ParameterIntegerDef*>(def))
    {
        use(*whole, operation.value.whole);
    }
    else if (auto* real = dynamic_cast<vell::ParameterFloatDef*>(def))
    {
        use(*real, operation.value.reals[0]);
    }
    else if (auto* two = dynamic_cast<vell::ParameterAnalogDef*>(def))
    {
        use(*two, ToVector<Tessel::Float2>(operation));
    }
    else if (auto* three = dynamic_cast<vell::ParameterFloat3Def*>(def))
    {
        use(*three, ToVector<Tessel::Float3>(operation));
    }
    else if (auto* four = dynamic_cast<vell::ParameterFloat4Def*>(def))
    {
        use(*four, ToVector<Tessel::Float4>(operation));
    }
    else if (auto* text = dynamic_cast<vell::ParameterMessageDef*>(def))
    {
        use(*text, operation.value.text);
    }
}

void SetValue(Side& side, const Operation& operation)
{
    vell::ParameterDef* def = side.PickParameter(operation.picks[0]);
    Say("> SetValue of " + side.Name(def));
    WithValue(def, operation,
              [](auto& parameter, const auto& value)
              {
                  parameter.SetValue(value);
              });
}

void WriteValuePtr(Side& side, const Operation& operation)
{
    vell::ParameterDef* def = side.PickParameter(operation.picks[0]);
    Say("> *GetValuePtr() of " + side.Name(def));
    WithValue(def, operation,
              [](auto& parameter, const auto& value)
              {
                  using Value = typename std::decay<decltype(value)>::type;
                  *static_cast<Value*>(parameter.GetValuePtr()) = value;
              });
}

void SetDefaultValue(Side& side, const Operation& operation)
{
    vell::ParameterDef* def = side.PickParameter(operation.picks[0]);
    Say("> SetDefaultValue of " + side.Name(def));
    WithValue(def, operation,
              [](auto& parameter, const auto& value)
              {
                  parameter.SetDefaultValue(value);
              });
}

void ResetValue(Side& side, const Operation& operation)
{
    if (vell::ParameterDef* def = side.PickParameter(operation.picks[0]))
    {
        Say("> ResetValue of " + side.Name(def));
        def->ResetValue();
    }
}

void ParameterEvent(Side& side, const Operation& operation)
{
    static const int events[] = {1, 1, 4, 6, 7, 2};
    static const int bindings[] = {0, 0, 1, 2, 10, 26};
    vell::ParameterDef* def = side.PickParameter(operation.picks[0]);
    if (def == nullptr)
    {
        return;
    }
    vell::ParamBroadcast record = {};
    record.subKind = static_cast<int>(operation.picks[1] % 3);
    record.binding = bindings[operation.picks[2] % 6];
    std::memcpy(record.input.vector, operation.value.reals.data(), sizeof(record.input.vector));
    Say("> OnBroadcastEvent of " + side.Name(def));
    def->OnBroadcastEvent(events[operation.picks[3] % 6], &record);
}

void BroadcastMessage(Side& side, const Operation& operation)
{
    const std::string name = side.PickParameterName(operation.picks[0]);
    Say("> BroadcastMessage " + name);
    side.machine.BroadcastMessage(name.c_str());
}

void SetParameterMessage(Side& side, const Operation& operation)
{
    const std::string name = side.PickParameterName(operation.picks[0]);
    Say("> SetParameterMessage " + name);
    side.machine.SetParameterMessage(side.machine.FindParameterByName(name.c_str()),
                                     operation.value.text.c_str());
}

void CreateParameter(Side& side, const Operation& operation)
{
    static const char* const names[] = {"runtime0", "runtime1", "runtime2", "runtime3"};
    vell::IParameterTable* table = side.machine.GetParameterTable();
    if (table == nullptr)
    {
        return;
    }
    vell::IParameterBoolDef* flag = nullptr;
    vell::IParameterIntDef* whole = nullptr;
    vell::IParameterFloatDef* real = nullptr;
    vell::IParameterMessageDef* text = nullptr;
    const unsigned int number = operation.picks[0] % 4;
    const char* const name = names[number];
    Say(std::string("> create ") + name);
    const int result =
        number == 0   ? table->CreateBoolParameter(name, operation.value.flag, &flag)
        : number == 1 ? table->CreateIntParameter(name, operation.value.whole, &whole)
        : number == 2 ? table->CreateFloatParameter(name, operation.value.reals[0], &real)
                      : table->CreateMessageParameter(name, operation.value.text.c_str(), &text);
    if (result == 1)
    {
        side.AddParameter(table->FindParameter(name));
    }
}

/// Takes two of one class. A class that the host copies needs no more than its assignment.
template <class Parameter>
bool CopyOne(vell::ParameterDef* target, vell::ParameterDef* source, bool isExchange)
{
    auto* left = dynamic_cast<Parameter*>(target);
    auto* right = dynamic_cast<Parameter*>(source);
    if (left == nullptr || right == nullptr || left == right)
    {
        return false;
    }
    if (!isExchange)
    {
        left->UnInitKVTableListener();
        *left = *right;
        return true;
    }
    // Each hears of its own table afterwards too.
    left->UnInitKVTableListener();
    right->UnInitKVTableListener();
    Parameter kept(*left);
    *left = *right;
    *right = kept;
    // Else its destructor would close the table of the other.
    kept = Parameter();
    left->InitKVTableListener();
    right->InitKVTableListener();
    return true;
}

bool Copy(Side& side, const Operation& operation, bool isExchange)
{
    vell::ParameterDef* target = side.PickParameter(operation.picks[0]);
    for (std::size_t i = 0; i < side.parameters.size(); ++i)
    {
        vell::ParameterDef* source =
            side.PickParameter(operation.picks[1] + static_cast<unsigned>(i));
        const std::string line = "> *" + side.Name(target) + " = *" + side.Name(source);
        if (CopyOne<vell::ParameterBoolDef>(target, source, isExchange) ||
            CopyOne<vell::ParameterIntegerDef>(target, source, isExchange) ||
            CopyOne<vell::ParameterFloatDef>(target, source, isExchange) ||
            CopyOne<vell::ParameterMessageDef>(target, source, isExchange))
        {
            Say(line + (isExchange ? " and back" : ""));
            return true;
        }
    }
    return false;
}

void AssignParameter(Side& side, const Operation& operation)
{
    Copy(side, operation, false);
}

void ExchangeParameters(Side& side, const Operation& operation)
{
    Copy(side, operation, true);
}

void SetParameterField(Side& side, const Operation& operation)
{
    vell::ParameterDef* def = side.PickParameter(operation.picks[0]);
    if (def == nullptr)
    {
        return;
    }
    const int value = static_cast<int>(operation.picks[2] % 9);
    Say("> set field " + std::to_string(operation.picks[1] % 4) + " of " + side.Name(def) + " to " +
        std::to_string(value));
    switch (operation.picks[1] % 4)
    {
    case 0:
        def->SetParamType(value);
        break;
    case 1:
        def->SetAssign(value);
        break;
    case 2:
        def->SetAssignClass(value);
        break;
    default:
        def->SetSyncState(value % 3);
        break;
    }
}

void PullValue(Side& side, const Operation& operation)
{
    if (vell::ParameterDef* def = side.PickParameter(operation.picks[0]))
    {
        Say("> PullValue of " + side.Name(def));
        def->PullValue();
    }
}

} // namespace

OperationKinds ParameterOperations()
{
    return {{"SetValue", 120, Place::Everywhere, SetValue},
            {"WriteValuePtr", 60, Place::Everywhere, WriteValuePtr},
            {"SetDefaultValue", 6, Place::Everywhere, SetDefaultValue},
            {"ResetValue", 6, Place::Everywhere, ResetValue},
            {"ParameterEvent", 15, Place::Everywhere, ParameterEvent},
            {"BroadcastMessage", 15, Place::Everywhere, BroadcastMessage},
            {"SetParameterMessage", 15, Place::Everywhere, SetParameterMessage},
            {"CreateParameter", 8, Place::Outside, CreateParameter},
            {"AssignParameter", 5, Place::Outside, AssignParameter},
            {"ExchangeParameters", 5, Place::Outside, ExchangeParameters},
            {"SetParameterField", 4, Place::Callbacks, SetParameterField},
            {"PullValue", 3, Place::Callbacks, PullValue}};
}

} // namespace twin
