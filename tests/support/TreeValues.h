// VELL: data-driven hierarchical state machines.
// tests/support/TreeValues.h: values of every type in the tree, read and written.
#pragma once

#include <tessel/Tessel.h>

#include <cstring>
#include <string>
#include <type_traits>

namespace vell::test
{

/// Reads the value of a parameter or attribute in the tree, as its type is kept there.
template <class Value>
Value InTree(Tessel::KVTable table)
{
    Value value{};
    if constexpr (std::is_same_v<Value, std::string>)
    {
        const char* text = table->GetString("value");
        value = text == nullptr ? "(null)" : text;
    }
    else if constexpr (std::is_integral_v<Value>)
    {
        value = static_cast<Value>(table->GetInt("value"));
    }
    else if constexpr (std::is_same_v<Value, float>)
    {
        value = table->GetFloat("value");
    }
    else if constexpr (std::is_same_v<Value, Tessel::Float2>)
    {
        table->GetFloat2("value", &value);
    }
    else if constexpr (std::is_same_v<Value, Tessel::Float3>)
    {
        table->GetFloat3("value", &value);
    }
    else
    {
        table->GetFloat4("value", &value);
    }
    return value;
}

/// Writes the value of a parameter or attribute in the tree as a tool does.
template <class Value>
void WriteByTool(Tessel::KVTable table, const Value& value)
{
    if constexpr (std::is_same_v<Value, std::string>)
    {
        table->SetString("value", value.c_str(), 1);
    }
    else if constexpr (std::is_same_v<Value, unsigned int>)
    {
        table->SetUInt("value", value, 1);
    }
    else if constexpr (std::is_integral_v<Value>)
    {
        table->SetInt("value", std::is_same_v<Value, bool> ? value * 17 : value, 1);
    }
    else if constexpr (std::is_same_v<Value, float>)
    {
        table->SetFloat("value", value, 1);
    }
    else if constexpr (std::is_same_v<Value, Tessel::Float2>)
    {
        table->SetFloat2("value", &value, 1);
    }
    else if constexpr (std::is_same_v<Value, Tessel::Float3>)
    {
        table->SetFloat3("value", &value, 1);
    }
    else
    {
        table->SetFloat4("value", &value, 1);
    }
}

/// Compares vectors byte by byte.
template <class Value>
bool AreEqual(const Value& left, const Value& right)
{
    if constexpr (std::is_class_v<Value> && std::is_trivially_copyable_v<Value>)
    {
        return std::memcmp(&left, &right, sizeof(left)) == 0;
    }
    else
    {
        return left == right;
    }
}

} // namespace vell::test
