// VELL: data-driven hierarchical state machines.
// definitions/ConnectorDef.h: an entering or exiting connector; no state runs it.
#pragma once

#include <vell/BaseDef.h>

namespace vell
{

/// An entering or exiting connector; no state runs it.
class ConnectorDef : public BaseDef
{
public:
    /// The factory: places the definition in the arena, not yet initialised. Null with a log line
    /// when `node` is no object or there is no space.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    int Init(const GenericValue& node, HSMAlloc* alloc) override;

    unsigned int connectorKind = 0; ///< 1 entering, 2 exiting
};

} // namespace vell
