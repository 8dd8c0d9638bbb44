// VELL: data-driven hierarchical state machines.
// include/durm/VocabularyTypes.h: the numbers of the vocabulary, without its functions.
#pragma once

namespace DURMBaseLib
{

/// The members of a machine document. The numbers are fixed; `GetJsonName` gives the names.
enum __JSONTYPES__ : int
{
    JSON_Name = 0x00,
    JSON_ID = 0x01,
    JSON_ParentID = 0x02,
    JSON_BuilderType = 0x05,
    JSON_GUID = 0x06,
    JSON_Attributes = 0x0d,
    JSON_ClipName = 0x11,
    JSON_ClipFlag = 0x15,
    JSON_ConditionType = 0x20,
    JSON_ConditionParameter = 0x21,
    JSON_ConditionEvaluation = 0x23,
    JSON_ConditionValue = 0x24,
    JSON_ConnectorType = 0x2b,
    JSON_ParameterType = 0x2d,
    JSON_ParameterDefault = 0x2e,
    JSON_ParameterAssign = 0x2f,
    JSON_ParameterResetEachFrame = 0x32,
    JSON_TransitionSwitchArgument = 0x3b,
    JSON_Conditions = 0x3d,
    JSON_TransitionSource = 0x43,
    JSON_TransitionTarget = 0x44,
    JSON_TransitionUnread = 0x45,
    JSON_TransitionTagArgument = 0x46,
    JSON_TransitionTag = 0x47,
    JSON_TransitionPriority = 0x49,
    JSON_TransitionDisabled = 0x4a,
    JSON_Parameters = 0x4c,
    JSON_Nodes = 0x4f,
    JSON_Skeleton = 0x51,
    JSON_Layers = 0x55,
    JSON_Value = 0x5f,
    JSON_AttributeType = 0x60,
    JSON_SkeletonFileName = 0x61,
    JSON_ModelFileName = 0x62,
    JSON_Children = 0x65,
    JSON_EntryTarget = 0x66,
    JSON_ExitConnector = 0x67,
    JSON_ScriptName = 0x79,
    JSON_Head = 0x7e,
    JSON_HeadEnterLayer = 0x7f,
    JSON_HeadEnterNode = 0x80,
    JSON_HeadMachineType = 0x82,
    JSON_HeadVersion = 0x83,
    JSON_HeadValue84 = 0x84,
    JSON_HeadSubstateRoot = 0x85,
    JSON_HeadMemory = 0x86,
    JSON_Global = 0x87,
    JSON_SkeletonValue89 = 0x89,
    JSON_SubstateEnter = 0x90,
    JSON_SubstateExit = 0x91,
    JSON_HeadBuildID = 0x9a,
    JSON_ClipSecondaryB = 0xa5,
    JSON_ClipSecondaryA = 0xa6
};

/// The types of parameters, conditions and attributes.
enum __ePARAMTYPE__ : int
{
    PARAM_None = 0,
    PARAM_Bool = 1,
    PARAM_Integer = 2,
    PARAM_Float = 3,
    PARAM_Float2 = 4,
    PARAM_Float3 = 5,
    PARAM_Float4 = 6,
    PARAM_Text = 7, ///< Has a name, but documents must not use it; texts are `PARAM_Message`.
    PARAM_Message = 8
};

/// The standard builders of nodes. A host may register others under its own numbers.
enum __DURM_BUILDERS__ : int
{
    BUILDER_None = 0,
    BUILDER_Base = 1,
    BUILDER_Connector = 2,
    BUILDER_Transition = 4,
    BUILDER_Condition = 5,
    BUILDER_Enter = 8,
    BUILDER_Exit = 9,
    BUILDER_Generic = 10,
    BUILDER_AnimClip = 21,
    BUILDER_Global = 23,
    BUILDER_Substate = 24
};

/// The kinds of connectors: odd numbers enter a substate, even ones leave it.
enum __CONNECTOR_TYPES__ : int
{
    CONNECTOR_None = 0,
    CONNECTOR_Entering = 1,
    CONNECTOR_Exiting = 2,
    CONNECTOR_In = 3,
    CONNECTOR_Out = 4
};

/// What a machine controls; the library only stores it for the host.
enum __STATE_MACHINE_TYPES__ : int
{
    HSMTYPE_None = 0,
    HSMTYPE_Character = 1,
    HSMTYPE_Prop = 2,
    HSMTYPE_Camera = 3
};

} // namespace DURMBaseLib
