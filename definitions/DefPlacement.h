// VELL: data-driven hierarchical state machines.
// definitions/DefPlacement.h: how a factory places a definition in the arena.
#pragma once

#include <vell/BaseDef.h>
#include <vell/HSMAlloc.h>

namespace vell
{

/// Places a T in the arena and gives it its kind and class. Null when there is no arena or no
/// space.
template <class T>
T* PlaceDef(HSMAlloc* alloc, eHSMDefTypes type, eHSMDefTypes classBit)
{
    T* def = alloc == nullptr ? nullptr : alloc->New<T>();
    if (def != nullptr)
    {
        def->SetType(type);
        def->SetFlags(def->GetFlags() | static_cast<unsigned int>(classBit));
    }
    return def;
}

} // namespace vell
