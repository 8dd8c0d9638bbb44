// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterSurfaceTest.cpp: the operations of the parameter interfaces, in order.
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include "tests/support/VirtualOrder.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace vell::test
{
namespace
{

/// Tells whether the first six operations of a value interface have the types they are called by.
template <class Interface, class Value, class DefaultArgument, class Argument>
constexpr bool HasValueOperations()
{
    return std::is_same_v<decltype(&Interface::GetDefaultValue), Value (Interface::*)()> &&
           std::is_same_v<decltype(&Interface::SetDefaultValue),
                          void (Interface::*)(DefaultArgument)> &&
           std::is_same_v<decltype(&Interface::GetValue), Value (Interface::*)()> &&
           std::is_same_v<decltype(&Interface::SetValue), void (Interface::*)(Argument)> &&
           std::is_same_v<decltype(&Interface::GetValuePtr), void* (Interface::*)()> &&
           std::is_same_v<decltype(&Interface::ResetValue), void (Interface::*)()>;
}

template <class Interface, class Value>
constexpr bool HasVectorOperations()
{
    return HasValueOperations<Interface, Value, const Value&, const Value&>() &&
           std::is_same_v<decltype(&Interface::GetMagnitude), float (Interface::*)()> &&
           std::is_same_v<decltype(&Interface::GetVector), Value (Interface::*)()> &&
           std::is_same_v<decltype(&Interface::SetVector), void (Interface::*)(const Value&)>;
}

static_assert(HasValueOperations<IParameterBoolDef, bool, bool, bool>());
static_assert(HasValueOperations<IParameterIntDef, int, int, int>());
static_assert(HasValueOperations<IParameterFloatDef, float, float, float>());
static_assert(HasVectorOperations<IParameterAnalogDef, Tessel::Float2>());
static_assert(HasVectorOperations<IParameterFloat3Def, Tessel::Float3>());
static_assert(HasValueOperations<IParameterFloat4Def, Tessel::Float4, const Tessel::Float4&,
                                 const Tessel::Float4&>());
static_assert(
    HasValueOperations<IParameterMessageDef, std::string, std::string, const std::string&>());

/// An interface without a destructor of its own.
template <class Interface>
constexpr bool HasNoDestructor()
{
    return std::is_abstract_v<Interface> && !std::has_virtual_destructor_v<Interface>;
}

static_assert(HasNoDestructor<IParameterBoolDef>() && HasNoDestructor<IParameterIntDef>());
static_assert(HasNoDestructor<IParameterFloatDef>() && HasNoDestructor<IParameterAnalogDef>());
static_assert(HasNoDestructor<IParameterFloat3Def>() && HasNoDestructor<IParameterFloat4Def>());
static_assert(HasNoDestructor<IParameterMessageDef>() && HasNoDestructor<IParameterTable>());
static_assert(HasNoDestructor<IBroadcastListener>());

static_assert(std::is_base_of_v<BaseDef, ParameterDef> &&
              std::is_base_of_v<IBroadcastListener, ParameterDef>);
static_assert(std::is_base_of_v<ParameterDef, ParameterBoolDef> &&
              std::is_base_of_v<IParameterBoolDef, ParameterBoolDef>);
static_assert(std::is_base_of_v<ParameterDef, ParameterIntegerDef> &&
              std::is_base_of_v<IParameterIntDef, ParameterIntegerDef>);
static_assert(std::is_base_of_v<ParameterDef, ParameterFloatDef> &&
              std::is_base_of_v<IParameterFloatDef, ParameterFloatDef>);
static_assert(std::is_base_of_v<ParameterDef, ParameterAnalogDef> &&
              std::is_base_of_v<IParameterAnalogDef, ParameterAnalogDef>);
static_assert(std::is_base_of_v<ParameterDef, ParameterFloat3Def> &&
              std::is_base_of_v<IParameterFloat3Def, ParameterFloat3Def>);
static_assert(std::is_base_of_v<ParameterDef, ParameterFloat4Def> &&
              std::is_base_of_v<IParameterFloat4Def, ParameterFloat4Def>);
static_assert(std::is_base_of_v<ParameterDef, ParameterMessageDef> &&
              std::is_base_of_v<IParameterMessageDef, ParameterMessageDef>);

template <class Interface>
std::vector<std::ptrdiff_t> ValueSlots()
{
    return SlotsOf(&Interface::GetDefaultValue, &Interface::SetDefaultValue, &Interface::GetValue,
                   &Interface::SetValue, &Interface::GetValuePtr, &Interface::ResetValue);
}

template <class Interface>
std::vector<std::ptrdiff_t> MagnitudeSlots()
{
    return SlotsOf(&Interface::GetMagnitude, &Interface::GetVector, &Interface::SetVector);
}

} // namespace

TEST(ParameterSurface, ValueInterfacesKeepTheOrderOfTheirOperations)
{
    if (!kCanReadSlots)
    {
        GTEST_SKIP() << "the order cannot be read on this platform";
    }

    EXPECT_EQ(ValueSlots<IParameterBoolDef>(), SlotsFrom(0, 6));
    EXPECT_EQ(ValueSlots<IParameterIntDef>(), SlotsFrom(0, 6));
    EXPECT_EQ(ValueSlots<IParameterFloatDef>(), SlotsFrom(0, 6));
    EXPECT_EQ(ValueSlots<IParameterAnalogDef>(), SlotsFrom(0, 6));
    EXPECT_EQ(ValueSlots<IParameterFloat3Def>(), SlotsFrom(0, 6));
    EXPECT_EQ(ValueSlots<IParameterFloat4Def>(), SlotsFrom(0, 6));
    EXPECT_EQ(ValueSlots<IParameterMessageDef>(), SlotsFrom(0, 6));
    EXPECT_EQ(MagnitudeSlots<IParameterAnalogDef>(), SlotsFrom(6, 3));
    EXPECT_EQ(MagnitudeSlots<IParameterFloat3Def>(), SlotsFrom(6, 3));
    EXPECT_EQ(SlotOf(&IBroadcastListener::OnBroadcastEvent), 0);
}

TEST(ParameterSurface, ParametersAddTheirOperationsBehindThoseOfDefinitions)
{
    if (!kCanReadSlots)
    {
        GTEST_SKIP() << "the order cannot be read on this platform";
    }
    const std::ptrdiff_t last = SlotOf(&BaseDef::UninitKVTable);

    EXPECT_EQ(SlotsOf(&ParameterDef::GetParamType, &ParameterDef::SetParamType,
                      &ParameterDef::GetAssign, &ParameterDef::SetAssign,
                      &ParameterDef::GetAssignClass, &ParameterDef::SetAssignClass,
                      &ParameterDef::GetValuePtr, &ParameterDef::ResetValue,
                      &ParameterDef::GetSyncState, &ParameterDef::SetSyncState,
                      &ParameterDef::InitKVTableListener, &ParameterDef::UnInitKVTableListener,
                      &ParameterDef::PullValue, &ParameterDef::OnParamValueModified),
              SlotsFrom(last + 1, 14));
}

TEST(ParameterSurface, TheTableKeepsTheOrderOfItsThirteenOperations)
{
    if (!kCanReadSlots)
    {
        GTEST_SKIP() << "the order cannot be read on this platform";
    }
    ParameterDef* (IParameterTable::*byName)(const char*) = &IParameterTable::FindParameter;
    ParameterDef* (IParameterTable::*byId)(unsigned int) = &IParameterTable::FindParameter;

    EXPECT_EQ(
        SlotsOf(&IParameterTable::GetParameterCount, &IParameterTable::GetParameterName,
                &IParameterTable::GetParameterID, &IParameterTable::GetParameterIDByIndex, byName,
                byId, &IParameterTable::GetParameterAssign,
                &IParameterTable::GetParameterAssignClass, &IParameterTable::GetBroadcastListener,
                &IParameterTable::CreateFloatParameter, &IParameterTable::CreateBoolParameter,
                &IParameterTable::CreateIntParameter, &IParameterTable::CreateMessageParameter),
        SlotsFrom(0, 13));
}

} // namespace vell::test
