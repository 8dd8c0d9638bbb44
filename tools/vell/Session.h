// VELL: data-driven hierarchical state machines.
// tools/vell/Session.h: one call of the command: its streams, its options, and what commands share.
#pragma once

#include "tools/vell/CommandLine.h"
#include "tools/vell/Runner.h"
#include "tools/vell/Script.h"

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace vell::tool
{

struct GivenDocument;
class ObservedMachine;

/// The values of the options that several commands have.
struct Options
{
    std::string document;
    std::string script;
    std::string color = "auto";
    std::string output; ///< empty for standard output
    std::string log;    ///< empty when the library's log is discarded
    std::string format; ///< empty for the command's default
    std::optional<std::uint64_t> ticks;
    bool noCheck = false;       ///< load the document whatever is wrong with it
    bool showsWarnings = false; ///< of the check
    RunOptions run;
};

/// One call of the command. Each command adds itself with `AddCommand` and the options it needs;
/// its action then does the work with the help of the session.
class Session
{
public:
    /// Does the work of a command and returns an `ExitCode`.
    using Action = std::function<int()>;

    /// The streams must outlive the session.
    explicit Session(const Console& console);

    /// Adds a command to `app`. When it is the one called, `action` runs after the command line was
    /// read, with the library's log discarded or in the file of --log.
    CLI::App* AddCommand(CLI::App& app, const std::string& name, const std::string& description,
                         Action action);
    /// The argument DOCUMENT, and the options --log, --no-check and -W.
    void AddDocument(CLI::App& command);
    /// The option --color.
    void AddColor(CLI::App& command);
    /// An option, or an argument, that takes one of `words`.
    CLI::Option* AddChoice(CLI::App& command, const std::string& name, std::string& value,
                           const std::string& description, const std::vector<std::string>& words);
    void AddFormat(CLI::App& command, const std::string& description,
                   const std::vector<std::string>& formats);
    /// The option -o.
    void AddOutput(CLI::App& command);
    /// The option --after: a script to run first, without output.
    CLI::Option* AddAfter(CLI::App& command);
    /// The options of commands that tick a machine and report it.
    void AddRunOptions(CLI::App& command, const std::string& ticksHelp);

    /// Runs the action of the command that was called.
    int RunAction();

    /// Reads the script of --script or --after. Returns null, with errors, when it has invalid
    /// lines; an empty script when the option was not given.
    std::unique_ptr<Script> LoadScript();
    /// Checks and loads DOCUMENT. Returns `ExitWell`, `ExitUsage` when the file cannot be read, or
    /// `ExitFailed` when it has errors or does not load; both with errors. When it loads and loses
    /// nodes, there is an error too, and the call will exit with 1.
    int LoadMachine(ObservedMachine& machine);
    /// Complains when the machine has no state to start with. For commands that do not start it.
    void CheckStart(const ObservedMachine& machine);
    /// Starts the machine and runs the script without output. Returns `ExitWell`, `ExitUsage` when
    /// the script does not fit the document, or `ExitFailed` when nothing can run or an expectation
    /// failed; both with errors.
    int RunQuietly(ObservedMachine& machine, const Script& script);
    /// Runs the script and the ticks behind it, and returns the exit code.
    int Drive(Runner& runner, const Script& script, std::uint64_t defaultTicks);
    std::unique_ptr<Report> MakeReport();
    /// Writes to standard output or to the file of -o, and returns the exit code.
    int Write(const std::string& text);
    /// Writes an error message, in colour on a terminal. The call goes on, and will exit with 1.
    void Complain(const std::string& text);
    /// Tells whether the words of --explain name something in the document. If not, there are
    /// errors.
    bool CheckExplain(const ObservedMachine& machine);
    /// Shows the first errors and warnings of the library's log that were not shown before.
    void ShowComplaints(const ObservedMachine& machine);

    Options options;
    std::ostream& out;
    std::ostream& errors;
    const bool isOutTerminal;
    const bool isErrorTerminal;

private:
    std::string OverwriteFault() const;
    /// Shows what is wrong with a document. False when that keeps it from being loaded.
    bool IsFit(const GivenDocument& given);
    void ReadExplain();

    Action action;
    std::string explain;             ///< the value of --explain; empty without it
    std::size_t complaintsShown = 0; ///< of the machine
    bool hasComplained = false;      ///< of something that the exit code must tell
};

} // namespace vell::tool
