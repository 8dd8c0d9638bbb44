// VELL: data-driven hierarchical state machines.
// include/vell/Action.h: a host's behaviour on a state.
#pragma once

#include <vell/Export.h>
#include <vell/Types.h>

namespace vell
{

class BaseDef;

/// A piece of host behaviour that a definition runs when its state is entered, updated or left.
/// A host derives from it and overrides `Perform`. An action that is put on a definition
/// (IBaseDef::RegisterEnter, RegisterExecute, RegisterExit) is deleted by that definition: by
/// IBaseDef::RemoveAction and when the machine is uninitialised; it must come from `new`, and one
/// action is on one list of one definition.
class VELL_API Action
{
public:
    // The order of these is part of the interface.

    /// Nobody calls this one; it is the host's own. Returns 1.
    virtual int Init();
    virtual ~Action();
    /// Acts. `timeStep` is the frame's, in the host's unit, for an execution, and 0 for an entry
    /// and an exit. Nobody looks at the result. Returns 1.
    virtual int Perform(__ActType__ type, float timeStep);
    /// Hears which definition the action was put on, before it is in the list.
    virtual void SetOwner(BaseDef* owner);

    Action() = default;
    Action(const Action&) = default;
    Action& operator=(const Action&) = default;

    Action* next = nullptr; ///< the chain of a definition's list, null at the end
    Action* prev = nullptr; ///< the host's: registration never writes it; removal reads it, and
                            ///< writes that of the action behind
    unsigned int id = 0;    ///< the key of IHSM::RegisterAction and IHSM::FindAction
};

} // namespace vell
