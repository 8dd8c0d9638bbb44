// VELL: data-driven hierarchical state machines.
// tests/model/QuietStandardError.cpp: standard error, sent nowhere.
#include "tests/model/QuietStandardError.h"

#include "tests/support/Sanitizer.h"
#include "tests/support/System.h"

namespace model
{

QuietStandardError::QuietStandardError() : saved(vell::test::SilenceStandardError())
{
    vell::test::SendSanitizerReports(saved);
}

QuietStandardError::~QuietStandardError()
{
    vell::test::SendSanitizerReports(2); // standard error, which is back in a moment
    vell::test::RestoreStandardError(saved);
}

} // namespace model
