// VELL: data-driven hierarchical state machines.
// foundation/TreeKeys.h: the keys of a machine's tree.
#pragma once

#include <tessel/Tessel.h>

namespace vell
{

// Interned, so that the table library finds them by their addresses.

// The root.
inline const char* const kFileNameKey = Tessel::InternKey("filename");
inline const char* const kContextKey = Tessel::InternKey("contextInfo");
inline const char* const kParametersKey = Tessel::InternKey("parameterTable");
inline const char* const kNodesKey = Tessel::InternKey("nodeDefTable");

// "contextInfo".
inline const char* const kMainStackKey = Tessel::InternKey("stackStates");
inline const char* const kBlipStackKey = Tessel::InternKey("stackBlip");
inline const char* const kNextStateKey = Tessel::InternKey("nextState");
inline const char* const kPreviousStateKey = Tessel::InternKey("previousState");
inline const char* const kTransitionKey = Tessel::InternKey("transitionTriggered");

// "nodeDefTable"; its other keys are ids.
inline const char* const kGuidKey = Tessel::InternKey("hsmID");
inline const char* const kBuildKey = Tessel::InternKey("buildID");
inline const char* const kModelKey = Tessel::InternKey("modelfilename");
inline const char* const kSkeletonKey = Tessel::InternKey("skelfilename");

// Definitions, parameters and attributes.
inline const char* const kIdKey = Tessel::InternKey("id");
inline const char* const kTypeKey = Tessel::InternKey("type");
inline const char* const kNameKey = Tessel::InternKey("name");
inline const char* const kValueKey = Tessel::InternKey("value");
inline const char* const kDynamicKey = Tessel::InternKey("dynamic");
inline const char* const kAttribsKey = Tessel::InternKey("attribs");
inline const char* const kNodeIdKey = Tessel::InternKey("nodeID");

} // namespace vell
