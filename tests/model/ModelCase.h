// VELL: data-driven hierarchical state machines.
// tests/model/ModelCase.h: one case of the model test, a document and what is done to its machine.
#pragma once

#include <vell/Types.h>

#include <array>
#include <string>
#include <vector>

namespace model
{

using Ids = std::vector<unsigned int>;

/// A value of any parameter type; the type tells which field counts.
struct Value
{
    bool flag = false;
    int whole = 0;
    std::array<float, 4> reals = {};
    std::string text;
};

struct Parameter
{
    std::string name;
    int type = vell::__ePARAMTYPE__::PARAM_Bool;
    std::string assign;    ///< input name, empty for none
    bool hasReset = false; ///< goes back to its default every tick
    Value initial;

    unsigned int Id() const;
};

/// What the document gets wrong in a condition, beside operands that do not fit.
enum class Mistake
{
    None,
    NoOperator,
    NoOperand,
    VectorType
};

struct Condition
{
    int type = vell::__ePARAMTYPE__::PARAM_Bool;
    unsigned int parameterId = 0;
    int evaluation = 1;    ///< operator number; one without a name is written as an unknown word
    bool hasRange = false; ///< the operand is `value.text` whatever the type
    Value value;
    Mistake mistake = Mistake::None;
};

struct Node
{
    int builder = vell::__DURM_BUILDERS__::BUILDER_Generic;
    unsigned int id = 0;
    unsigned int parentId = 0;
    Ids children;

    unsigned int entryTarget = 0; ///< enter nodes; exit nodes have none
    unsigned int enterId = 0;     ///< substates
    unsigned int exitId = 0;
    std::string clipName; ///< clips; empty for none
    bool clipFlag = false;

    // Transitions.
    unsigned int targetId = 0;
    bool hasPriority = false;
    int priority = 5;
    bool disabled = false;
    float switchArgument = 0.0f;
    std::vector<Condition> conditions;

    std::string Name() const;
};

/// An action that the host puts on the definition of a node. It may write an integer parameter.
struct ActionPlan
{
    unsigned int nodeId = 0;
    vell::__ActType__ list = vell::ActTypeEntry;
    unsigned int parameterId = 0; ///< 0 writes nothing
    int value = 0;
};

struct Document
{
    unsigned int startId = 0;
    std::vector<Parameter> parameters;
    std::vector<std::vector<Node>> layers;
    std::vector<Node> globals;
};

enum class InputKind
{
    Tick,
    Start,
    SetParameter,
    ToolWrite,
    ParameterEvent,
    Broadcast,
    SetMessage,
    CreateParameter,
    Rebind,
    PushId,
    PushCurrent,
    Pop,
    RevertToPrevious,
    RevertToStart,
    ChangeState,
    AssignTrigger,
    SubscribeState,
    UnsubscribeState,
    SubscribeTransition,
    SubscribeEvents,
    UnsubscribeEvents,
    FireEvent,
    SetCallback,
    SetContext
};

/// One call of the host.
struct Input
{
    InputKind kind = InputKind::Tick;
    unsigned int id = 0; ///< a node or a parameter
    int number = 0;      ///< trigger, listener, event, run-time parameter, or callback on or off
    float time = 0.0f;
    Value value;
    std::array<int, 8> record = {}; ///< bytes of a parameter event
    Ids stack;                      ///< a context, and its last change
    Ids blip;
    std::array<unsigned int, 3> change = {}; ///< next state, previous state, transition
};

struct Case
{
    Document document;
    std::vector<ActionPlan> actions;
    std::vector<Input> inputs;
};

constexpr int kTriggerCount = 4;
constexpr int kListenerCount = 3;
/// This one takes listener 0 off the list that is calling it.
constexpr int kRemovingListener = 2;
/// The parameters that a host may make while the machine runs: bool, integer, float, message.
constexpr int kRuntimeParameterCount = 4;
Parameter RuntimeParameter(int number);

/// What trigger `number` answers to its call `count`, counted from 1.
bool TriggerHolds(int number, unsigned int count);

std::string WriteDocument(const Document& document);
std::string Describe(const Input& input);
std::string Describe(const ActionPlan& action);
std::string DescribeValue(const Value& value);

/// The name of the first node with this id, or one that no node has.
std::string NodeName(const Document& document, unsigned int id);
/// The name of the parameter with this id, made at run time or not, or one that none has.
std::string ParameterName(const Document& document, unsigned int id);

/// How many nodes the document holds, in layers and global.
std::size_t CountNodes(const Document& document);

/// A random case, the same for the same seed everywhere.
Case MakeCase(unsigned long long seed);

} // namespace model
