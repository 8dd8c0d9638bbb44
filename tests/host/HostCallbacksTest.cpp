// VELL: data-driven hierarchical state machines.
// tests/host/HostCallbacksTest.cpp: what docs/host-guide.md says of calls from callbacks.
#include <vell/vell.h>

#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestAction.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

using Act = std::function<void()>;

/// A machine that shows its main stack.
class ShownMachine : public HSM
{
public:
    explicit ShownMachine(const DocumentBuilder& source) : text(source.Text())
    {
        jsonText = text.c_str();
        Create();
    }
    ~ShownMachine() override
    {
        Uninit();
    }

    Lines Main() const
    {
        Lines names;
        for (const SMState* state : stateStack)
        {
            names.push_back(state->GetDef()->GetName());
        }
        return names;
    }
    void OnEnter(const char* name, Act act)
    {
        FindDef(name)->RegisterEnter(NewAction(std::move(act)));
    }
    void OnExecute(const char* name, Act act)
    {
        FindDef(name)->RegisterExecute(NewAction(std::move(act)));
    }
    IParameterFloatDef& Speed()
    {
        return dynamic_cast<IParameterFloatDef&>(*GetParameterTable()->FindParameter("speed"));
    }

private:
    Action* NewAction(Act act)
    {
        auto* action = new TestAction("", lines);
        action->onPerform = std::move(act);
        return action;
    }

    std::string text;
    Lines lines;
};

/// Stand goes to Walk above a speed of a half; the global node goes to Hit below -10.
DocumentBuilder Document()
{
    return DocumentBuilder()
        .Start(10)
        .Parameter(FloatParameter("speed", 0.0))
        .Nodes({Generic("Stand", 10, {100}), Generic("Walk", 11), Generic("Hit", 12)})
        .Nodes({Generic("Other", 13), Generic("Third", 14)})
        .Node(Transition("Go", 100, 10, 11, {FloatCondition("speed", 3, 0.5)}))
        .Node(Transition("ToHit", 101, 50, 12, {FloatCondition("speed", 5, -10.0)}))
        .GlobalNode(Global("Global", 50, {101}));
}

struct Started
{
    LogRecorder log;
    ShownMachine machine{Document()};

    Started()
    {
        EXPECT_EQ(machine.Init(), 1);
        machine.Start();
    }
};

/// Keeps a parameter at or below 1, at the wrong place.
int Clamp(void* parameter, Tessel::opResult, Tessel::KVTable, const char*)
{
    auto* speed = static_cast<IParameterFloatDef*>(parameter);
    if (speed->GetValue() > 1.0f)
    {
        speed->SetValue(1.0f);
    }
    return 1;
}

} // namespace

TEST(HostCallbacks, AListenerThatClampsItsOwnValueLeavesTheOldOneInTheTree)
{
    Started started;
    const unsigned int id = started.machine.FindParameterByName("speed");
    Tessel::KVTable table =
        TableAt(started.machine.GetKVTable(), "parameterTable/" + std::to_string(id));
    ASSERT_TRUE(static_cast<bool>(table));
    *table->GetValueListener("value") = {&started.machine.Speed(), Clamp};

    started.machine.Speed().SetValue(5.0f);

    EXPECT_EQ(started.machine.Speed().GetValue(), 1.0f);
    EXPECT_EQ(table->GetFloat("value"), 5.0f);
}

TEST(HostCallbacks, AnEnterActionThatEndsAnInterruptionPutsItsStateOnTheMainStack)
{
    Started started;
    started.machine.OnEnter("Hit",
                            [&]
                            {
                                started.machine.RevertToPreviousState();
                            });

    started.machine.Speed().SetValue(-11.0f);
    started.machine.Update(0.1f);

    EXPECT_FALSE(started.machine.IsBlipState());
    EXPECT_EQ(started.machine.Main(), (Lines{"Stand", "Hit"}));
}

TEST(HostCallbacks, WhatAnEnterActionPushesIsBelowItsState)
{
    Started started;
    started.machine.OnEnter("Walk",
                            [&]
                            {
                                started.machine.PushState(13u);
                            });

    started.machine.PushState(11u);

    EXPECT_EQ(started.machine.Main(), (Lines{"Stand", "Other", "Walk"}));
}

TEST(HostCallbacks, AnEnterActionThatPopsTakesTheStateBelow)
{
    Started started;
    started.machine.OnEnter("Walk",
                            [&]
                            {
                                started.machine.PopState();
                            });

    started.machine.PushState(11u);

    EXPECT_EQ(started.machine.Main(), Lines{"Walk"});
}

TEST(HostCallbacks, AnExecuteActionSetsAValueForTheTransitionsOfItsState)
{
    Started started;
    started.machine.OnExecute("Stand",
                              [&]
                              {
                                  started.machine.Speed().SetValue(1.0f);
                              });

    started.machine.Update(0.1f);

    EXPECT_EQ(started.machine.Main(), Lines{"Walk"});
}

TEST(HostCallbacks, WhatAnExecuteActionPushesIsUpdatedFromTheNextTickOn)
{
    Started started;
    int updates = 0;
    started.machine.OnExecute("Stand",
                              [&]
                              {
                                  if (started.machine.Main().size() == 1)
                                  {
                                      started.machine.PushState(13u);
                                  }
                              });
    started.machine.OnExecute("Other",
                              [&]
                              {
                                  ++updates;
                              });

    started.machine.Update(0.1f);
    EXPECT_EQ(updates, 0);
    started.machine.Update(0.1f);
    EXPECT_EQ(updates, 1);
}

TEST(HostCallbacks, AnExecuteActionMayTakeOffItsStateAndNoMore)
{
    for (const bool takesMore : {false, true})
    {
        Started started;
        started.machine.PushState(13u);
        started.machine.PushState(14u);
        started.machine.OnExecute("Third",
                                  [&]
                                  {
                                      started.machine.PopState();
                                      if (takesMore)
                                      {
                                          started.machine.PopState();
                                      }
                                  });
        if (takesMore)
        {
            EXPECT_THROW(started.machine.Update(0.1f), std::out_of_range);
            EXPECT_EQ(started.machine.Main(), Lines{"Stand"});
        }
        else
        {
            started.machine.Update(0.1f);
            EXPECT_EQ(started.machine.Main(), (Lines{"Stand", "Other"}));
        }
    }
}

TEST(HostCallbacks, AnExceptionOfAnActionPassesThroughTheTickAsItIs)
{
    struct Stopped : std::runtime_error
    {
        using std::runtime_error::runtime_error;
    };
    Started started;
    bool stops = true;
    started.machine.OnExecute("Stand",
                              [&]
                              {
                                  if (stops)
                                  {
                                      throw Stopped("by the host");
                                  }
                              });
    started.machine.Speed().SetValue(1.0f);

    EXPECT_THROW(started.machine.Update(0.1f), Stopped);
    EXPECT_EQ(started.machine.Main(), Lines{"Stand"});

    stops = false;
    started.machine.Update(0.1f);
    EXPECT_EQ(started.machine.Main(), Lines{"Walk"});
}

TEST(HostCallbacks, ATransitionOfAStateThatItsActionTookOffIsStillTested)
{
    Started started;
    started.machine.OnExecute("Stand",
                              [&]
                              {
                                  started.machine.PopState();
                              });
    started.machine.Speed().SetValue(1.0f);

    started.machine.Update(0.1f);

    EXPECT_EQ(started.machine.Main(), Lines{"Walk"});
}

} // namespace vell::test
