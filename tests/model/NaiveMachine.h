// VELL: data-driven hierarchical state machines.
// tests/model/NaiveMachine.h: a second machine, slow and plain, that a run is compared with.
#pragma once

#include "tests/model/Observed.h"

#include <deque>
#include <map>

namespace model
{

/// A mistake that the naive machine makes on demand, to show that a comparison finds it.
enum class Fault
{
    None,
    RefusesAnEqualBlip,
    TestsEqualPrioritiesBackwards,
    NeedsAllConditions,
    ResumesAtTheEntry,
    RunsExitActionsOfExitNodes,
    ForgetsTheResets
};

/// What a machine does with a case, written down a second time: vectors and maps, a search at every
/// step, no arena, no tree, no bound pointer.
class NaiveMachine
{
public:
    NaiveMachine(const Document& document, const std::vector<ActionPlan>& actions, Fault fault);
    NaiveMachine(const NaiveMachine&) = delete;
    NaiveMachine& operator=(const NaiveMachine&) = delete;

    /// Does what `input` says. After a call that threw, no other may follow.
    Step Apply(const Input& input);

private:
    struct LoadedParameter
    {
        Parameter def;
        Value value;
        int assign = 0;
        float magnitude = 0.0f;
        int treeWord = 0; ///< a bool in the tree: what a tool wrote may be any integer
    };

    struct LoadedCondition
    {
        Condition def;
        LoadedParameter* bound = nullptr; ///< null until there is such a parameter at a binding
        double low = 0.0;                 ///< the operand, or the lower bound of a range
        double high = 0.0;                ///< the upper bound of a range
    };

    struct Transition
    {
        const Node* node = nullptr;
        std::vector<LoadedCondition> conditions;
        std::vector<int> triggers;
    };

    struct State
    {
        const Node* node = nullptr;
        std::vector<Transition*> transitions; ///< in the order of testing
        State* parent = nullptr;
        // Substates.
        unsigned int enterStateId = 0;
        unsigned int previousChildId = 0;
        unsigned int currentChildId = 0;
        State* previousChild = nullptr;
        State* currentChild = nullptr;
    };

    /// What a transition that fired asks for.
    struct Outcome
    {
        unsigned int targetId = 0;
        int priority = 0;
        float switchArgument = 0.0f;
    };

    // Loading.
    void Load(const std::vector<Node>& nodes, bool isGlobal);
    void LoadTransition(const Node& node);
    static bool LoadCondition(LoadedCondition* condition);
    static bool LoadRange(LoadedCondition* condition);
    void BindConditions(bool isLogged);

    // The tick.
    void Tick(float time);
    void TestGlobal();
    bool TestTransitions(State& state, Outcome* outcome);
    bool Holds(Transition& transition);
    static bool Holds(const LoadedCondition& condition);
    static bool HoldsWhole(const LoadedCondition& condition, int value);
    static bool HoldsReal(const LoadedCondition& condition, float value);
    void Replace(int popLevel, const Outcome& outcome);
    void EmptyCurrentStack();
    void ResetParameters();

    // States.
    State* Activate(unsigned int id, float argument);
    State* MakeState(unsigned int id);
    bool InitSubstate(State* state);
    bool FindLevel(State* state);
    const Node* FindLevelNode(unsigned int id, int builder);
    void ListTransitions(State* state);
    void Enter(State& state);
    void Exit(State& state);
    void UpdateState(State& state, float time);
    static bool Runs(int builder);
    void UpdateSubstate(State& state, float time);
    void Perform(const State& state, vell::__ActType__ list, float time);
    State* Push(State* state);
    State* PushById(unsigned int id);
    State* Pop();
    State* Current() const;
    long RevertToPrevious();
    long RevertToStart();
    void ChangeState(unsigned int id);
    void Start();
    void Notify();
    long SendEvent(int event, const char* clipName, bool flag, float scalar);
    static void RemoveDuringCall(std::vector<int>* list, int called);
    void SetContext(const Input& input);
    void RestoreStack(std::vector<State*>* stack, const Ids& ids, const char* function);

    // Calls of the host.
    void Do(const Input& input);
    void DoWithParameter(const Input& input);
    void DoWithListeners(const Input& input);
    void DoWithStack(const Input& input);
    void ToolWrite(LoadedParameter* parameter, const Value& value);
    void AssignTrigger(unsigned int id, int trigger);
    void CreateParameter(int number);
    LoadedParameter* FindParameter(unsigned int id);
    static void SetValue(LoadedParameter* parameter, const Value& value);
    static long ParameterEvent(LoadedParameter* parameter, const Input& input);
    static long VectorEvent(LoadedParameter* parameter, const Input& input);
    static Value RealsOf(const Input& input, std::size_t first);

    // What a host sees.
    void Say(const std::string& line);
    void Info(const std::string& text);
    void Error(const std::string& text);
    void Break(const char* function);
    void Paint(Picture* picture) const;
    static ParameterPicture PaintParameter(const LoadedParameter& parameter);

    const Document& document;
    const std::vector<ActionPlan>& actionPlans;
    Fault fault;
    unsigned int globalId = 0;
    std::map<unsigned int, const Node*> nodes;
    Ids nodeIds; ///< as read, refused ones included
    std::map<unsigned int, Transition> transitions;
    std::map<unsigned int, LoadedParameter> parameters;
    std::map<unsigned int, State*> states;
    std::deque<State> storage;
    std::array<unsigned int, kTriggerCount> triggerCalls = {};

    std::vector<State*> stack;
    std::vector<State*> blip;
    std::vector<State*>* currentStack = nullptr;
    bool blipActive = false;
    int blipPriority = 1;
    int blipLevel = 0;
    State* previousState = nullptr;
    State* globalState = nullptr;

    Ids treeStack;
    Ids treeBlip;
    unsigned int treeNext = 0;
    unsigned int treePrevious = 0;
    unsigned int treeTransition = 0;

    bool hasCallback = false;
    std::vector<int> stateListeners;
    std::vector<int> transitionListeners;
    std::vector<int> eventListeners;
    Lines lines;
};

} // namespace model
