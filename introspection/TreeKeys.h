// VELL: data-driven hierarchical state machines.
// introspection/TreeKeys.h: the keys of a machine's tree.
#pragma once

namespace vell
{

constexpr const char* kContextKey = "contextInfo";
constexpr const char* kMainStackKey = "stackStates";
constexpr const char* kBlipStackKey = "stackBlip";
constexpr const char* kNextStateKey = "nextState";
constexpr const char* kPreviousStateKey = "previousState";
constexpr const char* kTransitionKey = "transitionTriggered";
constexpr const char* kParametersKey = "parameterTable";
constexpr const char* kNodesKey = "nodeDefTable";

} // namespace vell
