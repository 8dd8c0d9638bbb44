// VELL: data-driven hierarchical state machines.
// foundation/TreeKeys.h: the keys of a machine's tree.
#pragma once

namespace vell
{

// The root.
constexpr const char* kFileNameKey = "filename";
constexpr const char* kContextKey = "contextInfo";
constexpr const char* kParametersKey = "parameterTable";
constexpr const char* kNodesKey = "nodeDefTable";

// "contextInfo".
constexpr const char* kMainStackKey = "stackStates";
constexpr const char* kBlipStackKey = "stackBlip";
constexpr const char* kNextStateKey = "nextState";
constexpr const char* kPreviousStateKey = "previousState";
constexpr const char* kTransitionKey = "transitionTriggered";

// "nodeDefTable"; its other keys are ids.
constexpr const char* kGuidKey = "hsmID";
constexpr const char* kBuildKey = "buildID";
constexpr const char* kModelKey = "modelfilename";
constexpr const char* kSkeletonKey = "skelfilename";

// Definitions, parameters and attributes.
constexpr const char* kIdKey = "id";
constexpr const char* kTypeKey = "type";
constexpr const char* kNameKey = "name";
constexpr const char* kValueKey = "value";
constexpr const char* kDynamicKey = "dynamic";
constexpr const char* kAttribsKey = "attribs";
constexpr const char* kNodeIdKey = "nodeID";

} // namespace vell
