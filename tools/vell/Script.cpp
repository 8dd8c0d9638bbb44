// VELL: data-driven hierarchical state machines.
// tools/vell/Script.cpp: from the text of a script to its instructions.
#include "tools/vell/Script.h"

#include "tools/vell/TextFile.h"

#include <charconv>
#include <istream>
#include <sstream>

namespace vell::tool
{
namespace
{

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

/// Removes the comment: from a `#` at the start or after a space, outside quotes.
std::string WithoutComment(const std::string& line)
{
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        quoted = quoted != (line[i] == '"');
        if (line[i] == '#' && !quoted && (i == 0 || IsBlank(line[i - 1])))
        {
            return line.substr(0, i);
        }
    }
    return line;
}

/// One line, read word by word. A word in quotes may contain spaces.
class Words
{
public:
    explicit Words(const std::string& line) : text(WithoutComment(line))
    {
        SkipBlanks();
    }

    bool AtEnd() const
    {
        return place == text.size();
    }

    /// True when a word that was read has no closing quote.
    bool IsOpen() const
    {
        return isOpen;
    }

    std::string Next()
    {
        const bool quoted = !AtEnd() && text[place] == '"';
        const std::size_t begin = quoted ? place + 1 : place;
        std::size_t end = begin;
        while (end < text.size() && (quoted ? text[end] != '"' : !IsBlank(text[end])))
        {
            ++end;
        }
        isOpen = isOpen || (quoted && end == text.size());
        place = quoted && end < text.size() ? end + 1 : end;
        SkipBlanks();
        return text.substr(begin, end - begin);
    }

    /// Takes the rest of the line, without surrounding spaces and quotes.
    std::string Rest()
    {
        std::string rest = text.substr(place);
        place = text.size();
        while (!rest.empty() && IsBlank(rest.back()))
        {
            rest.pop_back();
        }
        if (rest.size() > 1 && rest.front() == '"' && rest.back() == '"')
        {
            return rest.substr(1, rest.size() - 2);
        }
        return rest;
    }

private:
    void SkipBlanks()
    {
        while (!AtEnd() && IsBlank(text[place]))
        {
            ++place;
        }
    }

    std::string text;
    std::size_t place = 0;
    bool isOpen = false;
};

// Each reader fills `instruction` and returns an error message, or an empty text.

std::string ReadTick(Words& words, Instruction& instruction)
{
    instruction.operation = Operation::Tick;
    if (words.AtEnd())
    {
        return "";
    }
    const std::string count = words.Rest();
    const char* end = count.data() + count.size();
    const auto [stop, error] = std::from_chars(count.data(), end, instruction.count);
    return error == std::errc() && stop == end
               ? ""
               : "'" + count + "' is not a number of ticks; usage: tick [N]";
}

std::string ReadNameAndValue(Words& words, Instruction& instruction, const char* usage)
{
    if (!words.AtEnd())
    {
        instruction.name = words.Next();
        if (!words.AtEnd())
        {
            instruction.value = words.Rest();
            return "";
        }
    }
    return std::string("expected a name and a value; usage: ") + usage;
}

std::string ReadMessage(Words& words, Instruction& instruction)
{
    instruction.operation = Operation::Message;
    if (!words.AtEnd())
    {
        instruction.name = words.Next();
        if (words.AtEnd())
        {
            return "";
        }
    }
    return "expected one name; usage: message NAME";
}

std::string ReadExpectation(Words& words, Instruction& instruction)
{
    const std::string subject = words.AtEnd() ? "" : words.Next();
    if (subject == "stack")
    {
        instruction.operation = Operation::ExpectStack;
        if (words.AtEnd())
        {
            return "expected the names on the stack; usage: expect stack A/B/C, or - for an empty "
                   "one";
        }
        instruction.value = words.Rest();
        if (instruction.value == "-")
        {
            instruction.value.clear();
        }
        return "";
    }
    if (subject == "param")
    {
        instruction.operation = Operation::ExpectParam;
        return ReadNameAndValue(words, instruction, "expect param NAME VALUE");
    }
    if (subject == "blip")
    {
        instruction.operation = Operation::ExpectBlip;
        const std::string answer = words.Rest();
        instruction.flag = answer == "yes";
        return answer == "yes" || answer == "no" ? ""
                                                 : "expected yes or no; usage: expect blip yes|no";
    }
    return (subject.empty() ? "expected" : "unknown expectation '" + subject + "'; expected") +
           std::string(" stack, param or blip");
}

std::string ReadInstruction(Words& words, Instruction& instruction)
{
    const std::string verb = words.Next();
    if (verb == "tick")
    {
        return ReadTick(words, instruction);
    }
    if (verb == "set")
    {
        instruction.operation = Operation::Set;
        return ReadNameAndValue(words, instruction, "set NAME VALUE");
    }
    if (verb == "message")
    {
        return ReadMessage(words, instruction);
    }
    if (verb == "expect")
    {
        return ReadExpectation(words, instruction);
    }
    return "unknown instruction '" + verb + "'; expected tick, set, message or expect";
}

} // namespace

Script ReadScript(std::istream& in, const std::string& file)
{
    Script script;
    script.file = file;
    std::string line;
    for (unsigned int number = 1; std::getline(in, line); ++number)
    {
        Words words(line);
        if (words.AtEnd())
        {
            continue;
        }
        Instruction instruction;
        instruction.line = number;
        std::string fault = ReadInstruction(words, instruction);
        fault = words.IsOpen() ? "the quote is not closed" : fault;
        if (fault.empty())
        {
            script.instructions.push_back(instruction);
        }
        else
        {
            std::string place = file;
            place += ":" + std::to_string(number) + ": ";
            script.errors.push_back(place + fault);
        }
    }
    return script;
}

Script ReadScriptFile(const std::string& path)
{
    std::string text;
    const std::string fault = ReadTextFile(path, &text);
    if (!fault.empty())
    {
        Script script;
        script.errors.push_back(fault);
        return script;
    }
    std::istringstream in(text);
    return ReadScript(in, FileName(path));
}

} // namespace vell::tool
