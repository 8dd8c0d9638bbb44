// VELL: data-driven hierarchical state machines.
// tools/vell/GraphTheme.cpp: the colours of pictures.
#include "tools/vell/GraphTheme.h"

#include <algorithm>
#include <iterator>

namespace vell::tool
{

const Colour& LevelGround(std::size_t depth)
{
    return kLevelGrounds[std::min(depth, std::size(kLevelGrounds) - 1)];
}

const Colour& EdgeColour(std::size_t number)
{
    return kEdgeColours[number % std::size(kEdgeColours)];
}

std::vector<Colour> AllColours()
{
    std::vector<Colour> all{kGround,  kInk,   kFaintInk, kBox,    kLevelBox, kGlobalBox,
                            kMarkBox, kFrame, kUnknown,  kActive, kWaiting,  kLitInk};
    all.insert(all.end(), std::begin(kLevelGrounds), std::end(kLevelGrounds));
    all.insert(all.end(), std::begin(kEdgeColours), std::end(kEdgeColours));
    return all;
}

} // namespace vell::tool
