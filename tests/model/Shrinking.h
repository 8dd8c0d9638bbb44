// VELL: data-driven hierarchical state machines.
// tests/model/Shrinking.h: makes a failing case small.
#pragma once

#include "tests/model/ModelCase.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace model
{

/// Takes things away from a case for as long as the case keeps failing. `C` has a field `document`.
template <class C>
class Shrinker
{
public:
    using Predicate = std::function<bool(const C&)>;

    Shrinker(C startCase, Predicate failsPredicate)
        : best(std::move(startCase)), fails(std::move(failsPredicate))
    {
    }

    C& Best()
    {
        return best;
    }
    bool HasTrials() const
    {
        return trials < kMaxTrials;
    }

    /// Takes elements off the list that `select` gives of a case: halves first, then ever smaller
    /// pieces down to single ones. Returns true when something went, as do the others.
    template <class Select>
    bool ShrinkList(Select select)
    {
        bool isSmaller = false;
        std::size_t piece = std::max<std::size_t>(select(best).size(), 1);
        while (piece > 0)
        {
            std::size_t begin = 0;
            while (begin < select(best).size() && HasTrials())
            {
                C candidate = best;
                auto& list = select(candidate);
                const auto at = [&list](std::size_t index)
                {
                    return list.begin() + static_cast<std::ptrdiff_t>(index);
                };
                list.erase(at(begin), at(std::min(begin + piece, list.size())));
                if (Takes(std::move(candidate)))
                {
                    isSmaller = true;
                }
                else
                {
                    begin += piece;
                }
            }
            piece /= 2;
        }
        return isSmaller;
    }

    /// Tries `change`, where it would simplify anything.
    template <class Change>
    bool Simplify(Change change, bool isWorthIt)
    {
        if (!isWorthIt)
        {
            return false;
        }
        C candidate = best;
        change(candidate);
        return Takes(std::move(candidate));
    }

    /// Takes away nodes, layers, parameters, and what nodes have.
    bool ShrinkDocument()
    {
        bool isSmaller = false;
        for (std::size_t layer = 0; layer < best.document.layers.size(); ++layer)
        {
            isSmaller |= ShrinkList([layer](C & c) -> auto& { return c.document.layers[layer]; });
        }
        isSmaller |= ShrinkList([](C & c) -> auto& { return c.document.layers; });
        isSmaller |= ShrinkList([](C & c) -> auto& { return c.document.globals; });
        isSmaller |= ShrinkList([](C & c) -> auto& { return c.document.parameters; });
        for (std::size_t layer = 0; layer < best.document.layers.size(); ++layer)
        {
            isSmaller |= ShrinkNodes([layer](C & c) -> auto& { return c.document.layers[layer]; });
        }
        isSmaller |= ShrinkNodes([](C & c) -> auto& { return c.document.globals; });
        return isSmaller;
    }

private:
    static constexpr int kMaxTrials = 6000;

    template <class Select>
    bool ShrinkNodes(Select select)
    {
        bool isSmaller = false;
        for (std::size_t index = 0; index < select(best).size(); ++index)
        {
            isSmaller |= ShrinkList([&](C & c) -> auto& { return select(c)[index].children; });
            isSmaller |= ShrinkList([&](C & c) -> auto& { return select(c)[index].conditions; });
            isSmaller |= Simplify(
                [&](C& c)
                {
                    select(c)[index].disabled = false;
                },
                select(best)[index].disabled);
            isSmaller |= Simplify(
                [&](C& c)
                {
                    select(c)[index].hasPriority = false;
                    select(c)[index].priority = 5;
                },
                select(best)[index].hasPriority);
            isSmaller |= Simplify(
                [&](C& c)
                {
                    select(c)[index].builder = DURMBaseLib::BUILDER_Generic;
                },
                select(best)[index].builder == DURMBaseLib::BUILDER_AnimClip);
        }
        return isSmaller;
    }

    bool Takes(C candidate)
    {
        ++trials;
        if (!fails(candidate))
        {
            return false;
        }
        best = std::move(candidate);
        return true;
    }

    C best;
    Predicate fails;
    int trials = 0;
};

} // namespace model
