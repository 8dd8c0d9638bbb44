// VELL: data-driven hierarchical state machines.
// bench/HeapCount.h: the bytes that `new` has given out and not taken back.
#pragma once

namespace vell::bench
{

/// Bytes as the heap charges them, its own bookkeeping included.
struct HeapCount
{
    long long tables; ///< asked for by the key/value tables
    long long others;
};

/// Counts from the start of the process. Only programs that link HeapCount.cpp are counted.
HeapCount CountHeap();

} // namespace vell::bench
