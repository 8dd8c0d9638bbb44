// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfSources.cpp: the codes of sources, *.hsm.json.
#include "tools/check/Code.h"

namespace vell::check
{

const CodeTable& SourceCodes()
{
    static const CodeTable table = {
        {Code::SourceMember, Severity::Error, "a member that a source cannot have there",
         "A source has fixed members, and each has values of one kind. docs/source-form.md lists "
         "them. A member for the host goes into `members`. Nothing is compiled.",
         "\"Stand\": { \"clip\": \"stand\", \"transitions\": [] }",
         "\"Stand\": { \"clip\": \"stand\", \"go\": [] }"},
        {Code::SourceName, Severity::Error, "a name that a source does not know",
         "A source refers to states and parameters by their names. A transition stays in its "
         "level: it names a state beside its own. To leave a level, give the level the transition; "
         "to enter one, name the level.",
         "\"go\": [{ \"to\": \"Figth\", \"when\": \"sees\" }]",
         "\"go\": [{ \"to\": \"Fight\", \"when\": \"sees\" }]"},
        {Code::SourceCondition, Severity::Error, "a condition that is not one",
         "A condition compares one parameter with a value: `sees`, `not sees`, `distance < 30`, "
         "`distance in 5..10`, `use == 'door'`. There is no `and`: the conditions of a transition "
         "are alternatives.",
         "\"when\": \"sees and distance < 30\"", "\"when\": \"seesNearby\""},
        {Code::SourceTwice, Severity::Error, "two of one name or id in a source",
         "Two states of one level, two parameters, two members of an object, or the ids of two "
         "nodes are the same. Ids come from names, and a state, parameter or node may be given an "
         "`id` of its own.",
         "\"Stand\": { \"id\": 10 }, \"Walk\": { \"id\": 10 }",
         "\"Stand\": { \"id\": 10 }, \"Walk\": { \"id\": 11 }"},
        {Code::SourceFile, Severity::Error, "a file of a source that cannot be read",
         "The file of an `include` or a `from` cannot be read, or contains itself. Its path is "
         "read "
         "from the folder of the file that names it.",
         "\"include\": [\"guard.hsm.json\"]", "\"include\": [\"combat.hsm.json\"]"},
    };
    return table;
}

} // namespace vell::check
