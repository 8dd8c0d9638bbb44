// VELL: data-driven hierarchical state machines.
// states/GlobalState.h: the run-time state of the global node.
#pragma once

#include <vell/SMState.h>

namespace vell
{

class GlobalDef;

/// Never on a stack: its transitions are tested in every tick and start blips. Its actions never
/// run.
class GlobalState : public SMState
{
public:
    /// The factory. Null with a log line when `alloc` is null or has no space.
    static SMState* Create(unsigned int id, HSMAlloc* alloc);

    int Init(BaseDef* newDef) override;
    int Uninit() override;

    GlobalDef* typedDef = nullptr; ///< the definition as its own class; null until Init
};

} // namespace vell
