// VELL: data-driven hierarchical state machines.
// tests/fuzz/GrammarFuzzer.cpp: documents of known members, and a tool's writes while they run.
#include <tessel/Tessel.h>

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/GrammarDocument.h"
#include "tests/fuzz/MachineRun.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vell::fuzz::Bytes bytes(data, size);
    const std::string text = vell::fuzz::GrammarDocument(bytes);
    if (std::getenv("VELL_SHOW_DOCUMENT") != nullptr)
    {
        const std::string line = text + "\n";
        vell::fuzz::Require(write(STDOUT_FILENO, line.data(), line.size()) >= 0, "shown");
    }
    vell::fuzz::RunDocument(text, &bytes);
    vell::fuzz::Require(Tessel::GetOpenTableCount() == 0, "a deleted machine leaves no table");
    return 0;
}
