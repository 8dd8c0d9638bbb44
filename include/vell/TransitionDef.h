// VELL: data-driven hierarchical state machines.
// include/vell/TransitionDef.h: from one state to another, when any one of its conditions holds.
#pragma once

#include <vell/BaseDef.h>
#include <vell/Callbacks.h>

#include <vector>

namespace vell
{

class ConditionDef;
class HSM;

/// A transition. It holds when any one of its conditions or triggers does. It changes nothing
/// itself: its state tests it, and the machine does the rest. A host reaches it through
/// SMState::GetTransitionAt, IHSM::FindDef or UpdateResult::transition. Writes to the fields count
/// from the next tick on; `priority` counts when the transitions are sorted.
class VELL_API TransitionDef : public BaseDef
{
public:
    /// The factory: places the definition in the arena, not yet initialised. Null with a log line
    /// when `node` is not an object or the arena is full.
    static TransitionDef* Create(const GenericValue& node, HSMAlloc* alloc);

    /// Reads the transition. Bad conditions do not fail it. Returns 1, or 0 with log lines.
    int Init(const GenericValue& node, HSMAlloc* alloc) override;

    /// Creates the conditions of an array, up to the first bad one. Returns 1, or 0 with log lines.
    int InitConditions(const GenericValue& array, HSMAlloc* alloc);

    /// Adds `trigger`, even if it was added before. Returns 1, or 0 with a log line for null.
    int RegisterCondition(Trigger trigger);

    /// Tells whether the transition holds: 1 or 0. All triggers up to the first that returns true
    /// are called even when a condition holds.
    int HandleConditions(HSM* hsm);

    friend Tessel::KVTable ReleaseStorage(TransitionDef& def, ArenaLink::AtEnd atEnd)
    {
        std::vector<ConditionDef*>().swap(def.conditions);
        std::vector<Trigger>().swap(def.triggers);
        return ReleaseStorage(static_cast<BaseDef&>(def), atEnd);
    }

    bool disabled = false;           ///< never evaluated
    int tag = 0;                     ///< the host's; copied to UpdateResult::tag
    int tagArgument = 0;             ///< the host's
    int priority = 5;                ///< smaller is tested first; larger is stronger as a blip
    float switchArgument = 0.0f;     ///< passed to the state-switch callback
    unsigned int reserved = 0;       ///< never read
    unsigned int targetID = 0;       ///< state to activate; 0 cannot fire
    unsigned int conditionCount = 0; ///< length of the document's condition array
    ConditionDef** conditionArray = nullptr; ///< in the arena, possibly not aligned
    std::vector<ConditionDef*> conditions;   ///< in document order, in the arena; null is skipped
    std::vector<Trigger> triggers;           ///< in the order of registration
};

} // namespace vell
