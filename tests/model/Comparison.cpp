// VELL: data-driven hierarchical state machines.
// tests/model/Comparison.cpp: two runs side by side, and the shrinking of a case.

#include "tests/model/Comparison.h"

#include "tests/model/LibraryMachine.h"
#include "tests/model/Shrinking.h"

#include <algorithm>

namespace model
{

namespace
{

bool NeedsStart(InputKind kind)
{
    switch (kind)
    {
    case InputKind::Tick:
    case InputKind::PushId:
    case InputKind::PushCurrent:
    case InputKind::Pop:
    case InputKind::RevertToPrevious:
    case InputKind::RevertToStart:
    case InputKind::ChangeState:
        return true;
    default:
        return false;
    }
}

void Count(const Step& step, Counts* counts)
{
    static const char* const starts[] = {"[INFO]\t: Transition satisfied",
                                         "[INFO]\t: State Blip",
                                         "[INFO]\t: Revert to Previous",
                                         "[INFO]\t: [Enter]",
                                         "[INFO]\t: [Exit]",
                                         "[ERROR]\t: Failed to activate",
                                         "[ERROR]\t: Failed to find node",
                                         "[ERROR]\t: ERROR_BREAK(0) at # in vell::SubstateState",
                                         "[WARNING]",
                                         "callback",
                                         "listener",
                                         "action",
                                         "trigger"};
    if (step.threw)
    {
        ++(*counts)["threw"];
    }
    for (const char* start : starts)
    {
        for (const std::string& line : step.lines)
        {
            (*counts)[start] += line.rfind(start, 0) == 0 ? 1 : 0;
        }
    }
}

/// Takes things away from a case as long as its machines differ.
class CaseShrinker
{
public:
    CaseShrinker(Case startCase, Fault plantedFault)
        : shrinker(std::move(startCase),
                   [plantedFault](const Case& candidate)
                   {
                       return Compare(candidate, plantedFault, nullptr).isFound;
                   }),
          fault(plantedFault)
    {
    }

    Case Run()
    {
        CutInputs();
        while (shrinker.HasTrials() && ShrinkOnce())
        {
        }
        return shrinker.Best();
    }

private:
    // What follows the first difference has no part in it.
    void CutInputs()
    {
        Case& best = shrinker.Best();
        const Difference difference = Compare(best, fault, nullptr);
        best.inputs.resize(std::min(best.inputs.size(), difference.input + 1));
    }

    bool ShrinkOnce()
    {
        bool isSmaller = shrinker.ShrinkList([](Case & c) -> auto& { return c.inputs; });
        isSmaller |= shrinker.ShrinkDocument();
        isSmaller |= shrinker.ShrinkList([](Case & c) -> auto& { return c.actions; });
        return isSmaller;
    }

    Shrinker<Case> shrinker;
    Fault fault;
};

Lines EventsOf(const Step& step)
{
    Lines lines = step.lines;
    if (step.threw)
    {
        lines.push_back("threw std::out_of_range");
    }
    return lines;
}

// What both did alike, then what each did from there on.
std::string ReportLines(const Lines& expected, const Lines& actual)
{
    std::string text;
    std::size_t same = 0;
    while (same < expected.size() && same < actual.size() && expected[same] == actual[same])
    {
        text += "    both:    " + expected[same] + "\n";
        ++same;
    }
    for (std::size_t index = same; index < expected.size(); ++index)
    {
        text += "    model:   " + expected[index] + "\n";
    }
    for (std::size_t index = same; index < actual.size(); ++index)
    {
        text += "    library: " + actual[index] + "\n";
    }
    return text;
}

// The machine afterwards, line beside line.
std::string ReportPictures(const Lines& expected, const Lines& actual)
{
    std::string text;
    const std::size_t count = std::max(expected.size(), actual.size());
    for (std::size_t index = 0; index < count; ++index)
    {
        const auto line = [index](const Lines& lines)
        {
            return index < lines.size() ? lines[index] : std::string("(nothing)");
        };
        if (line(expected) != line(actual))
        {
            text += "    model:   " + line(expected) + "\n";
            text += "    library: " + line(actual) + "\n";
        }
    }
    return text;
}

} // namespace

Difference Compare(const Case& modelCase, Fault fault, Counts* counts)
{
    Difference difference;
    LibraryMachine library(modelCase);
    NaiveMachine naive(modelCase.document, modelCase.actions, fault);
    if (!library.IsLoaded())
    {
        difference.isFound = true;
        difference.expected.lines = {"the document loads"};
        difference.actual.lines = {"it does not"};
        return difference;
    }
    bool isStarted = false;
    for (std::size_t index = 0; index < modelCase.inputs.size(); ++index)
    {
        const Input& input = modelCase.inputs[index];
        isStarted = isStarted || input.kind == InputKind::Start;
        if (!isStarted && NeedsStart(input.kind))
        {
            continue;
        }
        const Step actual = library.Apply(input);
        const Step expected = naive.Apply(input);
        if (counts != nullptr)
        {
            Count(actual, counts);
        }
        if (!(expected == actual))
        {
            difference.isFound = true;
            difference.input = index;
            difference.expected = expected;
            difference.actual = actual;
            break;
        }
        if (actual.threw)
        {
            break;
        }
    }
    return difference;
}

Case Shrink(Case modelCase, Fault fault)
{
    return CaseShrinker(std::move(modelCase), fault).Run();
}

std::string Report(const Case& modelCase, const Difference& difference)
{
    std::string text = "document:\n" + WriteDocument(modelCase.document) + "\n";
    for (std::size_t index = 0; index < modelCase.actions.size(); ++index)
    {
        text += std::to_string(index) + ": " + Describe(modelCase.actions[index]) + "\n";
    }
    text += "calls:\n";
    for (const Input& input : modelCase.inputs)
    {
        text += "  " + Describe(input) + "\n";
    }
    if (!difference.isFound)
    {
        return text + "no difference\n";
    }
    text += "difference after call " + std::to_string(difference.input + 1) + ":\n";
    return text + ReportLines(EventsOf(difference.expected), EventsOf(difference.actual)) +
           ReportPictures(Describe(difference.expected.picture),
                          Describe(difference.actual.picture));
}

} // namespace model
