// VELL: data-driven hierarchical state machines.
// tests/fuzz/DocumentFuzzer.cpp: any bytes as a document.
#include <tessel/Tessel.h>

#include "tests/fuzz/MachineRun.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vell::fuzz::RunDocument(std::string(reinterpret_cast<const char*>(data), size), nullptr);
    vell::fuzz::Require(Tessel::GetOpenTableCount() == 0, "a deleted machine leaves no table");
    return 0;
}
