// VELL: data-driven hierarchical state machines.
// tests/machine/HSMBindingReentryTest.cpp: a host that changes what is being bound and asked, from
// the log callback and from a condition of its own.
#include <vell/ConditionDef.h>
#include <vell/TransitionDef.h>

#include "definitions/GenericDef.h"
#include "definitions/NodeDefTable.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <utility>

namespace vell::test
{
namespace
{

DocumentBuilder UnboundDocument()
{
    return DocumentBuilder()
        .Start(10)
        .Node(Generic("Stand", 10, {100, 101}))
        .Node(Transition("Go", 100, 10, 10, {BoolCondition("none", true)}))
        .Node(Transition("Turn", 101, 10, 10, {BoolCondition("neither", true)}));
}

/// A machine whose two transitions name parameters that are not there. The log line that says so
/// runs what a test asks for, once.
class BindingReentry : public testing::Test
{
protected:
    BindingReentry()
    {
        machine.Init();
        SetLogCallBackBase(&HearLine);
    }
    ~BindingReentry() override
    {
        onLine = nullptr;
    }
    TransitionDef* FindGo()
    {
        return dynamic_cast<TransitionDef*>(machine.nodeDefTable->Find(100));
    }
    static void HearLine(int, const char* text)
    {
        if (std::strstr(text, "Parameter definition is NULL") != nullptr)
        {
            const std::function<void()> running = std::exchange(onLine, nullptr);
            if (running)
            {
                running();
            }
        }
    }

    static inline std::function<void()> onLine;
    LogRecorder quiet;
    TestMachine machine{UnboundDocument()};
};

/// A host's condition that empties the list it is on.
class VanishingCondition : public ConditionDef
{
public:
    explicit VanishingCondition(TransitionDef& listOwner) : owner(listOwner)
    {
    }
    bool Evaluate(HSM*) override
    {
        owner.conditions.clear();
        owner.conditions.shrink_to_fit();
        return false;
    }
    bool ParameterBind() override
    {
        return true;
    }

private:
    TransitionDef& owner;
};

/// A host's definition that empties the table when it is asked for its type.
class EmptyingDef : public GenericDef
{
public:
    explicit EmptyingDef(TestMachine& tableOwner) : owner(tableOwner)
    {
    }
    eHSMDefTypes GetType() override
    {
        owner.UninitNodeDefTable(&owner.alloc);
        return DefTypeTransition;
    }

private:
    TestMachine& owner;
};

TEST_F(BindingReentry, EndsWithATableThatWasEmptiedMeanwhile)
{
    onLine = [this]
    {
        machine.UninitNodeDefTable(&machine.alloc);
    };

    machine.BindParamCond();

    EXPECT_TRUE(machine.nodeDefTable->nodes.empty());
}

TEST_F(BindingReentry, EndsWithATableThatADefinitionEmptiesWhenItIsAskedForItsType)
{
    EmptyingDef emptying(machine);
    machine.nodeDefTable->nodes[200] = &emptying;
    machine.nodeDefTable->nodeIds.push_back(200);

    machine.BindParamCond();

    EXPECT_TRUE(machine.nodeDefTable->nodes.empty());
}

TEST_F(BindingReentry, BindsConditionsThatWereAddedMeanwhile)
{
    TransitionDef* go = FindGo();
    ASSERT_NE(go, nullptr);
    VanishingCondition added(*go);
    onLine = [&]
    {
        go->conditions.resize(100, nullptr);
        go->conditions.push_back(&added);
    };

    machine.BindParamCond();

    EXPECT_EQ(go->conditions.size(), 101u);
}

TEST_F(BindingReentry, AsksNoConditionOfAListThatWasEmptiedMeanwhile)
{
    TransitionDef* go = FindGo();
    ASSERT_NE(go, nullptr);
    VanishingCondition vanishing(*go);
    go->conditions = {&vanishing, &vanishing, nullptr};

    EXPECT_EQ(go->HandleConditions(&machine), 0);
    EXPECT_TRUE(go->conditions.empty());
}

} // namespace
} // namespace vell::test
