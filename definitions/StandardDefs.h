// VELL: data-driven hierarchical state machines.
// definitions/StandardDefs.h: the library's own factories of definitions.
#pragma once

#include <vell/Callbacks.h>
#include <vell/Types.h>

namespace vell
{

/// Which factory builds the nodes of a builder number.
struct StandardDef
{
    __DURM_BUILDERS__ builder;
    NodeDefFactory create;
};

struct StandardDefs
{
    const StandardDef* begin;
    const StandardDef* end;
};

/// Gives the ten standard factories. Some of them make classes of folders above this one, so
/// machine/StandardDefs.cpp lists them.
StandardDefs GetStandardDefs();

} // namespace vell
