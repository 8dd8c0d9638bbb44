// VELL: data-driven hierarchical state machines.
// parameters/RuntimeParameters.h: the parameters created at run time, of the whole process.
#pragma once

#include <memory>

namespace vell
{

class ParameterDef;

/// The one list of all parameters that were created while a machine ran. They are never deleted, so
/// that a host's pointer stays valid; the list keeps them reachable, which leak checkers ask for.
/// Machines of several threads may use it at the same time.
class RuntimeParameters
{
public:
    RuntimeParameters() = delete;

    /// Puts a parameter on the list and gives it. Deletes it when there is no memory for that, and
    /// throws.
    static ParameterDef* Keep(std::unique_ptr<ParameterDef> def);
    /// Takes `def`, which was refused, off the list and deletes it.
    static void Delete(ParameterDef* def);
};

} // namespace vell
