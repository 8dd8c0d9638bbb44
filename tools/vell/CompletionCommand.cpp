// VELL: data-driven hierarchical state machines.
// tools/vell/CompletionCommand.cpp: printing a script that completes words in a shell.
#include "tools/vell/CommandDescription.h"
#include "tools/vell/Commands.h"
#include "tools/vell/Completion.h"
#include "tools/vell/Session.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace vell::tool
{
namespace
{

constexpr const char* kFooter = R"(
`make install` installs the scripts where the shells look for them. To try one:
  bash    source <(vell completion bash)
  zsh     vell completion zsh > FOLDER/_vell, where FOLDER is in $fpath
  fish    vell completion fish | source)";

} // namespace

void AddCompletionCommand(CLI::App& app, Session& session)
{
    const auto shell = std::make_shared<std::string>();
    CLI::App* completion =
        session.AddCommand(app, "completion", "Prints a script that completes the words of vell",
                           [&app, &session, shell]
                           {
                               const CommandDescription program = Describe(app);
                               return session.Write(*shell == "bash"  ? BashCompletion(program)
                                                    : *shell == "zsh" ? ZshCompletion(program)
                                                                      : FishCompletion(program));
                           });
    session.AddChoice(*completion, "SHELL", *shell, "bash, zsh or fish", {"bash", "zsh", "fish"})
        ->required();
    session.AddOutput(*completion);
    completion->footer(kFooter);
}

} // namespace vell::tool
