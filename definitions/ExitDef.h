// VELL: data-driven hierarchical state machines.
// definitions/ExitDef.h: the exit node of a substate.
#pragma once

#include <vell/BaseDef.h>

namespace vell
{

/// The exit node of a substate.
class ExitDef : public BaseDef
{
public:
    /// The factory: places the definition in the arena, not yet initialised. Null with a log line
    /// when `node` is no object or there is no space.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    int Init(const GenericValue& node, HSMAlloc* alloc) override;

    unsigned int targetId = 0; ///< 0 when the document names none
};

} // namespace vell
