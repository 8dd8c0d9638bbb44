// VELL: data-driven hierarchical state machines.
// tests/support/TestAction.h: an action that notes its runs and does what a test says.
#pragma once

#include <vell/Action.h>

#include "tests/support/LogRecorder.h"

#include <functional>
#include <sstream>
#include <string>
#include <utility>

namespace vell::test
{

/// Notes "NAME entry 0", "NAME execution TIME" and "NAME exit 0", and runs a test's functions.
class TestAction : public Action
{
public:
    /// Notes between the lines of the LogRecorder that lives.
    explicit TestAction(std::string actionName) : name(std::move(actionName)), isSilent(false)
    {
    }
    /// Notes in `target`, also "owner NAME" and "delete NAME".
    TestAction(std::string actionName, Lines& target)
        : name(std::move(actionName)), isSilent(false), lines(&target)
    {
    }
    /// Notes nothing; `performance` gets the time and gives the result.
    explicit TestAction(std::function<int(float)> performance) : perform(std::move(performance))
    {
    }
    ~TestAction() override
    {
        Run(onDelete);
        NoteOwn("delete ");
    }
    int Perform(__ActType__ type, float timeStep) override
    {
        static const char* const kinds[] = {"0", "entry", "execution", "exit"};
        std::ostringstream line;
        line << name << " " << kinds[type] << " " << timeStep;
        if (lines != nullptr)
        {
            lines->push_back(line.str());
        }
        else if (!isSilent)
        {
            LogRecorder::Note(line.str());
        }
        // A copy, because the action may be deleted while it runs.
        const std::function<int(float)> performing = perform;
        Run(onPerform);
        return performing ? performing(timeStep) : 1;
    }
    void SetOwner(BaseDef* newOwner) override
    {
        owner = newOwner;
        NoteOwn("owner ");
        Run(onOwner);
    }

    std::string name;
    std::function<void()> onPerform;
    std::function<void()> onOwner;
    std::function<void()> onDelete;
    BaseDef* owner = nullptr;

private:
    /// Takes a copy, because the function may delete the action or be replaced while it runs.
    static void Run(std::function<void()> function)
    {
        if (function)
        {
            function();
        }
    }
    void NoteOwn(const char* what)
    {
        if (lines != nullptr)
        {
            lines->push_back(what + name);
        }
    }

    bool isSilent = true;
    Lines* lines = nullptr; ///< null for the LogRecorder's
    std::function<int(float)> perform;
};

} // namespace vell::test
