// VELL: data-driven hierarchical state machines.
// transitions/ConditionDefInteger.h: compares an integer parameter.
#pragma once

#include <vell/ConditionDef.h>

namespace vell
{

/// A condition that compares an integer parameter.
class ConditionDefInteger : public ConditionDef
{
public:
    int Init(const GenericValue& node, HSMAlloc* alloc) override;
    void Uninit() override;
    bool Evaluate(HSM* hsm) override;
    bool ParameterBind() override;

    const int* boundValue = nullptr; ///< the parameter's value; null until bound
    int target = 0;                  ///< lower bound of a range
    int rangeHigh = 0;               ///< upper bound of a range
};

} // namespace vell
