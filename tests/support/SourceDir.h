// VELL: data-driven hierarchical state machines.
// tests/support/SourceDir.h: where this checkout is.
#pragma once

namespace vell::test
{

/// Gives the root folder of the checkout that the tests were built from, without a slash at its
/// end.
const char* SourceDir();

} // namespace vell::test
