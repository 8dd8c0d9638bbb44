// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfWords.cpp: the codes of unknown words.
#include "tools/check/Code.h"
#include "tools/check/MemberTable.h"

#include <string>
#include <string_view>

namespace vell::check
{

namespace
{

/// Explains an unknown input, with all that there are.
std::string ExplainInputs()
{
    std::string text = "The library binds the parameter to the input 0, which is none. The inputs "
                       "are";
    const char* separator = " ";
    for (const std::string_view word : WordsOf(Words::Inputs))
    {
        text += separator + ("`" + std::string(word) + "`");
        separator = ", ";
    }
    return text + ".";
}

} // namespace

const CodeTable& WordCodes()
{
    static const std::string inputs = ExplainInputs();
    static const CodeTable table = {
        {Code::UnknownBuilder, Severity::Error, "unknown builder",
         "A node with an unknown builder cannot be created, and all nodes that were read so far "
         "are dropped with it: "
         "there is nothing to run. A builder that the host registers is written as its number: "
         "`\"1000\"`.",
         "\"builder\": \"state\"", "\"builder\": \"generic\""},
        {Code::UnknownOperator, Severity::Error, "unknown operator",
         "An integer or float condition with an unknown operator never holds. Bools and messages "
         "are compared for "
         "equality whatever the operator is.",
         "\"operator\": \"lessThan\"", "\"operator\": \"less\""},
        {Code::UnknownParameterType, Severity::Error, "unknown parameter type",
         "A parameter of an unknown type cannot be created, and the load fails.",
         "\"parameterType\": \"int\"", "\"parameterType\": \"integer\""},
        {Code::UnknownConditionType, Severity::Error, "unknown condition type",
         "A condition tests a `bool`, an `integer`, a `float` or a `message`. One of another type "
         "fails, and those behind "
         "it are left out.",
         "\"conditionType\": \"float2\"", "\"conditionType\": \"float\""},
        {Code::UnknownInput, Severity::Error, "unknown input", inputs.c_str(),
         "\"assign\": \"stickLeft\"", "\"assign\": \"leftStick\""},
        {Code::UnknownMachineType, Severity::Error, "unknown machine type",
         "The machine has the type 0, which is none.", "\"machineType\": \"hero\"",
         "\"machineType\": \"character\""},
        {Code::UnknownConnector, Severity::Error, "unknown connector type",
         "The connector cannot be created, and all nodes that were read so far are dropped with "
         "it: there is nothing to "
         "run. Upper and lower case are the same here.",
         "\"connectorType\": \"input\"", "\"connectorType\": \"in\""},
        {Code::UnknownAttributeType, Severity::Error, "unknown attribute type",
         "This attribute and those behind it are left out. Upper and lower case are the same here.",
         "\"attributeType\": \"float\"", "\"attributeType\": \"double\""},
        {Code::TextParameter, Severity::Warning, "a parameter of type `text`",
         "The type `text` has a name, but documents do not use it: no condition tests it as such. "
         "Write `message`.",
         "\"parameterType\": \"text\"", "\"parameterType\": \"message\""},
    };
    return table;
}

} // namespace vell::check
