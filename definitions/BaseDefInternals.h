// VELL: data-driven hierarchical state machines.
// definitions/BaseDefInternals.h: what the library does with a definition and a host does not.
#pragma once

#include <vell/BaseDef.h>

#include "foundation/Revision.h"

namespace vell
{

struct BaseDef::Internals
{
    /// Lets changes of `def` raise `revision` from now on, unless a host may hold the definition
    /// and write to its fields.
    static void Follow(BaseDef& def, Revision* revision);
    /// Tells whether all changes of `def` raise `revision`.
    static bool IsFollowed(const BaseDef& def, const Revision* revision)
    {
        return def.revision.pointer == revision;
    }
    /// Notes that a host gets the address of `def`, whose public fields it may write to at any
    /// time: nothing raises a revision for that, so the definition is never followed again.
    static void HandOut(BaseDef& def);
    /// Raises the revision that `def` follows, if there is one.
    static void CountChange(BaseDef& def);
    /// Gives the list of `def` that begins with `first`, or null.
    static Action** FindList(BaseDef& def, const Action* first);
};

} // namespace vell
