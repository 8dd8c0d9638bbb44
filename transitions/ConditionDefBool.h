// VELL: data-driven hierarchical state machines.
// transitions/ConditionDefBool.h: tests a bool parameter for equality, whatever its operator.
#pragma once

#include <vell/ConditionDef.h>

namespace vell
{

/// A condition that tests a bool parameter for equality, whatever its operator.
class ConditionDefBool : public ConditionDef
{
public:
    int Init(const GenericValue& node, HSMAlloc* alloc) override;
    void Uninit() override;
    bool Evaluate(HSM* hsm) override;
    bool ParameterBind() override;

    const bool* boundValue = nullptr; ///< the parameter's value; null until bound
    bool target = false;
};

} // namespace vell
