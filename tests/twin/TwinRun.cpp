// VELL: data-driven hierarchical state machines.
// tests/twin/TwinRun.cpp: the two machines side by side.
#include "tests/twin/TwinRun.h"

#include "tests/model/Shrinking.h"
#include "tests/twin/OperationKinds.h"

namespace twin
{
namespace
{

/// How many operations apart the trees are compared when time counts.
constexpr std::size_t kTreeStride = 16;

/// Both lines wherever two lists of one shape differ.
void AddDifferences(const Lines& with, const Lines& without, Lines* lines)
{
    const std::size_t count = std::max(with.size(), without.size());
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::string left = i < with.size() ? with[i] : "(nothing)";
        const std::string right = i < without.size() ? without[i] : "(nothing)";
        if (left != right)
        {
            lines->push_back("with: " + left + ", without: " + right);
        }
    }
}

bool IsSame(Side& with, Side& without, bool looksAtTree)
{
    return with.Numbers() == without.Numbers() &&
           (!looksAtTree || with.TreeHash() == without.TreeHash());
}

void RunOperations(const Case& twinCase, Look look, Side& with, Side& without,
                   Difference* difference)
{
    const std::size_t count = twinCase.operations.size();
    for (std::size_t i = 0; i < count && !difference->isFound; ++i)
    {
        const Operation& operation = twinCase.operations[i];
        difference->operation = i;
        ++Counts()[AllOperations()[operation.kind].name];
        const Lines withLines = with.Apply(operation);
        const Lines withoutLines = without.Apply(operation);
        const bool looksAtTree = look == Look::Always || i % kTreeStride == 0 || i + 1 == count;
        if (withLines != withoutLines || !IsSame(with, without, looksAtTree))
        {
            difference->isFound = true;
            difference->with = withLines;
            difference->without = withoutLines;
            AddDifferences(with.Show(), without.Show(), &difference->pictures);
            AddDifferences(with.TreeLines(), without.TreeLines(), &difference->pictures);
            break;
        }
        if (look == Look::Always)
        {
            Lines& done = difference->done;
            done.insert(done.end(), withoutLines.begin(), withoutLines.end());
        }
    }
}

std::string Indented(const char* mark, const Lines& lines)
{
    std::string text;
    for (const std::string& line : lines)
    {
        text += mark + line + "\n";
    }
    return text;
}

} // namespace

std::map<std::string, unsigned long>& Counts()
{
    static std::map<std::string, unsigned long> counts;
    return counts;
}

Difference Compare(const Case& twinCase, Look look)
{
    Difference difference;
    const SideLog log;
    Side with(twinCase.document, true);
    Side without(twinCase.document, false);
    const bool isWithLoaded = with.Load();
    const bool isWithoutLoaded = without.Load();
    if (isWithLoaded != isWithoutLoaded)
    {
        difference.isFound = true;
        return difference;
    }
    if (isWithLoaded)
    {
        RunOperations(twinCase, look, with, without, &difference);
    }
    const Lines withLines = with.End();
    const Lines withoutLines = without.End();
    if (!difference.isFound && withLines != withoutLines)
    {
        difference.isFound = true;
        difference.operation = twinCase.operations.size();
        difference.with = withLines;
        difference.without = withoutLines;
    }
    return difference;
}

Case Shrink(const Case& twinCase)
{
    model::Shrinker<Case> shrinker(twinCase,
                                   [](const Case& candidate)
                                   {
                                       return Compare(candidate, Look::Always).isFound;
                                   });
    bool isSmaller = true;
    while (isSmaller && shrinker.HasTrials())
    {
        isSmaller = shrinker.ShrinkList([](Case & c) -> auto& { return c.operations; });
        for (std::size_t i = 0; i < shrinker.Best().operations.size(); ++i)
        {
            isSmaller |= shrinker.Simplify(
                [i](Case& c)
                {
                    c.operations[i].inner.clear();
                },
                !shrinker.Best().operations[i].inner.empty());
            isSmaller |= shrinker.Simplify(
                [i](Case& c)
                {
                    c.operations[i].picks[0] = 0;
                },
                shrinker.Best().operations[i].kind == kTick &&
                    shrinker.Best().operations[i].picks[0] != 0);
        }
        isSmaller |= shrinker.ShrinkDocument();
    }
    return shrinker.Best();
}

std::string Report(const Case& twinCase)
{
    const Difference difference = Compare(twinCase, Look::Always);
    std::string text = "document:\n" + model::WriteDocument(twinCase.document) + "\noperations:\n";
    for (const Operation& operation : twinCase.operations)
    {
        text += std::string("  ") + AllOperations()[operation.kind].name;
        for (const Operation& inner : operation.inner)
        {
            text += std::string(", with ") + AllOperations()[inner.kind].name;
        }
        text += "\n";
    }
    return text + "what they did alike:\n" + Indented("  ", difference.done) +
           "difference after operation " + std::to_string(difference.operation + 1) + ":\n" +
           Indented("  with:    ", difference.with) + Indented("  without: ", difference.without) +
           Indented("  ", difference.pictures);
}

} // namespace twin
