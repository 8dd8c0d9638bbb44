// VELL: data-driven hierarchical state machines.
// tests/model/LibraryMachine.h: the library's machine under a case, as the host sees it.
#pragma once

#include "tests/model/Observed.h"

#include <memory>

namespace model
{

/// Runs the library's machine. One lives at a time: the log, the callback and the triggers know
/// their machine by a process-wide pointer.
class LibraryMachine
{
public:
    explicit LibraryMachine(const Case& modelCase);
    ~LibraryMachine();
    LibraryMachine(const LibraryMachine&) = delete;
    LibraryMachine& operator=(const LibraryMachine&) = delete;

    bool IsLoaded() const;
    Step Apply(const Input& input);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace model
