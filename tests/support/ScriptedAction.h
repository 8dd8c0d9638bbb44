// VELL: data-driven hierarchical state machines.
// tests/support/ScriptedAction.h: an action that does what a test says.
#pragma once

#include "tests/support/LogRecorder.h"

#include <vell/Action.h>

#include <functional>
#include <string>
#include <utility>

namespace vell::test
{

/// Runs a test's functions, and writes a line for each thing that happens to it: "perform A 2
/// 0.500000" with kind and time, "owner A", "delete A".
class ScriptedAction : public Action
{
public:
    ScriptedAction(std::string actionName, Lines& target)
        : name(std::move(actionName)), lines(target)
    {
    }
    ~ScriptedAction() override
    {
        lines.push_back("delete " + name);
    }
    int Perform(__ActType__ type, float timeStep) override
    {
        lines.push_back("perform " + name + " " + std::to_string(static_cast<int>(type)) + " " +
                        std::to_string(timeStep));
        // A copy, because the action may be deleted while it runs.
        const std::function<void()> running = onPerform;
        if (running)
        {
            running();
        }
        return 1;
    }
    void SetOwner(BaseDef* newOwner) override
    {
        owner = newOwner;
        lines.push_back("owner " + name);
        if (onOwner)
        {
            onOwner();
        }
    }

    std::string name;
    std::function<void()> onPerform;
    std::function<void()> onOwner;
    BaseDef* owner = nullptr;

private:
    Lines& lines;
};

} // namespace vell::test
