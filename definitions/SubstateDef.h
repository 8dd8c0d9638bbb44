// VELL: data-driven hierarchical state machines.
// definitions/SubstateDef.h: a node that holds a nested level.
#pragma once

#include <vell/BaseDef.h>

namespace vell
{

/// A node that holds a nested level.
class SubstateDef : public BaseDef
{
public:
    /// The factory: places the definition in the arena, not yet initialised. Null with a log line
    /// when `node` is no object or there is no room.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    int Init(const GenericValue& node, HSMAlloc* alloc) override;

    unsigned int enterId = 0; ///< the level's EnterDef
    unsigned int exitId = 0;  ///< the level's ExitDef
};

} // namespace vell
