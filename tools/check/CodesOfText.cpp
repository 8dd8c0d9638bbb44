// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfText.cpp: the codes of the text.
#include "tools/check/Code.h"

namespace vell::check
{

const CodeTable& TextCodes()
{
    static const CodeTable table = {
        {Code::Empty, Severity::Error, "the document is empty",
         "The file has no bytes, or only blanks. The library creates no machine.", "",
         "{ \"head\": { }, \"parameters\": [ ], \"layers\": [ ] }"},
        {Code::ByteOrderMark, Severity::Error, "byte order mark",
         "Some editors put three invisible bytes before a text, the byte order mark. The library's "
         "parser takes "
         "them for a mistake and creates no machine. Save the file as \"UTF-8\" rather than "
         "\"UTF-8 with BOM\".",
         "\xef\xbb\xbf{ \"head\": { } }", "{ \"head\": { } }"},
        {Code::Comment, Severity::Error, "comment",
         "JSON has no comments, and the library creates no machine from a document with one. The "
         "member `\"$comment\"` "
         "may be written in any object instead; the library does not read it.",
         "{\n    // Resting.\n    \"name\": \"Stand\"\n}",
         "{\n    \"$comment\": \"Resting.\",\n    \"name\": \"Stand\"\n}"},
        {Code::TrailingComma, Severity::Error, "trailing comma",
         "There is a comma behind the last member or element. The library creates no machine.",
         "\"children\": [100, 101,]", "\"children\": [100, 101]"},
        {Code::MissingComma, Severity::Error, "missing comma",
         "Two members or elements have no comma between them. The place is the end of the first. "
         "The library creates "
         "no machine.",
         "\"id\": 10\n\"name\": \"Stand\"", "\"id\": 10,\n\"name\": \"Stand\""},
        {Code::MissingColon, Severity::Error, "missing colon",
         "A member's name and its value have no colon between them. The library creates no "
         "machine.",
         "\"id\" 10", "\"id\": 10"},
        {Code::Name, Severity::Error, "a member's name is not a text in double quotes",
         "Each member of an object begins with its name in double quotes. The library creates no "
         "machine.",
         "id: 10", "\"id\": 10"},
        {Code::MissingValue, Severity::Error, "a value is missing",
         "There is a comma, a bracket or the end where a value belongs. The library creates no "
         "machine.",
         "\"children\": [100, , 101]", "\"children\": [100, 101]"},
        {Code::Bracket, Severity::Error, "brackets do not match",
         "A bracket is never closed, or closed by one of the other kind. The library creates no "
         "machine. The second "
         "place is that of the opening bracket; the mistake is often between the two.",
         "\"children\": [100, 101 }", "\"children\": [100, 101]"},
        {Code::OpenText, Severity::Error, "a text has no end",
         "A text must end on the line on which it begins. The library creates no machine.",
         "\"name\": \"Stand,", "\"name\": \"Stand\","},
        {Code::Escape, Severity::Error, "invalid escape",
         "Behind a backslash, a text may have only `\"`, `\\`, `/`, `b`, `f`, `n`, `r`, `t`, or "
         "`u` and four "
         "hexadecimal digits. The library creates no machine.",
         "\"clipName\": \"clips\\stand\"", "\"clipName\": \"clips\\\\stand\""},
        {Code::ControlCharacter, Severity::Error, "control character in a text",
         "A tab, a new line or another control character within a text is written as an escape. "
         "The library creates no "
         "machine.",
         "\"name\": \"Stand\tstill\"", "\"name\": \"Stand\\tstill\""},
        {Code::Number, Severity::Error, "invalid number",
         "A number has digits, perhaps a minus before them, a fraction and an exponent: no plus, "
         "no leading zeros, no "
         "hexadecimal digits, a digit on both sides of the point. The library creates no machine.",
         "\"switchArgument\": .25", "\"switchArgument\": 0.25"},
        {Code::Word, Severity::Error, "a word without quotes",
         "Only `true`, `false` and `null` are written without quotes, in lower case. Everything "
         "else is a text in "
         "double quotes. The library creates no machine.",
         "\"builder\": generic", "\"builder\": \"generic\""},
        {Code::Character, Severity::Error, "unexpected character",
         "No value begins with this character. The library creates no machine.", "\"id\": ?10",
         "\"id\": 10"},
        {Code::AfterRoot, Severity::Error, "something behind the document",
         "The document ends with the bracket that closes its first one. Often there is a closing "
         "bracket too many. The "
         "library creates no machine.",
         "{ \"head\": { } } }", "{ \"head\": { } }"},
        {Code::DuplicateMember, Severity::Warning, "a member is there twice",
         "Of two members of one name, the library reads the first. Most other programs read the "
         "last.",
         "{ \"name\": \"Stand\", \"id\": 10, \"name\": \"Walk\" }",
         "{ \"name\": \"Stand\", \"id\": 10 }"},
        {Code::LostCharacter, Severity::Warning, "a byte that is not UTF-8, or a NUL character",
         "The library keeps bytes that are not UTF-8 as they are, and others show something else "
         "in their place. A "
         "text ends for the library at its first NUL character, and so does the document.",
         "\"name\": \"Stand\\u0000still\"", "\"name\": \"Stand still\""},
        {Code::TooDeep, Severity::Error, "nested too deep",
         "Values are nested more than 1000 deep. A machine needs eight levels: the hierarchy of "
         "its states is written "
         "with ids. The check leaves out what is deeper.",
         "[[[[[[[[[[[[[[[[[[[[[[[[", "\"children\": [100]"},
    };
    return table;
}

} // namespace vell::check
