// VELL: data-driven hierarchical state machines.
// tests/model/QuietStandardError.cpp: standard error, sent nowhere.
#include "tests/model/QuietStandardError.h"

#include "tests/model/Sanitizer.h"
#include "tests/support/System.h"

namespace model
{

QuietStandardError::QuietStandardError() : saved(vell::test::SilenceStandardError())
{
    SendSanitizerReports(saved);
}

QuietStandardError::~QuietStandardError()
{
    SendSanitizerReports(2); // standard error, which is back in a moment
    vell::test::RestoreStandardError(saved);
}

} // namespace model
