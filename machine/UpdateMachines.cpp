// VELL: data-driven hierarchical state machines.
// machine/UpdateMachines.cpp: ticking many machines, the next of them fetched meanwhile.
#include <vell/HSM.h>
#include <vell/UpdateMachines.h>

#include "foundation/Prefetch.h"
#include "machine/HSMInternals.h"
#include "parameters/ParameterTable.h"

#include <typeinfo>

namespace vell
{
namespace
{

/// Tells which machines are of a class of HSM. Machines side by side are mostly of one class, so
/// that the last answer serves.
class MachineKind
{
public:
    const HSM* AsHSM(const IHSM& machine)
    {
        const std::type_info* type = &typeid(machine);
        if (type != lastType)
        {
            lastType = type;
            isHSM = dynamic_cast<const HSM*>(&machine) != nullptr;
        }
        return isHSM ? static_cast<const HSM*>(&machine) : nullptr;
    }

private:
    const std::type_info* lastType = nullptr;
    bool isHSM = false;
};

} // namespace

void HSM::Internals::PrefetchTick(const HSM& machine)
{
    machine.internals->idle.Prefetch();
    if (machine.currentStack != nullptr)
    {
        Prefetch(machine.currentStack->data(), kCacheLine);
    }
    if (machine.parameterTable != nullptr)
    {
        machine.parameterTable->Prefetch();
    }
}

void HSM::Internals::PrefetchStates(const HSM& machine)
{
    machine.internals->idle.PrefetchStates();
    if (machine.parameterTable != nullptr)
    {
        machine.parameterTable->PrefetchResetting();
    }
}

// What a tick reads is found in three steps, each from what the one before it has fetched: the
// machine, what it points to, and the states. A fetch takes longer than a tick, so `kDistance`
// machines are updated between two steps of one machine.
void UpdateMachines(IHSM* const* machines, std::size_t count, float timeStep)
{
    constexpr std::size_t kDistance = 3;
    MachineKind kind;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (i + 3 * kDistance < count)
        {
            Prefetch(machines[i + 3 * kDistance], 2 * kCacheLine);
        }
        if (i + 2 * kDistance < count)
        {
            if (const HSM* machine = kind.AsHSM(*machines[i + 2 * kDistance]))
            {
                HSM::Internals::PrefetchTick(*machine);
            }
        }
        if (i + kDistance < count)
        {
            if (const HSM* machine = kind.AsHSM(*machines[i + kDistance]))
            {
                HSM::Internals::PrefetchStates(*machine);
            }
        }
        machines[i]->Update(timeStep);
    }
}

} // namespace vell
