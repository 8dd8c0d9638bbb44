// VELL: data-driven hierarchical state machines.
// tests/machine/HSMSurfaceTest.cpp: the order of a machine's virtual operations.
#include <vell/HSM.h>

#include "tests/support/VirtualOrder.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

/// Gives the slots of the protected operations.
class Open : public HSM
{
public:
    static std::ptrdiff_t RegisterStateSlot()
    {
        return SlotOf(&Open::RegisterState);
    }
    static std::vector<std::ptrdiff_t> HookSlots()
    {
        return SlotsOf(&Open::ChangeState, &Open::RegisterBuilders, &Open::UnRegisterBuilders);
    }
};

using FindByName = IBaseDef* (IHSM::*)(const char*);
using FindById = IBaseDef* (IHSM::*)(unsigned int);

class HSMSurface : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!kCanReadSlots)
        {
            GTEST_SKIP() << "the slots of this platform cannot be read";
        }
    }
};

} // namespace

TEST_F(HSMSurface, KeepsTheOrderOfTheInterface)
{
    // The destructor takes the first two slots.
    EXPECT_EQ(SlotsOf(&IHSM::Init, &IHSM::Uninit, &IHSM::SetContextInfo, &IHSM::Create,
                      &IHSM::Destroy, &IHSM::Update, &IHSM::Start, &IHSM::GetParameterTable,
                      &IHSM::FindParameterByName, &IHSM::GetKVTable, &IHSM::GetCurrentState,
                      &IHSM::GetMDLAsset, &IHSM::GetSkelAsset, &IHSM::GetGUID, &IHSM::GetHSMType,
                      &IHSM::BeginDef, &IHSM::NextDef, static_cast<FindByName>(&IHSM::FindDef),
                      static_cast<FindById>(&IHSM::FindDef), &IHSM::SubscribeTransitionChange,
                      &IHSM::UnsubscribeTransitionChange, &IHSM::SubscribeStateChange,
                      &IHSM::UnsubscribeStateChange, &IHSM::SubscribeEvents,
                      &IHSM::UnsubscribeEvents, &IHSM::RegisterAction, &IHSM::FindAction,
                      &IHSM::RegisterNodeDef),
              SlotsFrom(2, 28));
    EXPECT_EQ(Open::RegisterStateSlot(), 30);
    EXPECT_EQ(SlotOf(&IHSM::SetStateSwitchCallback), 31);
}

TEST_F(HSMSurface, AddsTheMachinesOwnOperationsBehindTheInterface)
{
    EXPECT_EQ(SlotsOf(&HSM::AssignTrigger, &HSM::AssignDefaultAction), SlotsFrom(32, 2));
    EXPECT_EQ(Open::HookSlots(), SlotsFrom(34, 3));
}

} // namespace vell::test
