// VELL: data-driven hierarchical state machines.
// tests/definitions/DefinitionSurfaceTest.cpp: the operations of definitions, in order.
#include <vell/AttribBase.h>
#include <vell/BaseDef.h>

#include "tests/support/VirtualOrder.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace vell::test
{
namespace
{

static_assert(std::is_abstract_v<IBaseDef> && std::has_virtual_destructor_v<IBaseDef>);
static_assert(std::is_abstract_v<IAttribDef> && std::has_virtual_destructor_v<IAttribDef>);
static_assert(std::is_base_of_v<IBaseDef, BaseDef> && !std::is_abstract_v<BaseDef>);
static_assert(std::is_base_of_v<IAttribDef, AttribBase> && !std::is_abstract_v<AttribBase>);
static_assert(sizeof(eHSMDefTypes) == 4 && sizeof(__DURM_BUILDERS__) == 4);

/// The slots behind those of a destructor, which takes two.
constexpr std::ptrdiff_t kBehindDestructor = 2;

template <class Value>
std::ptrdiff_t SetValueSlot()
{
    return SlotOf(static_cast<void (AttribBase::*)(Value)>(&AttribBase::SetValue));
}

template <class Value>
std::ptrdiff_t GetValueSlot()
{
    return SlotOf(static_cast<int (AttribBase::*)(Value)>(&AttribBase::GetValue));
}

} // namespace

TEST(DefinitionSurface, DefinitionsKeepTheOrderOfTheirOperations)
{
    if (!kCanReadSlots)
    {
        GTEST_SKIP() << "the order cannot be read on this platform";
    }

    EXPECT_EQ(SlotsOf(&IBaseDef::GetAttrib, &IBaseDef::GetName, &IBaseDef::GetID,
                      &IBaseDef::GetParentID, &IBaseDef::GetType, &IBaseDef::GetScriptName,
                      &IBaseDef::RegisterEnter, &IBaseDef::RegisterExit, &IBaseDef::RegisterExecute,
                      &IBaseDef::GetActions, &IBaseDef::GetEnterActions, &IBaseDef::GetExitActions,
                      &IBaseDef::RemoveAction, &IBaseDef::SetFlags, &IBaseDef::GetFlags),
              SlotsFrom(kBehindDestructor, 15));
    EXPECT_EQ(
        SlotsOf(&BaseDef::Init, &BaseDef::Uninit, &BaseDef::InitKVTable, &BaseDef::UninitKVTable),
        SlotsFrom(kBehindDestructor + 15, 4));
}

TEST(DefinitionSurface, AttributesKeepTheOrderOfTheirOperations)
{
    if (!kCanReadSlots)
    {
        GTEST_SKIP() << "the order cannot be read on this platform";
    }

    EXPECT_EQ(SlotsOf(&IAttribDef::GetName, &IAttribDef::GetDefaultType),
              SlotsFrom(kBehindDestructor, 2));
    EXPECT_EQ((std::vector<std::ptrdiff_t>{
                  SetValueSlot<const char*>(), SetValueSlot<int>(), SetValueSlot<float>(),
                  SetValueSlot<bool>(), GetValueSlot<const char*>(), GetValueSlot<int*>(),
                  GetValueSlot<float*>(), GetValueSlot<bool*>(),
                  SetValueSlot<const Tessel::Float4&>(), SetValueSlot<const Tessel::Float3&>(),
                  SetValueSlot<const Tessel::Float2&>(), GetValueSlot<Tessel::Float4*>(),
                  GetValueSlot<Tessel::Float3*>(), GetValueSlot<Tessel::Float2*>()}),
              SlotsFrom(kBehindDestructor + 2, 14));
}

TEST(DefinitionSurface, KindsAndClassesKeepTheirNumbers)
{
    EXPECT_EQ(
        (std::vector<int>{DefTypeBase, DefTypeEnter, DefTypeExit, DefTypeGlobal, DefTypeAnimClip,
                          DefTypeGeneric, DefTypeTransition, DefTypeCondition, DefTypeConnector,
                          DefTypeParameter, DefTypeSubstate}),
        (std::vector<int>{0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    EXPECT_EQ((std::vector<int>{DefTypesState, DefTypesConnector, DefTypesParameter,
                                DefTypesCondition, DefTypesTransition, DefTypesSubstate}),
              (std::vector<int>{0x01, 0x02, 0x04, 0x08, 0x10, 0x20}));
}

} // namespace vell::test
