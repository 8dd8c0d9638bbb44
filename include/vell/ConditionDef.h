// VELL: data-driven hierarchical state machines.
// include/vell/ConditionDef.h: one test of one parameter against one constant.
#pragma once

#include <vell/BaseDef.h>

namespace vell
{

class HSM;
class ParameterDef;

/// How a condition compares. Every other number never holds.
enum Evaluation : int
{
    EvaluateEqual = 1,
    EvaluateNotEqual = 2,
    EvaluateGreater = 3,
    EvaluateGreaterOrEqual = 4,
    EvaluateLess = 5,
    EvaluateLessOrEqual = 6,
    EvaluateInRange = 10 ///< both bounds belong to the range
};

/// The base of the four conditions. The class follows the condition's own type name, not its
/// parameter's class. A condition belongs to its transition and is in no table; a host reaches it
/// by TransitionDef::conditions.
class VELL_API ConditionDef : public BaseDef
{
public:
    /// The factory: places the condition that the type name of `node` asks for in the arena. Null
    /// with a log line when `node` is no object or `alloc` is null, and without one for another
    /// type or when there is no room.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    /// Reads the operator and the parameter id. Returns 1, or 0 with log lines.
    int Init(const GenericValue& node, HSMAlloc* alloc) override;

    // The order of these is part of the interface; they follow those of BaseDef.

    /// Tells whether the condition holds. An unbound one does not.
    virtual bool Evaluate(HSM* hsm) = 0;
    /// Takes the address of the parameter's value. Returns true, also without a parameter.
    virtual bool ParameterBind() = 0;

    /// Stores the parameter; null is stored too, with a warning.
    void SetParameter(ParameterDef* newParameter);

    unsigned int reservedA = 0;        ///< nobody reads it
    int evaluation = 0;                ///< one of Evaluation, or a number that never holds
    unsigned int parameterID = 0;      ///< never 0 in a condition that loaded
    ParameterDef* parameter = nullptr; ///< not owned; null until bound
    void* reservedB = nullptr;         ///< nobody reads it
};

} // namespace vell
