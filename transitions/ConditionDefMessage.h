// VELL: data-driven hierarchical state machines.
// transitions/ConditionDefMessage.h: tests a text parameter for equality, whatever its operator.
#pragma once

#include <vell/ConditionDef.h>

#include <string>

namespace vell
{

/// A condition that tests a text parameter for equality, whatever its operator.
class ConditionDefMessage : public ConditionDef
{
public:
    int Init(const GenericValue& node, HSMAlloc* alloc) override;
    void Uninit() override;
    bool Evaluate(HSM* hsm) override;
    bool ParameterBind() override;

    const std::string* boundValue = nullptr; ///< the parameter's text; null until bound
    char* target = nullptr;                  ///< in the arena
};

} // namespace vell
