// VELL: data-driven hierarchical state machines.
// include/vell/ParamBroadcast.h: the record by which host input reaches parameters.
#pragma once

#include <cstddef>

namespace vell
{

/// One input of the host, as `OnBroadcastEvent` of a parameter takes it. The class of the parameter
/// decides which member of the union it reads. For event 6 the record is only the value: one to
/// four floats.
struct ParamBroadcast
{
    int subKind;             ///< a bool parameter takes event 1 only when this is 1
    int binding;             ///< compared with the parameter's `GetAssign`
    unsigned char unread[8]; ///< for the host's use
    union
    {
        int boolean;     ///< bool input; non-zero is true
        float vector[4]; ///< three or four floats of a vector input
        struct
        {
            float unused;    ///< before the scalar input
            float scalar[2]; ///< one float, or the two of a two-float input
        } stick;
    } input;
};

static_assert(sizeof(ParamBroadcast) == 32, "the record ends with the fourth float");
static_assert(offsetof(ParamBroadcast, binding) == 4, "the binding number is at byte 4");
static_assert(offsetof(ParamBroadcast, input) == 16, "the input starts at byte 16");
static_assert(offsetof(ParamBroadcast, input.stick.scalar) == 20, "the scalar is at byte 20");

} // namespace vell
