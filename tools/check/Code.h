// VELL: data-driven hierarchical state machines.
// tools/check/Code.h: the codes of what the check can find, each with its explanation.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vell::check
{

enum class Severity
{
    Note,
    Warning, ///< the library accepts it, and it is hardly meant
    Error    ///< the library refuses or loses something, or a reference leads nowhere
};

/// The codes by family. A number is never used again for something else.
enum class Code : int
{
    // 1 to 19: the text.
    Empty = 1,
    ByteOrderMark = 2,
    Comment = 3,
    TrailingComma = 4,
    MissingComma = 5,
    MissingColon = 6,
    Name = 7,
    MissingValue = 8,
    Bracket = 9,
    OpenText = 10,
    Escape = 11,
    ControlCharacter = 12,
    Number = 13,
    Word = 14,
    Character = 15,
    AfterRoot = 16,
    DuplicateMember = 17,
    LostCharacter = 18,
    TooDeep = 19,
    // 20 to 39: members.
    UnknownMember = 20,
    MissingMember = 21,
    WrongType = 22,
    OutOfRange = 23,
    Fraction = 24,
    MisplacedMember = 25,
    TooLong = 26,
    EmptyText = 27,
    MemberWithoutOther = 28,
    VersionTooLow = 29,
    VectorText = 30,
    FurtherElements = 31,
    NoElement = 32,
    UnknownCode = 33,
    // 40 to 49: words.
    UnknownBuilder = 40,
    UnknownOperator = 41,
    UnknownParameterType = 42,
    UnknownConditionType = 43,
    UnknownInput = 44,
    UnknownMachineType = 45,
    UnknownConnector = 46,
    UnknownAttributeType = 47,
    TextParameter = 48,
    // 50 to 69: ids.
    NodeWithoutId = 50,
    DuplicateNodeId = 51,
    ParameterWithoutId = 52,
    DuplicateParameterId = 53,
    DuplicateParameterName = 54,
    ParameterIdNotCrc = 55,
    NameForId = 56,
    // 70 to 99: references.
    TargetAbsent = 70,
    TargetCannotRun = 71,
    TargetZero = 72,
    ChildAbsent = 73,
    ChildZero = 74,
    ChildOfOther = 75,
    TransitionUnlisted = 76,
    TransitionListedTwice = 77,
    ListerCannotRun = 78,
    SourceNotLister = 79,
    ParentNotLevel = 80,
    TargetOfOtherLevel = 81,
    ParentWrong = 82,
    EntryTarget = 83,
    SubstateEnter = 84,
    SubstateExit = 85,
    EndOfOtherLevel = 86,
    SecondEnterNode = 87,
    EnterNodeAbsent = 88,
    EnterNodeCannotRun = 89,
    StartWrong = 90,
    ExitConnectorWrong = 91,
    ConditionParameter = 92,
    NodesAtRoot = 93,
    NoLayers = 94,
    GlobalInLayer = 95,
    SecondGlobalNode = 96,
    NoGlobalNode = 97,
    NoConditions = 98,
    VersionWithoutStart = 99,
    // 100 to 119: types.
    ConditionTypeDiffers = 100,
    ConditionOfVector = 101,
    RangeNotText = 102,
    RangeText = 103,
    RangePiece = 104,
    OperatorUnread = 105,
    OperandType = 106,
    OperandEmpty = 107,
    OperandFraction = 108,
    OperandRange = 109,
    // 120 to 149: meaning.
    StateUnreached = 120,
    EndUnused = 121,
    StateNeverLeft = 122,
    ConditionNever = 123,
    ConditionAlways = 124,
    TransitionShadowed = 125,
    BackAndForth = 126,
    TransitionToItself = 127,
    TargetLeftAtOnce = 128,
    BlipTooWeak = 129,
    BlipWithoutEnd = 130,
    ParameterUntested = 131,
    MessageUnawaited = 132,
    MessageReset = 133,
    MessageEmpty = 134,
    EndRunsAsState = 135,
    ChildTwice = 136,
    // 150 to 159: memory.
    MemoryTooSmall = 150,
    MemoryTooLarge = 151,
    HostBuilder = 152,
    // 160 to 169: sources.
    SourceMember = 160,
    SourceName = 161,
    SourceCondition = 162,
    SourceTwice = 163,
    SourceFile = 164,
    // From 190: what the library says when it loads the document.
    LibraryError = 190,
    LibraryWarning = 191,
};

/// What is known about a code. The texts are Markdown.
struct CodeEntry
{
    Code code;
    Severity severity;
    const char* title;       ///< a phrase without a capital and a full stop
    const char* explanation; ///< a paragraph: what happens, and what to do
    const char* bad;         ///< a piece of a document that is reported
    const char* good;        ///< the same, corrected
};

using CodeTable = std::vector<CodeEntry>;

// One table a family, in a file of its own; Code.cpp lists them.
const CodeTable& TextCodes();
const CodeTable& MemberCodes();
const CodeTable& WordCodes();
const CodeTable& IdCodes();
const CodeTable& ReferenceCodes();
const CodeTable& TypeCodes();
const CodeTable& MeaningCodes();
const CodeTable& LoadingCodes();
const CodeTable& SourceCodes();

/// Gives all codes in ascending order.
const std::vector<const CodeEntry*>& AllCodes();

/// Gives the entry of a code. Every code has one.
const CodeEntry& GetEntry(Code code);
/// Gives the entry of a name such as "VELL012", upper or lower case; null when there is none.
const CodeEntry* FindEntry(std::string_view name);

/// Gives "VELL012".
std::string NameOf(Code code);
/// Gives "error", "warning" or "note".
const char* NameOf(Severity severity);

/// Gives the page of all codes, docs/checks.md.
std::string CodesPage();
/// Gives what --explain prints about one.
std::string Explain(const CodeEntry& entry);

} // namespace vell::check
