// VELL: data-driven hierarchical state machines.
// transitions/ConditionFloatDef.h: compares a float parameter.
#pragma once

#include <vell/ConditionDef.h>

namespace vell
{

/// A condition that compares a float parameter.
class ConditionFloatDef : public ConditionDef
{
public:
    int Init(const GenericValue& node, HSMAlloc* alloc) override;
    void Uninit() override;
    bool Evaluate(HSM* hsm) override;
    bool ParameterBind() override;

    const float* boundValue = nullptr; ///< the parameter's value; null until bound
    float target = 0.0f;               ///< lower bound of a range
    float rangeHigh = 0.0f;            ///< upper bound of a range
};

} // namespace vell
