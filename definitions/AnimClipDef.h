// VELL: data-driven hierarchical state machines.
// definitions/AnimClipDef.h: a clip that the animation system is to play while its state is active.
#pragma once

#include <vell/BaseDef.h>

namespace vell
{

/// A clip that the animation system is to play while its state is active.
class AnimClipDef : public BaseDef
{
public:
    /// The factory: places the definition in the arena, not yet initialised. Null with a log line
    /// when `node` is no object or there is no space.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    int Init(const GenericValue& node, HSMAlloc* alloc) override;

    const char* clipName = nullptr;   ///< belongs to the document
    const char* secondaryA = nullptr; ///< belongs to the document
    const char* secondaryB = nullptr; ///< belongs to the document
    unsigned int clipValue = 0;       ///< no member of the document sets it
    bool clipFlag = false;
    float clipScalar = 30.0f; ///< frames a second; no member of the document sets it
};

} // namespace vell
