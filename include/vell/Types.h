// VELL: data-driven hierarchical state machines.
// include/vell/Types.h: node kinds, class masks, action kinds, event kinds and the vocabulary.
#pragma once

#include <durm/VocabularyTypes.h>

namespace vell
{

// The vocabulary's enumerations, under the names that this library's interface uses.
using DURMBaseLib::__CONNECTOR_TYPES__;
using DURMBaseLib::__DURM_BUILDERS__;
using DURMBaseLib::__ePARAMTYPE__;
using DURMBaseLib::__JSONTYPES__;
using DURMBaseLib::__STATE_MACHINE_TYPES__;

// The members of a machine document.
using DURMBaseLib::JSON_Attributes;
using DURMBaseLib::JSON_AttributeType;
using DURMBaseLib::JSON_BuilderType;
using DURMBaseLib::JSON_Children;
using DURMBaseLib::JSON_ClipFlag;
using DURMBaseLib::JSON_ClipName;
using DURMBaseLib::JSON_ClipSecondaryA;
using DURMBaseLib::JSON_ClipSecondaryB;
using DURMBaseLib::JSON_ConditionEvaluation;
using DURMBaseLib::JSON_ConditionParameter;
using DURMBaseLib::JSON_Conditions;
using DURMBaseLib::JSON_ConditionType;
using DURMBaseLib::JSON_ConditionValue;
using DURMBaseLib::JSON_ConnectorType;
using DURMBaseLib::JSON_EntryTarget;
using DURMBaseLib::JSON_ExitConnector;
using DURMBaseLib::JSON_Global;
using DURMBaseLib::JSON_GUID;
using DURMBaseLib::JSON_Head;
using DURMBaseLib::JSON_HeadBuildID;
using DURMBaseLib::JSON_HeadEnterLayer;
using DURMBaseLib::JSON_HeadEnterNode;
using DURMBaseLib::JSON_HeadMachineType;
using DURMBaseLib::JSON_HeadMemory;
using DURMBaseLib::JSON_HeadSubstateRoot;
using DURMBaseLib::JSON_HeadValue84;
using DURMBaseLib::JSON_HeadVersion;
using DURMBaseLib::JSON_ID;
using DURMBaseLib::JSON_Layers;
using DURMBaseLib::JSON_ModelFileName;
using DURMBaseLib::JSON_Name;
using DURMBaseLib::JSON_Nodes;
using DURMBaseLib::JSON_ParameterAssign;
using DURMBaseLib::JSON_ParameterDefault;
using DURMBaseLib::JSON_ParameterResetEachFrame;
using DURMBaseLib::JSON_Parameters;
using DURMBaseLib::JSON_ParameterType;
using DURMBaseLib::JSON_ParentID;
using DURMBaseLib::JSON_ScriptName;
using DURMBaseLib::JSON_Skeleton;
using DURMBaseLib::JSON_SkeletonFileName;
using DURMBaseLib::JSON_SkeletonValue89;
using DURMBaseLib::JSON_SubstateEnter;
using DURMBaseLib::JSON_SubstateExit;
using DURMBaseLib::JSON_TransitionDisabled;
using DURMBaseLib::JSON_TransitionPriority;
using DURMBaseLib::JSON_TransitionSource;
using DURMBaseLib::JSON_TransitionSwitchArgument;
using DURMBaseLib::JSON_TransitionTag;
using DURMBaseLib::JSON_TransitionTagArgument;
using DURMBaseLib::JSON_TransitionTarget;
using DURMBaseLib::JSON_TransitionUnread;
using DURMBaseLib::JSON_Value;

/// What kind of node a definition is (`DefType...`, one number each), and the class masks that
/// select definitions in an iteration (`DefTypes...`, one bit each; see IHSM::BeginDef). No kind
/// has the number 1.
enum eHSMDefTypes : int
{
    DefTypeBase = 0,
    DefTypeEnter = 2,
    DefTypeExit = 3,
    DefTypeGlobal = 4,
    DefTypeAnimClip = 5,
    DefTypeGeneric = 6,
    DefTypeTransition = 7,
    DefTypeCondition = 8,
    DefTypeConnector = 9,
    DefTypeParameter = 10,
    DefTypeSubstate = 11,

    DefTypesState = 0x01,
    DefTypesConnector = 0x02,
    DefTypesParameter = 0x04,
    DefTypesCondition = 0x08,
    DefTypesTransition = 0x10,
    DefTypesSubstate = 0x20,
    DefTypesAll = -1 ///< as an unsigned mask 0xffffffff: every definition
};

/// Why an action performs.
enum __ActType__ : int
{
    ActTypeEntry = 1,     ///< its state is being entered; the time is 0
    ActTypeExecution = 2, ///< its state is being updated; the time is the tick's time step
    ActTypeExit = 3       ///< its state is being left; the time is 0
};

/// The event numbers that this library sends itself. A host may send any other through
/// HSM::FireEvent.
enum __HSMEventType__ : int
{
    HSMEventStateChange = 3,  ///< a StateChangeEvent, to the state change listeners
    HSMEventPlayAnimation = 5 ///< a __PlayAnimEvent__, to the event listeners
};

} // namespace vell
