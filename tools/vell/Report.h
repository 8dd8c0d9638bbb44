// VELL: data-driven hierarchical state machines.
// tools/vell/Report.h: what a run prints, one line for each thing that happened.
#pragma once

#include "tools/vell/Explain.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace vell
{
class SMState;
} // namespace vell

namespace vell::tool
{

/// A transition that held.
struct Firing
{
    std::string name;
    unsigned int id = 0;
    int priority = 0;
    std::string state; ///< whose transition it is
    unsigned int targetId = 0;
    std::string held;       ///< the condition that holds with what it saw, or "a trigger"
    bool isRefused = false; ///< too weak to start a blip: nothing follows
};

/// The stacks, as paths of names from the bottom.
struct StackReading
{
    std::vector<std::string> main;
    std::vector<std::string> blip;
    bool isBlip = false; ///< the blip's is the one that runs
};

/// What was wrong with a script's instruction, or with the machine.
struct Failure
{
    bool isExpectation = false; ///< one that did not hold
    std::string file;           ///< the script; empty outside of one
    unsigned int line = 0;      ///< counted from 1; 0 outside of a script
    std::string what;
};

/// The totals of a run.
struct Summary
{
    unsigned int held = 0; ///< expectations
    unsigned int failed = 0;
    unsigned int otherErrors = 0;
    unsigned int arenaUsed = 0; ///< bytes
    unsigned int arenaSize = 0;
};

/// Is told what happened, in order. `tick` counts from 1; 0 is the start. This class prints
/// nothing.
class Report
{
public:
    virtual ~Report() = default;

    virtual void Entered(std::uint64_t tick, const std::string& state, unsigned int id);
    virtual void Left(std::uint64_t tick, const std::string& state, unsigned int id);
    virtual void Fired(std::uint64_t tick, const Firing& firing);
    /// A blip of `priority` starts, and replaces another when `isDisplacing`.
    virtual void BlipStarted(std::uint64_t tick, int priority, bool isDisplacing);
    virtual void BlipEnded(std::uint64_t tick);
    virtual void Message(std::uint64_t tick, const std::string& name);
    virtual void Set(std::uint64_t tick, const std::string& name, const std::string& value);
    /// Something that should have happened did not.
    virtual void Failed(std::uint64_t tick, const std::string& what);
    virtual void Explained(std::uint64_t tick, const std::string& state,
                           const std::vector<TransitionReading>& readings);
    virtual void Stack(std::uint64_t tick, const StackReading& stack);
    /// An expectation or an instruction failed. People read it among the errors.
    virtual void Wrong(std::uint64_t tick, const Failure& failure);
    virtual void End(std::uint64_t tick, const Summary& summary);

    /// Tells whether what is reported can no longer be written.
    virtual bool IsLost() const;
};

/// Lines for people, in columns.
std::unique_ptr<Report> MakeTextReport(std::ostream& out, bool hasColor = false);
/// One JSON object per line.
std::unique_ptr<Report> MakeJsonReport(std::ostream& out);

} // namespace vell::tool
