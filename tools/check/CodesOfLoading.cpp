// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfLoading.cpp: the codes of memory and what the library says.
#include "tools/check/Code.h"

namespace vell::check
{

const CodeTable& LoadingCodes()
{
    static const CodeTable table = {
        {Code::MemoryTooSmall, Severity::Error, "too little memory",
         "The arena has a hundred times the bytes of `memory`. All definitions and parameters, and "
         "the states once they run, must fit. What does not fit fails.",
         "\"memory\": 10", "\"memory\": 300"},
        {Code::MemoryTooLarge, Severity::Warning, "far too much memory",
         "The arena has a hundred times the bytes of `memory`, and is allocated at once. More than "
         "ten times of what is needed is a waste; a figure above 42949672 wraps around.",
         "\"memory\": 5000000", "\"memory\": 500"},
        {Code::HostBuilder, Severity::Note, "a builder of the host",
         "A builder that is a number is one that the host registers. Without the host the library "
         "loses the node and all layers, so `vell run` cannot run the document. The check loads a "
         "plain node in its place.",
         "{\"name\": \"Turret\", \"id\": 10, \"builder\": \"1000\"}",
         "{\"name\": \"Turret\", \"id\": 10, \"builder\": \"generic\"}"},
        {Code::LibraryError, Severity::Error, "an error in the library's log",
         "The library logs this error when it loads the document, and no rule of the check "
         "explains it. Please report it.",
         "\"default\": [{\"VARIANT_Data\": \"0\"}]", "\"default\": [{\"VARIANT_Data\": \"0, 0\"}]"},
        {Code::LibraryWarning, Severity::Warning, "a warning in the library's log",
         "The library logs this warning when it loads the document, and no rule of the check "
         "explains it. Please report it.",
         "\"conditions\": [ ]",
         "\"conditions\": [{\"conditionType\": \"bool\", \"parameter\": 2971444007, \"operator\": "
         "\"equal\", \"operand\": [{\"value\": true}]}]"},
    };
    return table;
}

} // namespace vell::check
