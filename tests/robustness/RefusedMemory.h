// VELL: data-driven hierarchical state machines.
// tests/robustness/RefusedMemory.h: machines whose arena or heap runs out.
#pragma once

#include <vell/HSM.h>

#include <cstddef>
#include <string>

namespace vell::test
{

class HeapWatch;

/// A machine whose arena is created again, with a size of the test's own, before anything is in it.
class CrampedMachine : public HSM
{
public:
    CrampedMachine(const std::string& text, unsigned int arenaSize) : size(arenaSize)
    {
        jsonText = text.c_str();
    }
    unsigned int Used() const
    {
        return alloc.used;
    }

protected:
    void RegisterBuilders() override
    {
        HSM::RegisterBuilders();
        if (size != 0)
        {
            alloc.Reserve(size);
        }
        else
        {
            alloc.Release();
        }
    }

private:
    unsigned int size;
};

/// More than any test's document needs.
constexpr unsigned int kRoomyArena = 1000000;

/// Brings every state of WholeDocument onto a stack: a level, a blip and its end.
void RunThrough(IHSM& machine);

/// What became of one machine.
struct Fate
{
    int created = 0;
    int initialised = 0;
    bool threw = false;
    bool refused = false;
};

/// A whole life in which the block after `count` others is refused.
Fate LiveWithout(const std::string& text, HeapWatch& heap, std::size_t count);

/// The blocks that making a machine takes before the parser begins, and those that parsing takes.
struct ParserBlocks
{
    std::size_t before;
    std::size_t count;
};

ParserBlocks CountParserBlocks(const std::string& text);

} // namespace vell::test
