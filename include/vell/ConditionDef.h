// VELL: data-driven hierarchical state machines.
// include/vell/ConditionDef.h: one test of one parameter against one constant.
#pragma once

#include <vell/BaseDef.h>

namespace vell
{

class HSM;
class ParameterDef;

/// How a condition compares. A condition with any other number never holds.
enum Evaluation : int
{
    EvaluateEqual = 1,
    EvaluateNotEqual = 2,
    EvaluateGreater = 3,
    EvaluateGreaterOrEqual = 4,
    EvaluateLess = 5,
    EvaluateLessOrEqual = 6,
    EvaluateInRange = 10 ///< both bounds are inside the range
};

/// The base of the four conditions. The class depends on the condition's own type name, not on the
/// class of its parameter. A condition belongs to its transition and is in no table; a host reaches
/// it through TransitionDef::conditions.
class VELL_API ConditionDef : public BaseDef
{
public:
    /// The factory: places a condition of the type that `node` names in the arena. Null with a log
    /// line when `node` is not an object or `alloc` is null; null without a log line for an unknown
    /// type or when the arena is full.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    /// Reads the operator and the parameter id. Returns 1, or 0 with log lines.
    int Init(const GenericValue& node, HSMAlloc* alloc) override;

    // The order of these is part of the interface; they follow those of BaseDef.

    /// Tells whether the condition holds. An unbound one does not.
    virtual bool Evaluate(HSM* hsm) = 0;
    /// Stores the address of the parameter's value. Returns true even without a parameter.
    virtual bool ParameterBind() = 0;

    /// Stores the parameter, even null, with a warning.
    void SetParameter(ParameterDef* newParameter);

    unsigned int reservedA = 0;        ///< never read
    int evaluation = 0;                ///< one of Evaluation, or a number that never holds
    unsigned int parameterID = 0;      ///< never 0 in a condition that loaded
    ParameterDef* parameter = nullptr; ///< not owned; null until bound
    void* reservedB = nullptr;         ///< never read
};

} // namespace vell
