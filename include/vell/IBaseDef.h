// VELL: data-driven hierarchical state machines.
// include/vell/IBaseDef.h: a node of the document as a host sees it.
#pragma once

#include <vell/Export.h>
#include <vell/Types.h>

namespace vell
{

class Action;
class AttribBase;

/// A node definition: what the document says about one state, transition, connector or parameter.
/// Definitions belong to their machine and stay valid until IHSM::Uninit.
class VELL_API IBaseDef
{
public:
    // The order of these is part of the interface.

    virtual ~IBaseDef() = default;
    /// Gives the attribute named `name`, or null; of several, the one whose name has the highest
    /// address. It belongs to the definition.
    virtual AttribBase* GetAttrib(const char* name) = 0;
    /// Gives the node's name, or null. The text belongs to the document.
    virtual const char* GetName() = 0;
    /// Gives the node's id; 0 means none.
    virtual unsigned int GetID() = 0;
    /// Gives the id of the node around this one; for a transition, that of its source state.
    virtual unsigned int GetParentID() = 0;
    /// Gives the kind, one of the `DefType...` numbers.
    virtual eHSMDefTypes GetType() = 0;
    /// Gives the script name, or null when the document has none or an empty one.
    virtual const char* GetScriptName() = 0;
    /// Adds `action` at the end of the enter list. The definition owns it from then on. Returns 1,
    /// or 0 with a log line for null.
    virtual int RegisterEnter(Action* action) = 0;
    /// Like `RegisterEnter`, for the exit list.
    virtual int RegisterExit(Action* action) = 0;
    /// Like `RegisterEnter`, for the execute list.
    virtual int RegisterExecute(Action* action) = 0;
    /// Gives the first action of the execute list, or null. The next ones follow by Action::next.
    virtual Action* GetActions() = 0;
    /// Gives the first action of the enter list, or null.
    virtual Action* GetEnterActions() = 0;
    /// Gives the first action of the exit list, or null.
    virtual Action* GetExitActions() = 0;
    /// Removes `action` from the execute list and deletes it. Returns 1, or 0 when it is null (with
    /// a log line) or not on that list. Enter and exit actions cannot be removed one by one. The
    /// previous action is found through Action::prev, which the host must have set.
    virtual int RemoveAction(Action* action) = 0;
    /// Replaces the class mask.
    virtual void SetFlags(unsigned int flags) = 0;
    /// Gives the class mask, a set of the `DefTypes...` bits.
    virtual unsigned int GetFlags() const = 0;
};

} // namespace vell
