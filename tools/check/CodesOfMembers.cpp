// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfMembers.cpp: the codes of members and their values.
#include "tools/check/Code.h"

namespace vell::check
{

const CodeTable& MemberCodes()
{
    static const CodeTable table = {
        {Code::UnknownMember, Severity::Warning, "unknown member",
         "No object of a document has a member of this name. The library does not read it. Names "
         "are case-sensitive. "
         "The member `\"$comment\"` may be written in any object, and `\"$schema\"` at the root.",
         "{ \"name\": \"Stand\", \"id\": 10, \"builder\": \"generic\", \"childs\": [100] }",
         "{ \"name\": \"Stand\", \"id\": 10, \"builder\": \"generic\", \"children\": [100] }"},
        {Code::MissingMember, Severity::Error, "a required member is missing",
         "The library reads a missing member as null, 0 or an empty text. Without this one it "
         "drops the object or a part "
         "of it, or the machine cannot start.",
         "{ \"name\": \"Stand\", \"id\": 10 }",
         "{ \"name\": \"Stand\", \"id\": 10, \"builder\": \"generic\" }"},
        {Code::WrongType, Severity::Error, "a value of the wrong type",
         "The library reads a value of the wrong type as if it were missing: a number in quotes as "
         "0, `1` as false. Some "
         "objects then fail as a whole.",
         "\"target\": \"20\", \"disabled\": 1", "\"target\": 20, \"disabled\": true"},
        {Code::OutOfRange, Severity::Error, "a number is out of range",
         "Ids and integers have 32 bits, and other numbers are floats. The library takes the low "
         "32 bits of a larger "
         "integer: another number.",
         "\"priority\": 4294967297", "\"priority\": 1"},
        {Code::Fraction, Severity::Error, "a whole number with a fraction or an exponent",
         "Where a whole number belongs, the library reads the low 32 bits of any other number's "
         "double. These are 0 for "
         "many numbers, 5.0 among them.",
         "\"priority\": 5.0", "\"priority\": 5"},
        {Code::MisplacedMember, Severity::Warning, "a member that is not read in this object",
         "A member of this name belongs in another kind of object. The library does not read it "
         "here.",
         "{ \"name\": \"Stand\", \"id\": 10, \"builder\": \"generic\", \"target\": 11 }",
         "{ \"name\": \"Leave\", \"id\": 100, \"builder\": \"transition\", \"target\": 11 }"},
        {Code::TooLong, Severity::Error, "a text is too long",
         "The library drops a `guid` or `buildId` of 70 bytes or more, the text of an attribute of "
         "1024 bytes or more, "
         "and the text of a vector of 128 bytes or more.",
         "\"guid\": "
         "\"walker-1-with-a-name-so-long-that-nobody-will-ever-want-to-read-it-again-at-all\"",
         "\"guid\": \"walker-1\""},
        {Code::EmptyText, Severity::Error, "a text is empty",
         "The file names of the skeleton may not be empty: the library stores none.",
         "\"modelFile\": \"\"", "\"modelFile\": \"hero.fbx\""},
        {Code::MemberWithoutOther, Severity::Warning,
         "a member that is read only beside another one",
         "`tagArgument` is read only where there is a `tag`, and `secondaryB` only where there is "
         "a `secondaryA`.",
         "\"tagArgument\": 7", "\"tag\": 1, \"tagArgument\": 7"},
        {Code::VersionTooLow, Severity::Error, "the head's version is too low",
         "`guid` and `buildId` are read from version 2 on, `value84` from version 3 on.",
         "\"version\": 1, \"guid\": \"walker-1\"", "\"version\": 3, \"guid\": \"walker-1\""},
        {Code::VectorText, Severity::Error, "the text of a vector is invalid",
         "A vector is written as one text with 2, 3 or 4 numbers, separated by commas. Too few "
         "numbers fail; the library "
         "ignores extra ones and reads 0 for a piece that is not a number.",
         "\"default\": [{ \"VARIANT_Data\": \"0.5; 1\" }]",
         "\"default\": [{ \"VARIANT_Data\": \"0.5, 1\" }]"},
        {Code::FurtherElements, Severity::Warning, "elements that are not read",
         "Only the first element of `operand`, of `ATTRIB_Data` and of a vector's `default` is "
         "read.",
         "\"operand\": [{ \"value\": 1 }, { \"value\": 2 }]", "\"operand\": [{ \"value\": 1 }]"},
        {Code::NoElement, Severity::Error, "an empty array",
         "An empty `operand`, `ATTRIB_Data` or vector's `default` fails as if it were missing.",
         "\"operand\": []", "\"operand\": [{ \"value\": 0.5 }]"},
        {Code::UnknownCode, Severity::Warning, "an unknown code in `$allow`",
         "The member `\"$allow\"` is an array of codes. One that does not exist allows nothing.",
         "\"$allow\": [\"VELL999\"]", "\"$allow\": [\"VELL020\"]"},
    };
    return table;
}

} // namespace vell::check
