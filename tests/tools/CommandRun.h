// VELL: data-driven hierarchical state machines.
// tests/tools/CommandRun.h: calling the command from a test, and a document to call it with.
#pragma once

#include "tests/support/DocumentBuilder.h"

#include <gmock/gmock.h>

#include <iostream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace vell::test
{

/// As testing::MatchesRegex, which knows few expressions where the system has none of its own.
MATCHER_P(MatchesPattern, pattern, "")
{
    return std::regex_match(arg, std::regex(pattern));
}

/// What a call of the command did.
struct Outcome
{
    int code = 0;
    std::string out;     ///< without the lines below
    std::string closing; ///< the lines of a run that give its totals, the last ones
    std::string errors;
};

/// Calls the command with these words behind its name. The documents of tests are often wrong on
/// purpose, so a command that runs, draws or prints one gets --no-check. `isTerminal` says that a
/// person watches what it writes to standard error.
Outcome CallVell(const std::vector<std::string>& words, bool isTerminal = false);
/// The same, with nothing but these words.
Outcome CallVellAsIs(const std::vector<std::string>& words, bool isTerminal = false);

/// Runs `builder` by `script`, and gives what happened. The script's name in it is "a.script".
Outcome RunScript(const DocumentBuilder& builder, const std::string& script,
                  const std::vector<std::string>& options = {});

/// A folder of its own for files of a test, which goes with the object.
class Folder
{
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string PathOf(const std::string& name) const;
    /// Writes a file and gives its path.
    std::string Write(const std::string& name, const std::string& text) const;
    std::string Read(const std::string& name) const;

private:
    std::string path;
};

/// Puts a text in the place of standard input for as long as it lives.
class StandardInput
{
public:
    explicit StandardInput(const std::string& text) : in(text), saved(std::cin.rdbuf(in.rdbuf()))
    {
    }
    ~StandardInput()
    {
        std::cin.rdbuf(saved);
        std::cin.clear();
    }
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;

private:
    std::istringstream in;
    std::streambuf* saved;
};

/// A level, Locomotion, of Stand and Walk, over which a hit starts a blip of Hurt that ends at
/// Done. Parameters: speed, halt (a message), hit.
DocumentBuilder Walker();

} // namespace vell::test
