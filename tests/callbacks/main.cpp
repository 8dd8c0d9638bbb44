// VELL: data-driven hierarchical state machines.
// tests/callbacks/main.cpp: runs every operation of a host inside of every callback.
#include "tests/callbacks/Pairs.h"

#include <cstdio>
#include <cstring>
#include <set>
#include <string>

namespace
{

/// Fewer mean that the scene has lost callbacks, or the operations what they are run on.
constexpr std::size_t kLeastFired = 25000;

int Usage()
{
    std::fputs("usage: callback_tests [--list] [CALLBACK [OPERATION]]\n"
               "Runs the pairs whose names contain the texts; all without.\n",
               stderr);
    return 2;
}

void List()
{
    for (const vell::callbacks::Callback& callback : vell::callbacks::Callbacks())
    {
        std::printf("callback: %s\n", Title(callback).c_str());
    }
    for (const vell::callbacks::Operation& operation : vell::callbacks::Operations())
    {
        std::printf("operation: %s\n", operation.name);
    }
    for (const vell::callbacks::ImpossiblePair& pair : vell::callbacks::ImpossiblePairs())
    {
        std::printf("cannot work: %s in %s: %s\n",
                    pair.operation == nullptr ? "any operation" : pair.operation,
                    pair.callback == nullptr ? "any callback" : pair.callback, pair.reason);
    }
}

/// Gives a name that two operations have, or null.
const char* FindDoubleName()
{
    std::set<std::string> names;
    for (const vell::callbacks::Operation& operation : vell::callbacks::Operations())
    {
        if (!names.insert(operation.name).second)
        {
            return operation.name;
        }
    }
    return nullptr;
}

} // namespace

int main(int argc, char** argv)
{
    if (const char* name = FindDoubleName())
    {
        std::fprintf(stderr, "two operations have the name \"%s\"\n", name);
        return 1;
    }
    if (argc > 1 && std::strcmp(argv[1], "--list") == 0)
    {
        List();
        return 0;
    }
    if (argc > 3 || (argc > 1 && argv[1][0] == '-'))
    {
        return Usage();
    }
    const vell::callbacks::Outcome outcome =
        vell::callbacks::RunPairs(argc > 1 ? argv[1] : "", argc > 2 ? argv[2] : "");
    for (const std::string& missing : outcome.missing)
    {
        std::fprintf(stderr, "FAILED: not reached, or not in the table: %s\n", missing.c_str());
    }
    std::printf("%zu pairs run, %zu fired, %zu failed; %zu cannot work\n", outcome.run,
                outcome.fired, outcome.failed, outcome.impossible);
    const std::size_t least = argc > 1 ? 1 : kLeastFired;
    if (outcome.fired < least)
    {
        std::fprintf(stderr, "FAILED: fewer than %zu pairs fired\n", least);
    }
    return outcome.failed == 0 && outcome.missing.empty() && outcome.fired >= least ? 0 : 1;
}
