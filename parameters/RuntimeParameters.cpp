// VELL: data-driven hierarchical state machines.
// parameters/RuntimeParameters.cpp: keeping what is never deleted.
#include "parameters/RuntimeParameters.h"

#include <vell/ParameterDef.h>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <vector>

namespace vell
{
namespace
{

struct Registry
{
    std::mutex mutex;
    std::vector<ParameterDef*> parameters;
};

/// It is never destroyed, so that a machine may still run while static objects are destroyed.
Registry& GetRegistry()
{
    static auto* registry = new Registry;
    return *registry;
}

} // namespace

ParameterDef* RuntimeParameters::Keep(std::unique_ptr<ParameterDef> def)
{
    Registry& registry = GetRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    // Required: a run-time parameter is never deleted. A host may use it after its machine is
    // deleted.
    registry.parameters.push_back(def.get());
    return def.release();
}

void RuntimeParameters::Delete(ParameterDef* def)
{
    {
        Registry& registry = GetRegistry();
        const std::lock_guard<std::mutex> lock(registry.mutex);
        std::vector<ParameterDef*>& all = registry.parameters;
        // It is mostly the last one.
        const auto entry = std::find(all.rbegin(), all.rend(), def);
        if (entry != all.rend())
        {
            all.erase(std::next(entry).base());
        }
    }
    delete def;
}

} // namespace vell
