// VELL: data-driven hierarchical state machines.
// tests/support/ScriptedAction.h: an action that does what a test says.
#pragma once

#include <vell/Action.h>

#include "tests/support/LogRecorder.h"

#include <functional>
#include <string>
#include <utility>

namespace vell::test
{

/// Runs a test's functions. With a name it also writes a line for each thing that happens to it:
/// "perform A 2 0.500000" with kind and time, "owner A", "delete A".
class ScriptedAction : public Action
{
public:
    ScriptedAction(std::string actionName, Lines& target)
        : name(std::move(actionName)), lines(&target)
    {
    }
    /// Writes no lines; `performance` gets the time and gives the result.
    explicit ScriptedAction(std::function<int(float)> performance) : perform(std::move(performance))
    {
    }
    ~ScriptedAction() override
    {
        if (onDelete)
        {
            onDelete();
        }
        Write("delete " + name);
    }
    int Perform(__ActType__ type, float timeStep) override
    {
        Write("perform " + name + " " + std::to_string(static_cast<int>(type)) + " " +
              std::to_string(timeStep));
        // Copies, because the action may be deleted while it runs.
        const std::function<void()> running = onPerform;
        const std::function<int(float)> performing = perform;
        if (running)
        {
            running();
        }
        return performing ? performing(timeStep) : 1;
    }
    void SetOwner(BaseDef* newOwner) override
    {
        owner = newOwner;
        Write("owner " + name);
        if (onOwner)
        {
            onOwner();
        }
    }

    std::string name;
    std::function<void()> onPerform;
    std::function<void()> onOwner;
    std::function<void()> onDelete;
    BaseDef* owner = nullptr;

private:
    void Write(const std::string& line)
    {
        if (lines != nullptr)
        {
            lines->push_back(line);
        }
    }

    Lines* lines = nullptr; ///< null for an action that writes none
    std::function<int(float)> perform;
};

} // namespace vell::test
