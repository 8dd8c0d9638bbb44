// VELL: data-driven hierarchical state machines.
// definitions/SubstateDef.h: the definition of a substate.
#pragma once

#include <vell/BaseDef.h>

namespace vell
{

/// The definition of a substate: a state with states of its own inside.
class SubstateDef : public BaseDef
{
public:
    /// The factory: places the definition in the arena, not yet initialised. Null with a log line
    /// when `node` is no object or there is no space.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    int Init(const GenericValue& node, HSMAlloc* alloc) override;

    unsigned int enterId = 0; ///< its enter node
    unsigned int exitId = 0;  ///< its exit node
};

} // namespace vell
