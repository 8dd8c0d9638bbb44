// VELL: data-driven hierarchical state machines.
// states/ExitState.h: the run-time state of an exit node.
#pragma once

#include <vell/SMState.h>

namespace vell
{

class ExitDef;

/// The end of a substate or a blip. On the blip stack its first update ends the blip; on the main
/// stack it does nothing but log in every tick.
class ExitState : public SMState
{
public:
    /// The factory. Null with a log line when `alloc` is null or has no space.
    static SMState* Create(unsigned int id, HSMAlloc* alloc);

    int Init(BaseDef* newDef) override;
    int Update(HSM* machine, float dt) override;
    int Enter() override;
    int Execute(double dt) override;
    int Exit() override;

    ExitDef* typedDef = nullptr; ///< the definition as its own class; null until Init

private:
    const char* DefName() const;
};

} // namespace vell
