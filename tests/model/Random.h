// VELL: data-driven hierarchical state machines.
// tests/model/Random.h: random numbers that are the same everywhere.
#pragma once

#include <cstddef>

namespace model
{

/// The same numbers from the same seed with every compiler.
class Random
{
public:
    explicit Random(unsigned long long seed) : state(seed)
    {
    }

    unsigned long long Next()
    {
        // SplitMix64, Steele, Lea and Flood 2014.
        state += 0x9e3779b97f4a7c15ull;
        unsigned long long mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9ull;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebull;
        return mixed ^ (mixed >> 31);
    }

    std::size_t Below(std::size_t bound)
    {
        return static_cast<std::size_t>(Next() % bound);
    }

    int Between(int low, int high)
    {
        return low + static_cast<int>(Below(static_cast<std::size_t>(high - low + 1)));
    }

    bool Chance(int percent)
    {
        return Between(1, 100) <= percent;
    }

    template <class List>
    auto Pick(const List& list)
    {
        return list[Below(list.size())];
    }

    template <class T, std::size_t Size>
    T PickFrom(const T (&list)[Size])
    {
        return list[Below(Size)];
    }

private:
    unsigned long long state;
};

} // namespace model
