// VELL: data-driven hierarchical state machines.
// include/vell/NotCopied.h: a pointer that a copy does not take along.
#pragma once

namespace vell
{

/// A pointer that belongs to one object: a copy starts with null, and an assignment changes
/// nothing.
template <class T>
struct NotCopied
{
    NotCopied() = default;
    NotCopied(const NotCopied&)
    {
    }
    NotCopied& operator=(const NotCopied&)
    {
        return *this;
    }

    T* pointer = nullptr;
};

} // namespace vell
