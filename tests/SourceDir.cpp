// VELL: data-driven hierarchical state machines.
// tests/SourceDir.cpp: where this checkout is. The one source that is compiled with the folder's
// name, so that ccache can share the others between checkouts.
#include "tests/support/SourceDir.h"

namespace vell::test
{

const char* SourceDir()
{
    return VELL_SOURCE_DIR;
}

} // namespace vell::test
