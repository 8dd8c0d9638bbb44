// VELL: data-driven hierarchical state machines.
// tools/repair/LineDiff.cpp: the shortest way from one text to the other, line by line.
#include "tools/repair/LineDiff.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace vell::repair
{
namespace
{

using Lines = std::vector<std::string_view>;
using Signed = std::ptrdiff_t;

constexpr std::size_t kContext = 3; ///< lines around a change
constexpr Signed kMostSteps = 2000; ///< beyond, all lines between the first and last change differ

/// The lines with their ends.
Lines SplitLines(const std::string& text)
{
    Lines lines;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t found = text.find('\n', begin);
        const std::size_t end = found == std::string::npos ? text.size() : found + 1;
        lines.push_back(std::string_view(text).substr(begin, end - begin));
        begin = end;
    }
    return lines;
}

/// A line of the diff: of the first text, of the second, or of both.
struct Step
{
    char mark;
    std::string_view line;
};

using Steps = std::vector<Step>;

/// Finds the shortest edit script of two lists of lines, after E. Myers, "An O(ND) Difference
/// Algorithm and Its Variations", Algorithmica 1 (1986).
class Script
{
public:
    Script(const Lines& newBefore, const Lines& newAfter)
        : before(newBefore),
          after(newAfter),
          countBefore(static_cast<Signed>(before.size())),
          countAfter(static_cast<Signed>(after.size())),
          most(std::min(countBefore + countAfter, kMostSteps)),
          ends(static_cast<std::size_t>(2 * most + 3), 0)
    {
    }

    Steps Find()
    {
        for (Signed steps = 0; steps <= most; ++steps)
        {
            history.push_back(ends);
            if (Advance(steps))
            {
                return Backtrack(steps);
            }
        }
        Steps all;
        for (const std::string_view line : before)
        {
            all.push_back({'-', line});
        }
        for (const std::string_view line : after)
        {
            all.push_back({'+', line});
        }
        return all;
    }

private:
    static Signed& At(std::vector<Signed>& list, Signed diagonal, Signed most)
    {
        return list[static_cast<std::size_t>(diagonal + most + 1)];
    }

    bool IsDown(std::vector<Signed>& list, Signed diagonal, Signed steps) const
    {
        return diagonal == -steps ||
               (diagonal != steps && At(list, diagonal - 1, most) < At(list, diagonal + 1, most));
    }

    /// Goes one step further on each diagonal. True when the ends of both lists are reached.
    bool Advance(Signed steps)
    {
        for (Signed diagonal = -steps; diagonal <= steps; diagonal += 2)
        {
            Signed x = IsDown(ends, diagonal, steps) ? At(ends, diagonal + 1, most)
                                                     : At(ends, diagonal - 1, most) + 1;
            Signed y = x - diagonal;
            while (x < countBefore && y < countAfter &&
                   before[static_cast<std::size_t>(x)] == after[static_cast<std::size_t>(y)])
            {
                ++x;
                ++y;
            }
            At(ends, diagonal, most) = x;
            if (x >= countBefore && y >= countAfter)
            {
                return true;
            }
        }
        return false;
    }

    Steps Backtrack(Signed last)
    {
        Steps result;
        Signed x = countBefore;
        Signed y = countAfter;
        for (Signed steps = last; steps >= 0; --steps)
        {
            std::vector<Signed>& list = history[static_cast<std::size_t>(steps)];
            const Signed diagonal = x - y;
            const bool isDown = IsDown(list, diagonal, steps);
            const Signed from = isDown ? diagonal + 1 : diagonal - 1;
            const Signed startX = steps == 0 ? 0 : At(list, from, most);
            const Signed startY = steps == 0 ? 0 : startX - from;
            while (x > startX && y > startY)
            {
                --y;
                result.push_back({' ', before[static_cast<std::size_t>(--x)]});
            }
            if (steps != 0)
            {
                result.push_back(isDown ? Step{'+', after[static_cast<std::size_t>(--y)]}
                                        : Step{'-', before[static_cast<std::size_t>(--x)]});
            }
        }
        std::reverse(result.begin(), result.end());
        return result;
    }

    const Lines& before;
    const Lines& after;
    const Signed countBefore;
    const Signed countAfter;
    const Signed most;
    std::vector<Signed> ends; ///< how far each diagonal got in `before`
    std::vector<std::vector<Signed>> history;
};

/// Gives the steps from one text to the other; the same lines at both ends are left to themselves.
Steps FindSteps(Lines before, Lines after)
{
    Steps head;
    std::size_t same = 0;
    while (same < before.size() && same < after.size() && before[same] == after[same])
    {
        head.push_back({' ', before[same++]});
    }
    Steps tail;
    while (before.size() > same && after.size() > same && before.back() == after.back())
    {
        tail.push_back({' ', before.back()});
        before.pop_back();
        after.pop_back();
    }
    const auto skipped = static_cast<Signed>(same);
    before.erase(before.begin(), before.begin() + skipped);
    after.erase(after.begin(), after.begin() + skipped);
    const Steps middle = Script(before, after).Find();
    head.insert(head.end(), middle.begin(), middle.end());
    head.insert(head.end(), tail.rbegin(), tail.rend());
    return head;
}

/// The range of a hunk: `3,7`, `3` for one line, and the line before for none.
std::string Range(std::size_t first, std::size_t count)
{
    const std::string begin = std::to_string(count == 0 ? first : first + 1);
    return count == 1 ? begin : begin + "," + std::to_string(count);
}

/// Gives the index behind the hunk whose first change is at `change`.
std::size_t EndOfHunk(const Steps& steps, std::size_t change)
{
    std::size_t end = change;
    for (std::size_t i = change; i < steps.size() && i <= end + 2 * kContext + 1; ++i)
    {
        end = steps[i].mark == ' ' ? end : i;
    }
    return std::min(end + kContext + 1, steps.size());
}

} // namespace

std::string UnifiedDiff(const std::string& name, const std::string& before,
                        const std::string& after)
{
    const Steps steps = FindSteps(SplitLines(before), SplitLines(after));
    std::string text;
    std::size_t lineBefore = 0;
    std::size_t lineAfter = 0;
    std::size_t done = 0;
    while (true)
    {
        const auto changed = std::find_if(steps.begin() + static_cast<Signed>(done), steps.end(),
                                          [](const Step& step)
                                          {
                                              return step.mark != ' ';
                                          });
        if (changed == steps.end())
        {
            return text.empty() ? text : "--- " + name + "\n+++ " + name + "\n" + text;
        }
        const auto change = static_cast<std::size_t>(changed - steps.begin());
        const std::size_t begin = std::max(done, change - std::min(change, kContext));
        lineBefore += begin - done;
        lineAfter += begin - done;
        done = EndOfHunk(steps, change);
        std::string lines;
        std::size_t countBefore = 0;
        std::size_t countAfter = 0;
        for (std::size_t i = begin; i < done; ++i)
        {
            countBefore += steps[i].mark == '+' ? 0 : 1;
            countAfter += steps[i].mark == '-' ? 0 : 1;
            lines += steps[i].mark + std::string(steps[i].line);
            lines += lines.back() == '\n' ? "" : "\n\\ No newline at end of file\n";
        }
        text += "@@ -" + Range(lineBefore, countBefore) + " +" + Range(lineAfter, countAfter) +
                " @@\n" + lines;
        lineBefore += countBefore;
        lineAfter += countAfter;
    }
}

} // namespace vell::repair
