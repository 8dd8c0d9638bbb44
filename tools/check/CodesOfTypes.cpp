// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfTypes.cpp: the codes of types across objects.
#include "tools/check/Code.h"

namespace vell::check
{

const CodeTable& TypeCodes()
{
    static const CodeTable table = {
        {Code::ConditionTypeDiffers, Severity::Error,
         "a condition of another type than its parameter",
         "The library does not compare the two types. A condition of another type reads the bytes "
         "of the parameter as if they were of its own type; a message condition never holds.",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": "
         "\"float\"}\n\n{\"conditionType\": \"integer\", \"parameter\": 254213878, \"operator\": "
         "\"greater\", \"operand\": [{\"value\": 1}]}",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": "
         "\"float\"}\n\n{\"conditionType\": \"float\", \"parameter\": 254213878, \"operator\": "
         "\"greater\", \"operand\": [{\"value\": 1.0}]}"},
        {Code::ConditionOfVector, Severity::Warning, "a float condition on a vector",
         "There are no conditions for vectors. A float condition on one tests its first number "
         "alone.",
         "{\"name\": \"stick\", \"id\": 1337666258, \"parameterType\": \"float2\", \"default\": "
         "[{\"VARIANT_Data\": \"0, 0\"}]}\n\n{\"conditionType\": \"float\", \"parameter\": "
         "1337666258, \"operator\": \"greater\", \"operand\": [{\"value\": 0.5}]}",
         "{\"name\": \"speed\", \"id\": 254213878, \"parameterType\": "
         "\"float\"}\n\n{\"conditionType\": \"float\", \"parameter\": 254213878, \"operator\": "
         "\"greater\", \"operand\": [{\"value\": 0.5}]}"},
        {Code::RangeNotText, Severity::Error, "a range that is no text",
         "The value of the operator `range` is a text of two numbers. With anything else, the "
         "condition and those behind it are left out.",
         "{\"conditionType\": \"integer\", \"operator\": \"range\", \"operand\": [{\"value\": 2}]}",
         "{\"conditionType\": \"integer\", \"operator\": \"range\", \"operand\": [{\"value\": \"0, "
         "2\"}]}"},
        {Code::RangeText, Severity::Error, "an invalid range",
         "A range is two numbers with a comma between them, in fewer than 128 characters. With "
         "anything else, the condition and those behind it are left out.",
         "{\"conditionType\": \"integer\", \"operator\": \"range\", \"operand\": [{\"value\": "
         "\"0-2\"}]}",
         "{\"conditionType\": \"integer\", \"operator\": \"range\", \"operand\": [{\"value\": \"0, "
         "2\"}]}"},
        {Code::RangePiece, Severity::Warning, "a range with a piece that is not read",
         "A piece of a range that is not a number counts as the number that it begins with, or as "
         "0. Numbers behind the second are not read.",
         "{\"conditionType\": \"integer\", \"operator\": \"range\", \"operand\": [{\"value\": "
         "\"low, 2\"}]}",
         "{\"conditionType\": \"integer\", \"operator\": \"range\", \"operand\": [{\"value\": \"0, "
         "2\"}]}"},
        {Code::OperatorUnread, Severity::Warning, "an operator that is not read",
         "Conditions on bools and messages test for equality, whatever their operator is. For a "
         "bool that must not be true, test whether it is false.",
         "{\"conditionType\": \"bool\", \"operator\": \"notEqual\", \"operand\": [{\"value\": "
         "true}]}",
         "{\"conditionType\": \"bool\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "false}]}"},
        {Code::OperandType, Severity::Error, "a value of another type than its condition",
         "A bool condition takes `true` or `false`, an integer or float condition a number, a "
         "message condition a text. Anything else counts as false or 0; in a message condition it "
         "leaves out the condition and those behind it.",
         "{\"conditionType\": \"bool\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "\"true\"}]}",
         "{\"conditionType\": \"bool\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "true}]}"},
        {Code::OperandEmpty, Severity::Error, "a message condition with an empty text",
         "A message condition needs a text. With an empty one, the condition and those behind it "
         "are left out.",
         "{\"conditionType\": \"message\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "\"\"}]}",
         "{\"conditionType\": \"message\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "\"now\"}]}"},
        {Code::OperandFraction, Severity::Warning, "an integer condition with a fraction",
         "The library takes the low 32 bits of a number with a fraction or an exponent, which is "
         "another number. Write a whole number.",
         "{\"conditionType\": \"integer\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "2.0}]}",
         "{\"conditionType\": \"integer\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "2}]}"},
        {Code::OperandRange, Severity::Warning, "a value that does not fit",
         "Integers have 32 bits, and of a larger one the low 32 bits are taken. Floats end at "
         "about 3.4e38; a larger one is infinite.",
         "{\"conditionType\": \"integer\", \"operator\": \"less\", \"operand\": [{\"value\": "
         "3000000000}]}",
         "{\"conditionType\": \"integer\", \"operator\": \"less\", \"operand\": [{\"value\": "
         "2000000000}]}"},
    };
    return table;
}

} // namespace vell::check
