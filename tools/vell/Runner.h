// VELL: data-driven hierarchical state machines.
// tools/vell/Runner.h: driving a machine by a script, and checking what it expects.
#pragma once

#include "tools/vell/ObservedMachine.h"
#include "tools/vell/Report.h"
#include "tools/vell/Script.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace vell::tool
{

struct RunOptions
{
    float timeStep = 1.0f / 60.0f; ///< seconds a tick
    bool explain = false;          ///< report also why transitions did not fire
    bool showProgress = false;     ///< of long runs, on the stream of errors
};

/// Ticks a machine and reports what happens. The machine, the report and the stream must outlive
/// it.
class Runner : private MachineObserver
{
public:
    /// Errors and failed expectations are written to `errors`.
    Runner(ObservedMachine& machine, Report& report, std::ostream& errors,
           const RunOptions& options);
    ~Runner() override;
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    /// Enters the start state. Returns false, with an error, when nothing can run.
    bool Start();
    /// Runs a script, to its end even when an expectation fails.
    void Run(const Script& script);
    /// Returns false, with an error, when a tick was aborted.
    bool Tick(std::uint64_t count);
    /// Reports the stack, unless the last line shows it as it is now.
    void ReportStack();

    /// The number of failed expectations and other errors.
    unsigned int Failures() const;

private:
    void OnEntered(const SMState& state) override;
    void OnLeft(const SMState& state) override;
    void OnTested(const SMState& state, const TransitionDef* fired, bool isRefused) override;
    void OnBlipStarted(int priority, bool isDisplacing) override;
    void OnBlipEnded() override;
    void OnTargetMissed(unsigned int target) override;
    void OnUpdateFailed(const SMState& state) override;

    std::string CarryOut(const Instruction& instruction);
    std::string ExpectStack(const std::string& path) const;
    std::string ExpectParameter(const Instruction& instruction);
    std::string ExpectBlip(bool wanted) const;
    std::string SetParameter(const Instruction& instruction);
    std::string SendMessage(const std::string& name);
    std::string UnknownParameter(const std::string& name) const;
    void ShowProgress(std::uint64_t done, std::uint64_t count);
    void Fail(const std::string& text);

    ObservedMachine& machine;
    Report& report;
    std::ostream& errors;
    RunOptions options;
    std::uint64_t tick = 0;
    std::uint64_t stackTick = 0; ///< of the last line that showed the stack
    bool isStackShown = false;   ///< that line still shows it as it is
    bool hasHappened = false;    ///< something was reported in this tick
    bool isBroken = false;       ///< a tick was aborted: no more ticks
    std::string where;           ///< `file:line: ` of the instruction that is carried out
    unsigned int failures = 0;
};

} // namespace vell::tool
