// VELL: data-driven hierarchical state machines.
// definitions/AttribTypes.h: the names of the types of attributes.
#pragma once

#include <vell/Types.h>

namespace vell
{

/// A type of attribute, and the parameter type that it is kept as.
struct AttribType
{
    const char* name; ///< compared without case
    int type;
};

constexpr AttribType kAttribTypes[] = {
    {"QString", DURMBaseLib::PARAM_Message},  {"int", DURMBaseLib::PARAM_Integer},
    {"double", DURMBaseLib::PARAM_Float},     {"QVector2D", DURMBaseLib::PARAM_Float2},
    {"QVector3D", DURMBaseLib::PARAM_Float3}, {"QVector4D", DURMBaseLib::PARAM_Float4},
    {"bool", DURMBaseLib::PARAM_Bool},
};

} // namespace vell
