// VELL: data-driven hierarchical state machines.
// document/VectorWidth.h: how many floats a type holds.
#pragma once

#include <vell/Types.h>

namespace vell
{

/// Gives how many floats a parameter type holds as a vector; 0 for the others.
constexpr int VectorWidth(int type)
{
    const bool isVector = type >= DURMBaseLib::PARAM_Float2 && type <= DURMBaseLib::PARAM_Float4;
    return isVector ? type - DURMBaseLib::PARAM_Float2 + 2 : 0;
}

} // namespace vell
