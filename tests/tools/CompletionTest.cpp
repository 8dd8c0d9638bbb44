// VELL: data-driven hierarchical state machines.
// tests/tools/CompletionTest.cpp: completion in the shells, and the manual page.
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// Runs a line of shell, and gives what it prints.
std::string Shell(const std::string& line)
{
    std::string text;
    std::FILE* pipe = popen(line.c_str(), "r");
    if (pipe == nullptr)
    {
        return "cannot run: " + line;
    }
    std::array<char, 4096> block{};
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), pipe))
    {
        text.append(block.data(), size);
    }
    pclose(pipe);
    return text;
}

bool HasProgram(const std::string& name)
{
    return Shell("command -v " + name) != "";
}

/// What bash offers behind `words`, the last of which is being typed.
std::string CompleteInBash(const std::string& words)
{
    const Folder folder;
    const std::string script = folder.Write("vell.bash", CallVell({"completion", "bash"}).out);
    folder.Write("hero.json", "");
    folder.Write("a hero.json", "");
    const std::string call = folder.Write(
        "call.bash", "cd " + folder.PathOf("") + " && source " + script + "\nCOMP_WORDS=(" + words +
                         ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_vell\n"
                         "printf '%s,' \"${COMPREPLY[@]}\"\n");
    return Shell("bash " + call + " 2>&1");
}

} // namespace

TEST(VellCompletion, OffersInBashWhatMayStandNext)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"vell gr", "graph,"},
        {"vell context ''", "save,restore,"},
        {"vell context -", "--help,"},
        {"vell manual ''", "--help,--output,"},
        {"vell context s", "save,"},
        {"vell run --ex", "--explain,"},
        {"vell run hero.json --format ''", "text,jsonl,"},
        {"vell graph --format m", "mermaid,"},
        {"vell run --format = j", "jsonl,"},
        {"vell run --color a", "auto,always,"},
        {"vell run --ticks ''", ","},
        {"vell run h", "hero.json,"},
        {"vell run a", "a hero.json,"},
        {"vell run hero.json --script h", "hero.json,"},
        {"vell graph hero.json -o h", "hero.json,"},
        {"vell completion ''", "bash,zsh,fish,"},
        {"vell graph hero.json --direction ''", "LR,TB,RL,BT,"},
        {"vell help gr", "graph,"},
        {"vell check --explain VELL13", "VELL130,VELL131,VELL132,VELL133,VELL134,VELL135,VELL136,"},
        {"vell check --explain a", "all,"},
        {"vell check --allow VELL09", "VELL090,VELL091,VELL092,VELL093,VELL094,VELL095,VELL096,"
                                      "VELL097,VELL098,VELL099,"},
    };
    for (const auto& [words, offered] : cases)
    {
        EXPECT_EQ(CompleteInBash(words), offered) << words;
    }
}

TEST(VellCompletion, OffersInFishWhatMayStandNext)
{
    if (!HasProgram("fish"))
    {
        GTEST_SKIP() << "fish is not installed";
    }
    const Folder folder;
    const std::string script = folder.Write("vell.fish", CallVell({"completion", "fish"}).out);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"vell gr", "graph\tDraws the states and transitions\n"},
        {"vell context s", "save\tRuns a script and saves the context\n"},
        {"vell run x.json --format j", "jsonl\n"},
        {"vell run x.json --format v", ""},
        {"vell completion b", "bash\n"}};
    for (const auto& [words, offered] : cases)
    {
        std::string lines = Shell("cd " + folder.PathOf("") + " && HOME=. fish -c 'source " +
                                  script + "; complete -C \"" + words + "\"' 2>&1");
        // fish may repeat the option's description beside its values.
        const std::size_t tab = lines.find('\t');
        if (offered.find('\t') == std::string::npos && tab != std::string::npos)
        {
            lines = lines.substr(0, tab) + "\n";
        }
        EXPECT_EQ(lines, offered) << words;
    }
}

TEST(VellCompletion, IsAScriptThatZshTakes)
{
    if (!HasProgram("zsh"))
    {
        GTEST_SKIP() << "zsh is not installed";
    }
    const Folder folder;
    const std::string script = folder.Write("_vell", CallVell({"completion", "zsh"}).out);

    EXPECT_EQ(Shell("zsh -n " + script + " 2>&1"), "");
}

TEST(VellManual, ShowsEachOptionOfEachCommand)
{
    const std::string page = CallVell({"manual"}).out;
    std::string plain;
    for (const char c : page)
    {
        plain += c == '\\' ? "" : std::string(1, c);
    }
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"run"}, {"graph"}, {"tree"}, {"context", "save"}, {"context", "restore"}})
    {
        std::vector<std::string> line{"help"};
        line.insert(line.end(), words.begin(), words.end());
        std::istringstream help(CallVell(line).out);
        std::size_t options = 0;
        for (std::string entry; std::getline(help, entry);)
        {
            const std::size_t at = entry.find("--");
            if (entry.rfind("  -", 0) == 0 && at != std::string::npos)
            {
                ++options;
                const std::string name = entry.substr(at, entry.find_first_of(" [", at) - at);
                EXPECT_NE(plain.find(name), std::string::npos) << name;
            }
        }
        EXPECT_GE(options, 3u);
    }
}

TEST(VellManual, IsAPageThatTroffTakes)
{
    if (!HasProgram("groff"))
    {
        GTEST_SKIP() << "groff is not installed";
    }
    const Folder folder;
    const std::string page = folder.Write("vell.1", CallVell({"manual"}).out);

    const std::string text = Shell("groff -man -Tascii -ww " + page + " 2>&1");

    EXPECT_EQ(text.find("troff:"), std::string::npos) << text;
    EXPECT_NE(text.find("vell - inspects and runs machine documents"), std::string::npos) << text;
    std::string sections;
    std::istringstream lines(Shell("groff -man -Tascii -P-cbou " + page + " 2>&1"));
    for (std::string line; std::getline(lines, line);)
    {
        EXPECT_LE(line.size(), 80u) << line;
        const bool isSection = !line.empty() && line[0] >= 'A' && line[0] <= 'Z';
        sections += isSection && line.find("VELL") != 0 ? line + "\n" : "";
    }
    EXPECT_EQ(sections, "NAME\nSYNOPSIS\nDESCRIPTION\nCOMMANDS\nOPTIONS\nEXAMPLES\nEXIT STATUS\n");
}

} // namespace vell::test
