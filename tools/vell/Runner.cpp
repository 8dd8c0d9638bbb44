// VELL: data-driven hierarchical state machines.
// tools/vell/Runner.cpp: instructions, expectations and the reporting of ticks.
#include "tools/vell/Runner.h"

#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/TransitionDef.h>

#include "definitions/NodeDefTable.h"
#include "tools/vell/Color.h"
#include "tools/vell/ParameterText.h"
#include "tools/vell/Suggestion.h"

#include <ostream>

namespace vell::tool
{
namespace
{

/// Shorter runs show no progress.
constexpr std::uint64_t kLongRun = 1000000;
constexpr std::uint64_t kProgressStep = 100000;

std::vector<std::string> Names(const std::vector<SMState*>& stack)
{
    std::vector<std::string> names;
    names.reserve(stack.size());
    for (const SMState* state : stack)
    {
        names.push_back(state == nullptr ? "?" : NameOf(*state));
    }
    return names;
}

bool IsExpectation(Operation operation)
{
    return operation == Operation::ExpectStack || operation == Operation::ExpectParam ||
           operation == Operation::ExpectBlip;
}

std::string OrDash(const std::string& path)
{
    return path.empty() ? "-" : path;
}

} // namespace

Runner::Runner(ObservedMachine& newMachine, Report& newReport, std::ostream& newErrors,
               const RunOptions& newOptions)
    : machine(newMachine),
      report(newReport),
      errors(newErrors),
      options(newOptions),
      filter(newOptions.explain)
{
    machine.SetObserver(this);
}

Runner::~Runner()
{
    machine.SetObserver(nullptr);
}

bool Runner::Start()
{
    const std::string fault = machine.StartRunning();
    if (!fault.empty())
    {
        Fail(fault);
    }
    if (!machine.CanRun())
    {
        return false;
    }
    ReportStack();
    return true;
}

void Runner::Run(const Script& script)
{
    for (const Instruction& instruction : script.instructions)
    {
        file = script.file;
        line = instruction.line;
        const std::string fault = CarryOut(instruction);
        if (IsExpectation(instruction.operation))
        {
            Check(fault);
        }
        else if (!fault.empty())
        {
            isScriptWrong = true;
            Fail(fault);
        }
        if (isBroken)
        {
            break;
        }
    }
    file.clear();
}

bool Runner::Tick(std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count && !isBroken; ++i)
    {
        ++tick;
        hasHappened = false;
        const std::string fault = machine.Tick(options.timeStep);
        if (hasHappened || !fault.empty())
        {
            ReportStack();
        }
        if (!fault.empty())
        {
            isBroken = true;
            Fail("tick " + std::to_string(tick) + ": " + fault);
        }
        isBroken = isBroken || report.IsLost();
        if (options.showProgress && count >= kLongRun && (i + 1) % kProgressStep == 0)
        {
            ShowProgress(i + 1, count);
        }
    }
    return !isBroken;
}

void Runner::ShowProgress(std::uint64_t done, std::uint64_t count)
{
    errors << '\r' << done << " of " << count << " ticks"
           << (done + kProgressStep > count ? "\r\x1b[K" : "") << std::flush;
}

void Runner::ReportStack()
{
    if (isStackShown && stackTick == tick)
    {
        return;
    }
    StackReading stack;
    stack.main = Names(machine.MainStack());
    stack.blip = Names(machine.BlipStack());
    stack.isBlip = machine.IsBlipState();
    report.Stack(tick, stack);
    stackTick = tick;
    isStackShown = true;
}

void Runner::ReportEnd()
{
    Summary summary;
    summary.held = held;
    summary.failed = failed;
    summary.otherErrors = failures - failed;
    summary.arenaUsed = machine.ArenaUsed();
    summary.arenaSize = machine.ArenaSize();
    report.End(tick, summary);
}

unsigned int Runner::Failures() const
{
    return failures;
}

bool Runner::HasWrongScript() const
{
    return isScriptWrong;
}

void Runner::OnEntered(const SMState& state)
{
    report.Entered(tick, NameOf(state), state.GetID());
    hasHappened = true;
    isStackShown = false;
}

void Runner::OnLeft(const SMState& state)
{
    report.Left(tick, NameOf(state), state.GetID());
    hasHappened = true;
    isStackShown = false;
}

void Runner::OnTested(const SMState& state, const TransitionDef* fired, bool isRefused)
{
    if (options.explain.isOn)
    {
        std::vector<TransitionReading> readings = ExplainState(
            state, fired, isRefused, machine.BlipPriority(), machine.GetParameterTable());
        if (filter.Select(tick, state, readings))
        {
            report.Explained(tick, NameOf(state), readings);
            hasHappened = true;
        }
    }
    if (fired == nullptr)
    {
        return;
    }
    Firing firing;
    auto& transition = const_cast<TransitionDef&>(*fired);
    firing.name = NameOf(transition);
    firing.id = transition.GetID();
    firing.priority = transition.priority;
    firing.state = NameOf(state);
    firing.targetId = transition.targetID;
    firing.held = HeldText(transition, machine.GetParameterTable());
    firing.isRefused = isRefused;
    report.Fired(tick, firing);
    hasHappened = true;
}

void Runner::OnBlipStarted(int priority, bool isDisplacing)
{
    report.BlipStarted(tick, priority, isDisplacing);
    isStackShown = false;
}

void Runner::OnBlipEnded()
{
    report.BlipEnded(tick);
    isStackShown = false;
}

void Runner::OnTargetMissed(unsigned int target)
{
    BaseDef* def = machine.Nodes() == nullptr ? nullptr : machine.Nodes()->Find(target);
    report.Failed(tick,
                  def == nullptr
                      ? "the target does not exist: no node has the id " + std::to_string(target)
                      : "the target " + NameOf(*def) + " (" + std::to_string(target) +
                            ") cannot be entered" + machine.ArenaHint());
    hasHappened = true;
}

void Runner::OnUpdateFailed(const SMState& state)
{
    report.Failed(tick, NameOf(state) + " could not be updated");
    hasHappened = true;
}

std::string Runner::CarryOut(const Instruction& instruction)
{
    switch (instruction.operation)
    {
    case Operation::Tick:
        Tick(instruction.count);
        return "";
    case Operation::Set:
        return SetParameter(instruction);
    case Operation::Message:
        return SendMessage(instruction.name);
    case Operation::ExpectStack:
        return ExpectStack(instruction.value);
    case Operation::ExpectParam:
        return ExpectParameter(instruction);
    case Operation::ExpectBlip:
        return ExpectBlip(instruction.flag);
    }
    return "";
}

std::string Runner::ExpectStack(const std::string& path) const
{
    const std::string actual = machine.StackPath();
    return actual == path ? "" : "expected stack " + OrDash(path) + ", but it is " + OrDash(actual);
}

std::string Runner::ExpectParameter(const Instruction& instruction)
{
    ParameterDef* parameter = FindParameter(machine.GetParameterTable(), instruction.name);
    if (parameter == nullptr)
    {
        isScriptWrong = true;
        return Unknown(instruction.name, false);
    }
    std::string fault;
    const bool isEqual = ValueEquals(*parameter, instruction.value, &fault);
    isScriptWrong = isScriptWrong || !fault.empty();
    if (isEqual || !fault.empty())
    {
        return fault;
    }
    return "expected param " + instruction.name + " " + instruction.value + ", but it is " +
           ValueText(*parameter);
}

std::string Runner::ExpectBlip(bool wanted) const
{
    if (machine.IsBlipState() == wanted)
    {
        return "";
    }
    return wanted ? "expected a blip, but none is running" : "expected no blip, but one is running";
}

std::string Runner::SetParameter(const Instruction& instruction)
{
    ParameterDef* parameter = FindParameter(machine.GetParameterTable(), instruction.name);
    if (parameter == nullptr)
    {
        return Unknown(instruction.name, false);
    }
    std::string fault = SetValueFromText(*parameter, instruction.value);
    if (fault.empty())
    {
        report.Set(tick, instruction.name, ValueText(*parameter));
    }
    return fault;
}

std::string Runner::SendMessage(const std::string& name)
{
    ParameterDef* parameter = FindParameter(machine.GetParameterTable(), name);
    if (parameter == nullptr)
    {
        return Unknown(name, true);
    }
    if (dynamic_cast<ParameterMessageDef*>(parameter) == nullptr)
    {
        return "'" + name + "' is not a message; use: set " + name + " VALUE";
    }
    machine.BroadcastMessage(name.c_str());
    report.Message(tick, name);
    return "";
}

std::string Runner::Unknown(const std::string& name, bool isMessage) const
{
    IParameterTable* table = machine.GetParameterTable();
    std::vector<std::string> known;
    const int count = table == nullptr ? 0 : table->GetParameterCount();
    for (int i = 0; i < count; ++i)
    {
        const unsigned int id = table->GetParameterIDByIndex(static_cast<unsigned int>(i));
        const std::string candidate = table->GetParameterName(id);
        if (!isMessage ||
            dynamic_cast<ParameterMessageDef*>(FindParameter(table, candidate)) != nullptr)
        {
            known.push_back(candidate);
        }
    }
    const std::string hint = DidYouMean(name, known);
    return std::string("the document has no ") + (isMessage ? "message '" : "parameter '") + name +
           "'" +
           (!hint.empty()   ? hint
            : known.empty() ? "; it has none"
                            : "; expected " + ListOfWords(known));
}

void Runner::Check(const std::string& fault)
{
    if (fault.empty())
    {
        ++held;
        return;
    }
    ++failed;
    Fail(fault, true);
}

void Runner::Fail(const std::string& text, bool isExpectation)
{
    ++failures;
    Failure failure;
    failure.isExpectation = isExpectation;
    failure.file = file;
    failure.line = file.empty() ? 0 : line;
    failure.what = text;
    report.Wrong(tick, failure);
    const std::string place = file.empty() ? "" : file + ":" + std::to_string(line) + ": ";
    errors << Painted(options.hasErrorColor, Color::Red, place + text) + "\n";
}

} // namespace vell::tool
