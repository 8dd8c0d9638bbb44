// VELL: data-driven hierarchical state machines.
// tests/support/HostObjects.cpp: what an action notes of its owner.
#include "tests/support/HostObjects.h"

#include <vell/BaseDef.h>

namespace vell::test
{

void HostAction::SetOwner(BaseDef* owner)
{
    const char* owned = owner == nullptr ? nullptr : owner->GetName();
    lines.push_back(name + " owner " + (owned == nullptr ? "(null)" : owned));
}

} // namespace vell::test
