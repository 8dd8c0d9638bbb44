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
    ExplainOptions explain;        ///< why transitions fire or do not
    bool showProgress = false;     ///< of long runs, on the stream of errors
    bool hasErrorColor = false;    ///< errors are shown in colour
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

    /// Enters the start state. Returns false, with an error, when nothing can run. Without a start
    /// state, a global state runs all the same, and there is an error.
    bool Start();
    /// Runs a script, to its end even when an expectation fails.
    void Run(const Script& script);
    /// Returns false when a tick was aborted, with an error, or when nobody can read the report.
    bool Tick(std::uint64_t count);
    /// Reports the stack, unless the last line shows it as it is now.
    void ReportStack();
    /// Reports the totals. Call it last.
    void ReportEnd();

    /// The number of failed expectations and other errors.
    unsigned int Failures() const;
    /// Tells whether the script has an instruction that the document does not allow, such as one
    /// about a parameter that it does not have.
    bool HasWrongScript() const;

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
    /// Says that there is no such parameter or message, and which there are.
    std::string Unknown(const std::string& name, bool isMessage) const;
    void ShowProgress(std::uint64_t done, std::uint64_t count);
    void Check(const std::string& fault);
    void Fail(const std::string& text, bool isExpectation = false);

    ObservedMachine& machine;
    Report& report;
    std::ostream& errors;
    RunOptions options;
    std::uint64_t tick = 0;
    std::uint64_t stackTick = 0; ///< of the last line that showed the stack
    bool isStackShown = false;   ///< that line still shows it as it is
    bool hasHappened = false;    ///< something was reported in this tick
    bool isBroken = false;       ///< a tick was aborted: no more ticks
    ExplainFilter filter;
    std::string file;          ///< the script that is carried out; empty before and after it
    unsigned int line = 0;     ///< of the instruction that is carried out
    unsigned int held = 0;     ///< expectations
    unsigned int failed = 0;   ///< expectations
    unsigned int failures = 0; ///< failed expectations and other errors
    bool isScriptWrong = false;
};

} // namespace vell::tool
