// VELL: data-driven hierarchical state machines.
// tests/callbacks/Pairs.cpp: a process for each callback, which builds the scene up to it, and
// splits off one for each operation.
#include "tests/callbacks/Pairs.h"

#include "tests/callbacks/Process.h"
#include "tests/callbacks/Scene.h"

#include <algorithm>
#include <map>
#include <set>

namespace vell::callbacks
{
namespace
{

/// What a callback's process knows. `step` is the one in which the callback is reached; the steps
/// before it are run once, for all operations.
struct Plan
{
    int step = -1;
};

/// What a pair's process tells, in shared memory.
struct PairNote
{
    bool isRun;
    bool hasFired;
    bool hasFailed;
};

/// The callback whose call is waited for, in a process that runs one pair or prepares them.
struct Wait
{
    const Callback* callback = nullptr;
    const Operation* operation = nullptr; ///< null while the scene is prepared
    PairNote* note = nullptr;
    int calls = 0;
};

Wait waiting;
std::map<std::string, int> callCounts;
Plan* plans = nullptr;
int currentStep = 0;

void RunOperation(const std::string& name, const Hand& hand)
{
    if (name != waiting.callback->name || ++waiting.calls != waiting.callback->call ||
        waiting.operation == nullptr)
    {
        return;
    }
    Hand own = hand;
    waiting.note->hasFired = true;
    waiting.note->hasFired = waiting.operation->run(own);
}

void NoteCall(const std::string& name, const Hand&)
{
    const int call = ++callCounts[name];
    for (std::size_t i = 0; i < Callbacks().size(); ++i)
    {
        if (name == Callbacks()[i].name && call == Callbacks()[i].call)
        {
            plans[i].step = currentStep;
        }
    }
}

/// Writes into `unlisted` the first name that the scene reaches and no entry has.
void Survey(char* unlisted, std::size_t room)
{
    Cast cast;
    SetWatcher(&NoteCall);
    for (std::size_t i = 0; i < Steps().size(); ++i)
    {
        currentStep = static_cast<int>(i);
        RunSteps(cast, i, i + 1);
    }
    for (const auto& entry : callCounts)
    {
        const bool isListed = std::any_of(Callbacks().begin(), Callbacks().end(),
                                          [&entry](const Callback& callback)
                                          {
                                              return entry.first == callback.name;
                                          });
        if (!isListed)
        {
            entry.first.copy(unlisted, room - 1);
        }
    }
}

/// The rest of the scene, with the operation in it, and what has to hold after it.
void PlayPair(Cast* cast, std::size_t first, const Operation& operation, PairNote* note)
{
    waiting.operation = &operation;
    waiting.note = note;
    RunSteps(*cast, first, Steps().size());
    const std::size_t actions = LivingActions().size();
    delete cast;
    const unsigned int tables = Tessel::GetOpenTableCount();
    // What is put on or created while the machine goes is nobody's: its place may be gone already.
    const bool mayLeave = operation.leaves || first >= FirstStepOfTheEnd();
    if (!mayLeave && (actions != 0 || tables != 0))
    {
        FailProcess(std::to_string(actions) + " actions and " + std::to_string(tables) +
                    " tables are left");
    }
    if (HasLeaked())
    {
        FailProcess("memory is left");
    }
}

void RunOperations(const Callback& callback, int step, PairNote* notes, const std::string& part)
{
    Report report;
    // Never ended: the processes of the pairs end it, each for itself.
    auto* cast = new Cast;
    const auto first = static_cast<std::size_t>(step);
    waiting.callback = &callback;
    SetWatcher(&RunOperation);
    RunSteps(*cast, 0, first);
    for (std::size_t i = 0; i < Operations().size(); ++i)
    {
        const Operation& operation = Operations()[i];
        if (std::string(operation.name).find(part) == std::string::npos ||
            FindImpossible(callback.name, operation.name) != nullptr)
        {
            continue;
        }
        notes[i].isRun = true;
        const auto play = [&]
        {
            PlayPair(cast, first, operation, &notes[i]);
        };
        const std::string end = RunInProcess(report, play);
        if (!end.empty())
        {
            notes[i].hasFailed = true;
            report.Tell("FAILED: \"" + std::string(operation.name) + "\" in \"" + Title(callback) +
                        "\": " + end);
        }
    }
}

std::size_t CountImpossible(const Callback& callback, const std::string& part)
{
    std::size_t count = 0;
    for (const Operation& operation : Operations())
    {
        if (std::string(operation.name).find(part) != std::string::npos &&
            FindImpossible(callback.name, operation.name) != nullptr)
        {
            ++count;
        }
    }
    return count;
}

} // namespace

std::string Title(const Callback& callback)
{
    return callback.call == 1 ? callback.name
                              : callback.name + (", call " + std::to_string(callback.call));
}

Outcome RunPairs(const std::string& callbackPart, const std::string& operationPart)
{
    Outcome outcome;
    constexpr std::size_t kNameRoom = 200;
    const std::size_t callbackCount = Callbacks().size();
    const std::size_t operationCount = Operations().size();
    plans = MakeShared<Plan>(callbackCount);
    auto* notes = MakeShared<PairNote>(callbackCount * operationCount);
    char* unlisted = MakeShared<char>(kNameRoom);
    Report report;
    const std::string end = RunInProcess(report,
                                         [&]
                                         {
                                             Survey(unlisted, kNameRoom);
                                         });
    if (!end.empty())
    {
        report.Tell("FAILED: the scene by itself: " + end);
        outcome.missing.push_back("the whole scene");
        return outcome;
    }
    if (unlisted[0] != '\0')
    {
        outcome.missing.emplace_back(unlisted);
    }
    SideBySide servers(2);
    for (std::size_t i = 0; i < callbackCount; ++i)
    {
        const Callback& callback = Callbacks()[i];
        if (Title(callback).find(callbackPart) == std::string::npos)
        {
            continue;
        }
        if (plans[i].step < 0)
        {
            outcome.missing.push_back(Title(callback));
            continue;
        }
        outcome.impossible += CountImpossible(callback, operationPart);
        servers.Start(
            [&]
            {
                RunOperations(callback, plans[i].step, notes + i * operationCount, operationPart);
            });
    }
    if (servers.Wait() != 0)
    {
        outcome.missing.emplace_back("a callback whose process failed");
    }
    for (std::size_t i = 0; i < callbackCount * operationCount; ++i)
    {
        outcome.run += notes[i].isRun ? 1 : 0;
        outcome.fired += notes[i].hasFired ? 1 : 0;
        outcome.failed += notes[i].hasFailed ? 1 : 0;
    }
    return outcome;
}

} // namespace vell::callbacks
