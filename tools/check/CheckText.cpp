// VELL: data-driven hierarchical state machines.
// tools/check/CheckText.cpp: what is wrong with the text itself.
#include "tools/check/Check.h"

namespace vell::check
{
namespace
{

using source::Flaw;

Code CodeOf(Flaw flaw)
{
    switch (flaw)
    {
    case Flaw::Empty:
        return Code::Empty;
    case Flaw::ByteOrderMark:
        return Code::ByteOrderMark;
    case Flaw::Comment:
        return Code::Comment;
    case Flaw::TrailingComma:
        return Code::TrailingComma;
    case Flaw::MissingComma:
        return Code::MissingComma;
    case Flaw::MissingColon:
        return Code::MissingColon;
    case Flaw::Name:
        return Code::Name;
    case Flaw::MissingValue:
        return Code::MissingValue;
    case Flaw::Bracket:
        return Code::Bracket;
    case Flaw::OpenText:
        return Code::OpenText;
    case Flaw::Escape:
        return Code::Escape;
    case Flaw::ControlCharacter:
        return Code::ControlCharacter;
    case Flaw::Number:
        return Code::Number;
    case Flaw::Word:
        return Code::Word;
    case Flaw::Character:
        return Code::Character;
    case Flaw::AfterRoot:
        return Code::AfterRoot;
    case Flaw::TooDeep:
        return Code::TooDeep;
    case Flaw::Duplicate:
        return Code::DuplicateMember;
    case Flaw::NotUtf8:
    case Flaw::NulCharacter:
        break;
    }
    return Code::LostCharacter;
}

} // namespace

void CheckText(const Document& document, Findings& findings)
{
    for (const source::Problem& problem : document.text.problems)
    {
        const Code code = CodeOf(problem.flaw);
        if (problem.hasOther)
        {
            findings.Add(code, problem.where, problem.message, problem.hint, problem.other,
                         code == Code::DuplicateMember ? "the first is here"
                         : code == Code::Character     ? "the '[' opened here is still open"
                                                       : "it is opened here");
        }
        else
        {
            findings.Add(code, problem.where, problem.message, problem.hint);
        }
    }
}

} // namespace vell::check
