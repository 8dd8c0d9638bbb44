// VELL: data-driven hierarchical state machines.
// tools/vell/LogExplanation.cpp: the lines that need words, and the words.
#include "tools/vell/LogExplanation.h"

#include <durm/DURMBaseLib.h>
#include <vell/Types.h>

#include "tools/vell/CommandDescription.h"
#include "tools/vell/Suggestion.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace vell::tool
{
namespace
{

constexpr std::size_t kWidth = 72; ///< of an explanation

enum class Use
{
    Shown,
    Consequence, ///< left out behind another line, of which it is a consequence
    Harmless     ///< left out
};

/// A line that contains `part`, and what it means. `%` is what follows `part` in the line, up to a
/// closing parenthesis or the end.
struct Explanation
{
    const char* part;
    const char* words;
    Use use = Use::Shown;
};

constexpr Explanation kExplanations[] = {
    {"Failed to create builder type - (", "", Use::Shown}, // explained by its builder
    {"Ignoring this transition",
     "The transition '%' is not ignored. It keeps the conditions before the invalid one, and its "
     "triggers. With neither, nothing fires it."},
    {"An error occurred initilizing a condition",
     "The conditionType of a condition is unknown, or its operand is missing or of another type."},
    {"Entry Node doesn't exist: ",
     "The \"enterNode\" of the head names the node %, which does not exist. This is only checked: "
     "the machine starts with \"substateRoot\".",
     Use::Consequence},
    {"Unable to find state ID:  (0)", "The document has no global node.", Use::Harmless},
    {"Unable to find state ID:  (", "No node with the id % can run as a state.", Use::Consequence},
    {"State failed to be pushed onto state stack: ", "The state % could not be entered."},
    {"Duplicate ID (", "Two nodes have the id %. The second one, and all nodes after it in its "
                       "list, are left out."},
    {"Parsing JSON file has caused an exception", "A step of loading failed.", Use::Consequence},
    {"Unable to find a compatible connector type", "The type of a connector is unknown."},
    {"Parameter definition is NULL",
     "A condition names a parameter that does not exist. It never holds."},
    {"in vell::HSM::Create", "The head is missing or incomplete, or there is not enough memory.",
     Use::Consequence},
    {"in vell::HSM::ImportLayers", "The list of layers is missing, or a layer could not be read.",
     Use::Consequence},
    {"in vell::HSM::ImportStates", "A layer has no nodes, or one of them could not be built.",
     Use::Consequence},
    {"in vell::HSM::InitNodeDefTable", "A node of the layer could not be built.", Use::Consequence},
    {"in vell::HSM::InitParameterTable", "The list of parameters could not be read.",
     Use::Consequence},
    {"in vell::NodeDefTable::ImportHead",
     "The head is not an object, or its \"enterNode\" is missing or 0."},
    {"in vell::NodeDefTable::ImportGlobal",
     "The list of global nodes is not a list, or one of them could not be built.",
     Use::Consequence},
    {"in vell::NodeDefTable::InsertEnterNode",
     "Two enter nodes have the same parent. The first one counts."},
    {"in vell::TransitionDef::InitConditions",
     "The conditions of a transition are missing, empty or not a list."},
    {"in vell::ParameterTable::CreateParameterDef",
     "A parameter has no name, or its parameterType is unknown, or the arena is too small for it."},
    {"in vell::ParameterTable::", "The list of parameters could not be read.", Use::Consequence},
    {"in vell::ConditionDef", "A condition is incomplete, or its operand is of another type."},
};

const char* const kBuilders[] = {"base", "connector", "transition", "condition", "enter",
                                 "exit", "generic",   "animClip",   "global",    "substate"};

std::string Rest(const std::string& line, std::size_t at)
{
    const std::size_t end = line.find_first_of(") ", at);
    return line.substr(at, end == std::string::npos ? end : end - at);
}

/// Explains the line about a node that could not be built, with its builder at `at`.
std::string ExplainBuilder(const std::string& line, std::size_t at)
{
    const std::string builder = Rest(line, at);
    const bool isKnown =
        std::find(std::begin(kBuilders), std::end(kBuilders), builder) != std::end(kBuilders);
    const std::string lost = " The nodes read so far are dropped, and later layers are not read.";
    if (builder.empty())
    {
        return "A node has no \"builder\"." + lost;
    }
    if (isKnown)
    {
        return "A node with the builder '" + builder +
               "' is incomplete, or the arena is too small for it." + lost;
    }
    const std::string hint = DidYouMean(builder, {std::begin(kBuilders), std::end(kBuilders)});
    return "'" + builder + "' is not a builder" + (hint.empty() ? "." : hint) + lost;
}

constexpr const char* kBuilderLine = "Failed to create builder type - (";

/// Finds what is known about a line; null when there is nothing.
const Explanation* FindExplanation(const std::string& line)
{
    const auto found = std::find_if(std::begin(kExplanations), std::end(kExplanations),
                                    [&line](const Explanation& explanation)
                                    {
                                        return line.find(explanation.part) != std::string::npos;
                                    });
    return found == std::end(kExplanations) ? nullptr : found;
}

/// Tells whether a line only names the place in the library where something failed.
bool IsPlaceOnly(const std::string& line)
{
    return line.rfind("ERROR_", 0) == 0 || line.rfind("ASSERT_", 0) == 0;
}

struct Counted
{
    std::string line;
    std::size_t count;
};

/// Tells whether a line says nothing to the author of a document, or nothing more than a line
/// before it, which `hasCause` tells.
bool IsLeftOut(const std::string& line, bool hasCause)
{
    const Explanation* explanation = FindExplanation(line);
    if (explanation == nullptr)
    {
        return IsPlaceOnly(line);
    }
    return explanation->use == Use::Harmless || (explanation->use == Use::Consequence && hasCause);
}

/// Gives each line once, in the order of their first occurrence.
std::vector<Counted> CountLines(const std::vector<std::string>& complaints, bool hasCause)
{
    std::vector<Counted> counts;
    for (const std::string& line : complaints)
    {
        const auto same = std::find_if(counts.begin(), counts.end(),
                                       [&line](const Counted& entry)
                                       {
                                           return entry.line == line;
                                       });
        if (same != counts.end())
        {
            ++same->count;
        }
        else if (!IsLeftOut(line, hasCause || !counts.empty()))
        {
            counts.push_back({line, 1});
        }
    }
    return counts;
}

} // namespace

std::string ExplainLogLine(const std::string& line)
{
    const std::string builder = kBuilderLine;
    if (const std::size_t at = line.find(builder); at != std::string::npos)
    {
        return ExplainBuilder(line, at + builder.size());
    }
    const Explanation* explanation = FindExplanation(line);
    if (explanation == nullptr)
    {
        return "";
    }
    const std::string part = explanation->part;
    std::string words = explanation->words;
    if (const std::size_t hole = words.find('%'); hole != std::string::npos)
    {
        words.replace(hole, 1, Rest(line, line.find(part) + part.size()));
    }
    return words;
}

std::vector<std::string> ExplainLog(const std::vector<std::string>& complaints, std::size_t most,
                                    bool hasCause)
{
    const std::vector<Counted> counts = CountLines(complaints, hasCause);
    std::set<const Explanation*> given;
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < counts.size() && i < most; ++i)
    {
        const auto& [line, count] = counts[i];
        const Explanation* explanation = FindExplanation(line);
        const bool isExplained = explanation != nullptr && !given.insert(explanation).second;
        if (isExplained && IsPlaceOnly(line))
        {
            continue;
        }
        lines.push_back(line + (count == 1 ? "" : "  (" + std::to_string(count) + " times)"));
        if (isExplained)
        {
            continue;
        }
        for (const std::string& words : Wrapped(ExplainLogLine(line), kWidth))
        {
            lines.push_back("    " + words);
        }
        if (lines.back() == "    ")
        {
            lines.pop_back();
        }
    }
    if (counts.size() > most)
    {
        lines.push_back("... and " + std::to_string(counts.size() - most) + " more");
    }
    return lines;
}

} // namespace vell::tool
