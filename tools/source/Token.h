// VELL: data-driven hierarchical state machines.
// tools/source/Token.h: the texts, numbers and words of a document.
#pragma once

#include "tools/source/Cursor.h"
#include "tools/source/Reader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vell::source
{

/// Reads the values that have no brackets, and the names of members.
class TokenReader
{
public:
    TokenReader(Cursor& sharedCursor, std::vector<Problem>& filledProblems)
        : cursor(sharedCursor), problems(filledProblems)
    {
    }

    /// Reads a text, a number or a word.
    Value ReadScalar();
    /// Reads a member's name, which is a String whatever it looks like.
    Value ReadName();

    /// True after a mistake behind which the rest cannot be read.
    bool HasFailed() const
    {
        return hasFailed;
    }

    Problem& Report(Flaw flaw, Span where, std::string message, std::string hint = {});

    /// Skips a blank that is none in JSON, such as a no-break space. False when there is none. It
    /// is reported once a line.
    bool SkipForeignBlank();
    /// Where a comma is in place of a decimal point behind the number: reads the rest of it.
    /// False, and nothing happens, when it does not.
    bool ReadDecimalComma(Value& number);

private:
    Problem& Fail(Flaw flaw, Span where, std::string message, std::string hint = {});
    Value ReadQuoted(char quote);
    Value ReadTypographic();
    void ReportNumber(Value& value, const char* mistake);
    void ReadCharacter(Value& value, bool& hasReportedByte);
    void ReadEscape(Value& value);
    void ReadUnicodeEscape(const Place& begin, Value& value);
    bool ReadHex4(unsigned int& unit);
    Value ReadNumber();
    Value ReadWord();
    std::string TakeWord();

    Cursor& cursor;
    std::vector<Problem>& problems;
    std::uint32_t lineOfBlank = 0; ///< the last line with a foreign blank
    bool hasFailed = false;
};

} // namespace vell::source
