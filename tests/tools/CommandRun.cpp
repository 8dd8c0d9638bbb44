// VELL: data-driven hierarchical state machines.
// tests/tools/CommandRun.cpp: the call, the folder and the document.
#include "tests/tools/CommandRun.h"

#include <vell/ConditionDef.h>
#include <vell/Types.h>

#include "tests/support/System.h"
#include "tools/vell/CommandLine.h"

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace vell::test
{

namespace
{

std::size_t StartOfTotals(const std::string& text)
{
    for (const char* mark : {"  arena    ", "\"event\":\"end\""})
    {
        const std::size_t at = text.rfind(mark);
        if (at != std::string::npos)
        {
            return text.rfind('\n', at) + 1;
        }
    }
    return text.size();
}

} // namespace

Outcome CallVell(const std::vector<std::string>& words, bool isTerminal)
{
    const std::set<std::string> loading{"run", "graph", "tree", "stats", "save", "restore"};
    const std::size_t at = !words.empty() && words[0] == "context" ? 1 : 0;
    std::vector<std::string> all = words;
    if (words.size() > at + 1 && loading.count(words[at]) != 0)
    {
        all.insert(all.begin() + static_cast<std::ptrdiff_t>(at) + 1, "--no-check");
    }
    return CallVellAsIs(all, isTerminal);
}

Outcome CallVellAsIs(const std::vector<std::string>& words, bool isTerminal)
{
    std::vector<const char*> arguments{"vell"};
    for (const std::string& word : words)
    {
        arguments.push_back(word.c_str());
    }
    std::ostringstream out;
    std::ostringstream errors;
    Outcome outcome;
    tool::Console console{out, errors};
    console.isErrorTerminal = isTerminal;
    outcome.code =
        tool::RunCommandLine(static_cast<int>(arguments.size()), arguments.data(), console);
    outcome.out = out.str();
    const std::size_t totals = StartOfTotals(outcome.out);
    outcome.closing = outcome.out.substr(totals);
    outcome.out.erase(totals);
    outcome.errors = errors.str();
    return outcome;
}

Outcome RunScript(const DocumentBuilder& builder, const std::string& script,
                  const std::vector<std::string>& options)
{
    const Folder folder;
    std::vector<std::string> words{"run", folder.Write("a.json", builder.Text()), "--script",
                                   folder.Write("a.script", script)};
    words.insert(words.end(), options.begin(), options.end());
    Outcome outcome = CallVell(words);
    const std::string path = folder.PathOf("");
    for (std::size_t at = 0; (at = outcome.errors.find(path)) != std::string::npos;)
    {
        outcome.errors.erase(at, path.size());
    }
    return outcome;
}

Folder::Folder() : path(MakeTemporaryFolder())
{
}

Folder::~Folder()
{
    if (!path.empty())
    {
        std::filesystem::remove_all(std::filesystem::u8path(path));
    }
}

std::string Folder::PathOf(const std::string& name) const
{
    return path + "/" + name;
}

std::string Folder::Write(const std::string& name, const std::string& text) const
{
    std::ofstream(std::filesystem::u8path(PathOf(name)), std::ios::binary) << text;
    return PathOf(name);
}

std::string Folder::Read(const std::string& name) const
{
    std::ostringstream text;
    text << std::ifstream(std::filesystem::u8path(PathOf(name)), std::ios::binary).rdbuf();
    return text.str();
}

DocumentBuilder Walker()
{
    DocumentBuilder builder;
    builder.Start(10)
        .Parameter(FloatParameter("speed", 0.0))
        .Parameter(MessageParameter("halt", "now"))
        .Parameter(BoolParameter("hit", false))
        .Node(Substate("Locomotion", 10, 20, 21))
        .Node(Enter("In", 20, 11, 10))
        .Node(Exit("Out", 21, 10))
        .Node(Generic("Stand", 11, {100}, 10))
        .Node(Generic("Walk", 12, {101, 102}, 10))
        .Node(Transition("ToWalk", 100, 11, 12, {FloatCondition("speed", EvaluateGreater, 1.5)}))
        .Node(Transition(
                  "ToStand", 101, 12, 11,
                  {FloatCondition("speed", EvaluateLess, 0.5), MessageCondition("halt", "now")})
                  .Set(JSON_TransitionPriority, 3))
        .Node(Transition("ToNowhere", 102, 12, 99, {FloatCondition("speed", EvaluateGreater, 0.0)})
                  .Set(JSON_TransitionPriority, 1)
                  .Set(JSON_TransitionDisabled, true))
        .Node(Generic("Hurt", 51, {151}))
        .Node(Exit("Done", 52))
        .Node(Transition("TakeHit", 150, 50, 51, {BoolCondition("hit", true)})
                  .Set(JSON_TransitionPriority, 20))
        .Node(Transition("Healed", 151, 51, 52, {BoolCondition("hit", false)}))
        .GlobalNode(Global("Reactions", 50, {150}));
    return builder;
}

} // namespace vell::test
