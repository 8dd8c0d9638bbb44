// VELL: data-driven hierarchical state machines.
// tests/site/PlatformWatch.h: what the library asks of the platform libraries.
#pragma once

#include <tessel/Tessel.h>

#include <set>
#include <string>
#include <vector>

namespace vell::test
{

using Lines = std::vector<std::string>;

/// Records the library's calls of the table library and of the logger for as long as it lives, in
/// between the library and our own, and behaves like a site's own where it is told to. One watch
/// lives at a time.
class PlatformWatch
{
public:
    PlatformWatch();
    ~PlatformWatch();
    PlatformWatch(const PlatformWatch&) = delete;
    PlatformWatch& operator=(const PlatformWatch&) = delete;

    /// Every table asks for its lock from now on.
    void NeedLocks();
    /// Every key has one listener record from now on, which each call gives again.
    void KeepOneRecordForEachKey();
    /// No table with the name `name` is created from now on.
    void RefuseTables(const std::string& name);
    /// Every value that is found by its key is of the type `type` from now on.
    void ShowValuesAs(int type);

    /// The calls since the last time, each as "TABLE OPERATION KEY"; the table by its name.
    /// A SetUInt with the flag 0 is "SetUInt without flag".
    Lines Take();
    /// The same, of the tables of a name.
    Lines TakeOf(const std::string& table);
    /// The tables that were given to CloseTable since the last time, by their names: "(null)" for a
    /// null handle, "(closed)" for a table that was closed before.
    Lines TakeClosed();
    /// The lines that were given to LogImpl since the last time, each as "LEVEL LINE".
    Lines TakeLogged();
    /// The numbers of connectors that the vocabulary was asked for since the last time.
    std::vector<int> TakeConnectors();

    /// The numbers of members that the vocabulary was asked for since the process began.
    static std::set<int> MembersAskedFor();
    /// The numbers of members that the vocabulary has names for.
    static std::set<int> MembersListed();
};

} // namespace vell::test
