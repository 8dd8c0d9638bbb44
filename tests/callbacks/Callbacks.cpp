// VELL: data-driven hierarchical state machines.
// tests/callbacks/Callbacks.cpp: the table of callbacks.
#include "tests/callbacks/Pairs.h"

namespace vell::callbacks
{

const std::vector<Callback>& Callbacks()
{
    static const std::vector<Callback> callbacks = {
        // Actions.
        {"enter action of a plain state", 1},
        {"execute action of a plain state", 1},
        {"execute action of a plain state", 5}, // by when nothing was to be done for some ticks
        {"exit action of a plain state", 1},
        {"enter action of a clip", 1},
        {"execute action of a clip", 1},
        {"exit action of a clip", 1},
        {"enter action of a level", 1},
        {"execute action of a level", 1},
        {"exit action of a level", 1},
        {"enter action of a level's child", 1},
        {"enter action of an exit node", 2}, // as its level is resumed
        {"execute action of a level's child", 1},
        {"exit action of a level's child", 1},
        {"enter action of an enter node", 1},
        {"execute action of an enter node", 1},
        {"exit action of an enter node", 1},
        {"enter action of an exit node", 1},
        {"enter action of a state in a blip", 1},
        {"execute action of a state in a blip", 1},
        {"exit action of a state in a blip", 1},
        {"enter action of an exit node in a blip", 1},
        {"enter action of a host's state", 1},
        {"execute action of a host's state", 1},
        {"exit action of a host's state", 1},
        {"execute action by default", 1},
        {"SetOwner of an action", 1},
        {"destructor of a removed action", 1},
        {"destructor of an action: enter", 1},
        {"destructor of an action: execute", 1},
        {"destructor of an action: exit", 1},
        {"destructor of an action: parameter", 1},
        // Hooks.
        {"action factory", 1},
        {"trigger of a state", 1},
        {"trigger of the global state", 1},
        {"state change listener", 1},
        {"event listener on a clip", 1},
        {"event listener on the host's event", 1},
        {"state-switch callback at the start", 1},
        {"state-switch callback in a transition", 1},
        {"state-switch callback in a blip", 1},
        // The host's classes.
        {"RegisterBuilders of a host's machine", 1},
        {"definition factory", 1},
        {"host definition's constructor", 1},
        {"host definition's Init", 1},
        {"host definition's Init", 2}, // of a global node
        {"host definition's InitKVTable", 1},
        {"host definition's GetName", 2},
        {"host definition's GetID", 3},
        {"host definition's GetParentID", 1},
        {"host definition's GetType", 2},
        {"host definition's GetScriptName", 1},
        {"host definition's GetFlags", 1},
        {"host definition's RegisterExecute", 1},
        {"host definition's GetEnterActions", 1},
        {"host definition's GetActions", 1},
        {"host definition's GetExitActions", 1},
        {"host definition's Uninit", 1},
        {"state factory", 1},
        {"host state's constructor", 1},
        {"host state's Init", 1},
        {"host state's Enter", 1},
        {"host state's Update", 1},
        {"host state's Execute", 1},
        {"host state's ProcessTransitions", 1},
        {"host state's HandleInput", 1},
        {"host state's Exit", 1},
        {"host condition's ParameterBind", 1},
        {"host condition's Evaluate", 1},
        {"SetValue of a host's parameter", 1},
        {"OnBroadcastEvent of a host's parameter", 1},
        // Tables.
        {"listener on an integer parameter's value", 1},
        {"listener on a bool parameter's value", 1},
        {"listener on the value of a parameter that is reset", 2},
        {"listener on a vector parameter's value", 1},
        {"listener on a message's value", 1},
        {"listener on a parameter's whole table", 1},
        {"listener on an attribute's value", 1},
        {"listener on \"nextState\"", 1},
        {"listener on \"nextState\"", 2}, // as it is cleared
        {"listener on \"previousState\"", 1},
        {"listener on \"transitionTriggered\"", 1},
        {"listener on \"stackStates\"", 1},
        {"listener on the root", 1},
        // The log.
        {"log callback on \"Created new BaseDef\"", 1},
        {"log callback on \"Assigned a Default Action\"", 1},
        {"log callback on \"Activated State\"", 1},
        {"log callback on \"[Enter]\"", 1},
        {"log callback on \"[Enter]\"", 4}, // of a level
        {"log callback on \"[Exit]\"", 1},
        {"log callback on \"Transition satisfied\"", 1},
        {"log callback on \"State Blip\"", 1},
        {"log callback on \"Revert to Previous State\"", 1},
        {"log callback on an exit node's line", 1},
        {"log callback on a parameter that is not there", 1},
        {"log callback on a failed check", 1},
    };
    return callbacks;
}

} // namespace vell::callbacks
