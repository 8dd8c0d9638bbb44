// VELL: data-driven hierarchical state machines.
// bench/Machines.h: machines that are ready to be ticked, and where their log goes.
#pragma once

#include <vell/vell.h>

#include "bench/Process.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vell::bench
{

/// Ends a machine in the order that a host keeps.
struct EndMachine
{
    void operator()(IHSM* machine) const;
};

using Machine = std::unique_ptr<IHSM, EndMachine>;

/// Makes a machine, starts it and ticks it until no state is new. Ends the process when the
/// document is refused.
Machine StartMachine(const std::string& document);

/// As `StartMachine`, without the ticks.
Machine SpawnMachine(const std::string& document);

/// As `SpawnMachine`, without the start.
Machine LoadMachine(const std::string& document);

/// Gives the id of the innermost state, 0 when there is none.
unsigned int CurrentId(IHSM& machine);

/// A machine among those that a benchmark ticks.
class CrowdMember
{
public:
    void Update(float timeStep)
    {
        machine->Update(timeStep);
    }

    IHSM& Get() const
    {
        return *machine;
    }

    unsigned int Current() const
    {
        return CurrentId(*machine);
    }

protected:
    explicit CrowdMember(Machine newMachine) : machine(std::move(newMachine))
    {
    }

    Machine machine;
};

/// Sets a float parameter.
void SetParameter(IHSM& machine, const char* name, float value);

/// The lines that were logged while it lived, each with its newline.
class LogRecord
{
public:
    LogRecord();
    ~LogRecord();
    LogRecord(const LogRecord&) = delete;
    LogRecord& operator=(const LogRecord&) = delete;

    const std::vector<std::string>& Lines() const;
};

/// While it lives, only lines of errors are logged.
class QuietLog
{
public:
    QuietLog();
    ~QuietLog();
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;
};

/// Writes each line by a bare call of the system, as the log does. Gives the bytes.
std::size_t WriteBare(const std::vector<std::string>& lines);

/// A listener and a state-switch callback that a host would have; they count.
class Observer : public IBroadcastListener
{
public:
    /// Must live as long as the machine changes states.
    void Watch(IHSM& machine);
    int OnBroadcastEvent(int event, const void* record) override;
    static void OnSwitch(HSM* machine, SMState* previous, SMState* next, float argument);

    unsigned int heard = 0;
};

} // namespace vell::bench
