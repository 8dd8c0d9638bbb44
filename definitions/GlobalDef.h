// VELL: data-driven hierarchical state machines.
// definitions/GlobalDef.h: the node whose transitions interrupt the machine.
#pragma once

#include <vell/BaseDef.h>

namespace vell
{

/// The node whose transitions interrupt the machine.
class GlobalDef : public BaseDef
{
public:
    /// The factory: places the definition in the arena, not yet initialised. Null with a log line
    /// when `node` is no object or there is no space.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    int Init(const GenericValue& node, HSMAlloc* alloc) override;
};

} // namespace vell
