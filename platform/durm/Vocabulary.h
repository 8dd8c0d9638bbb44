// VELL: data-driven hierarchical state machines.
// platform/durm/Vocabulary.h: every word of the machine document, in one table a kind.
#pragma once

#include <durm/DURMBaseLib.h>

// docs/document-format.md shows these tables to designers; DocumentFormatDocTest.cpp compares them.

namespace DURMBaseLib
{
/// A member of the document.
struct Member
{
    int number;
    __JSONTYPES__ type; ///< The same number; the table is checked for it.
    const char* enumerator;
    const char* text;
};

/// A word that a document writes as a value, and its number.
struct Word
{
    int number;
    const char* text;
};

#define DURM_MEMBER(number, enumerator, text)                                                      \
    Member                                                                                         \
    {                                                                                              \
        number, enumerator, #enumerator, text                                                      \
    }

/// The members, in ascending order of their numbers, which are also those of the header.
inline constexpr Member kMembers[] = {
    DURM_MEMBER(0x00, JSON_Name, "name"),
    DURM_MEMBER(0x01, JSON_ID, "id"),
    DURM_MEMBER(0x02, JSON_ParentID, "parentId"),
    DURM_MEMBER(0x05, JSON_BuilderType, "builder"),
    DURM_MEMBER(0x06, JSON_GUID, "guid"),
    DURM_MEMBER(0x0d, JSON_Attributes, "attributes"),
    DURM_MEMBER(0x11, JSON_ClipName, "clipName"),
    DURM_MEMBER(0x15, JSON_ClipFlag, "clipFlag"),
    DURM_MEMBER(0x20, JSON_ConditionType, "conditionType"),
    DURM_MEMBER(0x21, JSON_ConditionParameter, "parameter"),
    DURM_MEMBER(0x23, JSON_ConditionEvaluation, "operator"),
    DURM_MEMBER(0x24, JSON_ConditionValue, "operand"),
    DURM_MEMBER(0x2b, JSON_ConnectorType, "connectorType"),
    DURM_MEMBER(0x2d, JSON_ParameterType, "parameterType"),
    DURM_MEMBER(0x2e, JSON_ParameterDefault, "default"),
    DURM_MEMBER(0x2f, JSON_ParameterAssign, "assign"),
    DURM_MEMBER(0x32, JSON_ParameterResetEachFrame, "resetEachFrame"),
    DURM_MEMBER(0x3b, JSON_TransitionSwitchArgument, "switchArgument"),
    DURM_MEMBER(0x3d, JSON_Conditions, "conditions"),
    DURM_MEMBER(0x43, JSON_TransitionSource, "source"),
    DURM_MEMBER(0x44, JSON_TransitionTarget, "target"),
    DURM_MEMBER(0x45, JSON_TransitionUnread, "unread"),
    DURM_MEMBER(0x46, JSON_TransitionTagArgument, "tagArgument"),
    DURM_MEMBER(0x47, JSON_TransitionTag, "tag"),
    DURM_MEMBER(0x49, JSON_TransitionPriority, "priority"),
    DURM_MEMBER(0x4a, JSON_TransitionDisabled, "disabled"),
    DURM_MEMBER(0x4c, JSON_Parameters, "parameters"),
    DURM_MEMBER(0x4f, JSON_Nodes, "nodes"),
    DURM_MEMBER(0x51, JSON_Skeleton, "skeleton"),
    DURM_MEMBER(0x55, JSON_Layers, "layers"),
    DURM_MEMBER(0x5f, JSON_Value, "value"),
    DURM_MEMBER(0x60, JSON_AttributeType, "attributeType"),
    DURM_MEMBER(0x61, JSON_SkeletonFileName, "skeletonFile"),
    DURM_MEMBER(0x62, JSON_ModelFileName, "modelFile"),
    DURM_MEMBER(0x65, JSON_Children, "children"),
    DURM_MEMBER(0x66, JSON_EntryTarget, "entryTarget"),
    DURM_MEMBER(0x67, JSON_ExitConnector, "exitConnector"),
    DURM_MEMBER(0x79, JSON_ScriptName, "scriptName"),
    DURM_MEMBER(0x7e, JSON_Head, "head"),
    DURM_MEMBER(0x7f, JSON_HeadEnterLayer, "enterLayer"),
    DURM_MEMBER(0x80, JSON_HeadEnterNode, "enterNode"),
    DURM_MEMBER(0x82, JSON_HeadMachineType, "machineType"),
    DURM_MEMBER(0x83, JSON_HeadVersion, "version"),
    DURM_MEMBER(0x84, JSON_HeadValue84, "value84"),
    DURM_MEMBER(0x85, JSON_HeadSubstateRoot, "substateRoot"),
    DURM_MEMBER(0x86, JSON_HeadMemory, "memory"),
    DURM_MEMBER(0x87, JSON_Global, "global"),
    DURM_MEMBER(0x89, JSON_SkeletonValue89, "value89"),
    DURM_MEMBER(0x90, JSON_SubstateEnter, "enter"),
    DURM_MEMBER(0x91, JSON_SubstateExit, "exit"),
    DURM_MEMBER(0x9a, JSON_HeadBuildID, "buildId"),
    DURM_MEMBER(0xa5, JSON_ClipSecondaryB, "secondaryB"),
    DURM_MEMBER(0xa6, JSON_ClipSecondaryA, "secondaryA"),
};

#undef DURM_MEMBER

inline constexpr Word kParameterTypes[] = {
    {PARAM_Bool, "bool"},     {PARAM_Integer, "integer"}, {PARAM_Float, "float"},
    {PARAM_Float2, "float2"}, {PARAM_Float3, "float3"},   {PARAM_Float4, "float4"},
    {PARAM_Text, "text"},     {PARAM_Message, "message"},
};

inline constexpr Word kBuilders[] = {
    {BUILDER_Base, "base"},
    {BUILDER_Connector, "connector"},
    {BUILDER_Transition, "transition"},
    {BUILDER_Condition, "condition"},
    {BUILDER_Enter, "enter"},
    {BUILDER_Exit, "exit"},
    {BUILDER_Generic, "generic"},
    {BUILDER_AnimClip, "animClip"},
    {BUILDER_Global, "global"},
    {BUILDER_Substate, "substate"},
};

// None of these may be "Enter" or "Exit" in any case: connectors know those two words besides.
inline constexpr Word kConnectors[] = {
    {CONNECTOR_Entering, "entering"},
    {CONNECTOR_Exiting, "exiting"},
    {CONNECTOR_In, "in"},
    {CONNECTOR_Out, "out"},
};

inline constexpr Word kOperators[] = {
    {1, "equal"}, {2, "notEqual"},    {3, "greater"}, {4, "greaterOrEqual"},
    {5, "less"},  {6, "lessOrEqual"}, {10, "range"},
};

inline constexpr Word kMachineTypes[] = {
    {HSMTYPE_Character, "character"},
    {HSMTYPE_Prop, "prop"},
    {HSMTYPE_Camera, "camera"},
};

// The inputs a parameter can be bound to. 2 to 7 are analog devices, 10 to 23 the buttons of a pad
// and 26 to 51 the letters of a keyboard: parameters report a class for these three ranges.
inline constexpr Word kAssigns[] = {
    {1, "host"},
    {2, "leftStick"},
    {3, "rightStick"},
    {4, "leftTrigger"},
    {5, "rightTrigger"},
    {6, "mouseMove"},
    {7, "mouseWheel"},
    {8, "gyro"},
    {9, "accelerometer"},
    {10, "buttonSouth"},
    {11, "buttonEast"},
    {12, "buttonWest"},
    {13, "buttonNorth"},
    {14, "padUp"},
    {15, "padDown"},
    {16, "padLeft"},
    {17, "padRight"},
    {18, "leftShoulder"},
    {19, "rightShoulder"},
    {20, "leftStickPress"},
    {21, "rightStickPress"},
    {22, "start"},
    {23, "select"},
    {24, "touchPosition"},
    {25, "touchPressure"},
    {26, "keyA"},
    {27, "keyB"},
    {28, "keyC"},
    {29, "keyD"},
    {30, "keyE"},
    {31, "keyF"},
    {32, "keyG"},
    {33, "keyH"},
    {34, "keyI"},
    {35, "keyJ"},
    {36, "keyK"},
    {37, "keyL"},
    {38, "keyM"},
    {39, "keyN"},
    {40, "keyO"},
    {41, "keyP"},
    {42, "keyQ"},
    {43, "keyR"},
    {44, "keyS"},
    {45, "keyT"},
    {46, "keyU"},
    {47, "keyV"},
    {48, "keyW"},
    {49, "keyX"},
    {50, "keyY"},
    {51, "keyZ"},
    {52, "pointer"},
};
} // namespace DURMBaseLib
