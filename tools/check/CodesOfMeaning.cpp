// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfMeaning.cpp: the codes of meaning.
#include "tools/check/Code.h"

namespace vell::check
{

const CodeTable& MeaningCodes()
{
    static const CodeTable table = {
        {Code::StateUnreached, Severity::Warning, "a state that is never entered",
         "No path of transitions leads from the start, or from a transition of the global node, to "
         "this state. Only the host could enter it. Of a substate that is never entered, the "
         "states within are not reported.",
         "{\"name\": \"Swim\", \"id\": 16, \"builder\": \"generic\"}",
         "{\"name\": \"Swim\", \"id\": 16, \"builder\": \"generic\"},\n{\"name\": \"WalkToSwim\", "
         "\"id\": 113, \"builder\": \"transition\", \"source\": 11, \"target\": 16}"},
        {Code::EndUnused, Severity::Warning, "an enter or exit node that nothing uses",
         "No substate names this node, and no transition leads to it.",
         "{\"name\": \"FightOut\", \"id\": 22, \"parentId\": 20, \"builder\": \"exit\"}",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 21, \"exit\": "
         "22},\n{\"name\": \"FightOut\", \"id\": 22, \"parentId\": 20, \"builder\": \"exit\"}"},
        {Code::StateNeverLeft, Severity::Note, "a state that is never left",
         "Neither the state nor a substate around it has a transition in force. That is right for "
         "a last state, such as a death.",
         "{\"name\": \"Jump\", \"id\": 13, \"builder\": \"generic\", \"children\": []}",
         "{\"name\": \"Jump\", \"id\": 13, \"builder\": \"generic\", \"children\": [130]}"},
        {Code::ConditionNever, Severity::Warning, "a condition that never holds",
         "No value of the parameter fulfils the condition.",
         "{\"conditionType\": \"integer\", \"operator\": \"greater\", \"operand\": [{\"value\": "
         "2147483647}]}",
         "{\"conditionType\": \"integer\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "2147483647}]}"},
        {Code::ConditionAlways, Severity::Warning, "a transition that always holds",
         "One condition of a transition is enough for it to hold. When all values of a parameter "
         "fulfil one or the other of them, the transition fires in the first tick in which it is "
         "tested. If several conditions must hold together, use a parameter that the host "
         "computes.",
         "\"conditions\": [\n    {\"conditionType\": \"integer\", \"parameter\": 7, \"operator\": "
         "\"greater\", \"operand\": [{\"value\": 1}]},\n    {\"conditionType\": \"integer\", "
         "\"parameter\": 7, \"operator\": \"less\", \"operand\": [{\"value\": 5}]}]",
         "\"conditions\": [\n    {\"conditionType\": \"integer\", \"parameter\": 7, \"operator\": "
         "\"range\", \"operand\": [{\"value\": \"2, 4\"}]}]"},
        {Code::TransitionShadowed, Severity::Warning, "a transition that is never taken",
         "Transitions are tested in ascending `priority`, those of equal priority in the order of "
         "`children`, and the first that holds is taken. One that is tested before this one holds "
         "whenever it does.",
         "\"children\": [100, 101]\n\n{\"name\": \"ToWalk\", \"id\": 100, \"conditions\": "
         "[{\"conditionType\": \"float\", \"operator\": \"greater\", \"operand\": [{\"value\": "
         "0.1}]}]}\n{\"name\": \"ToRun\", \"id\": 101, \"conditions\": [{\"conditionType\": "
         "\"float\", \"operator\": \"greater\", \"operand\": [{\"value\": 3.0}]}]}",
         "\"children\": [100, 101]\n\n{\"name\": \"ToWalk\", \"id\": 100, \"conditions\": "
         "[{\"conditionType\": \"float\", \"operator\": \"greater\", \"operand\": [{\"value\": "
         "0.1}]}]}\n{\"name\": \"ToRun\", \"id\": 101, \"priority\": 1, \"conditions\": "
         "[{\"conditionType\": \"float\", \"operator\": \"greater\", \"operand\": [{\"value\": "
         "3.0}]}]}"},
        {Code::BackAndForth, Severity::Warning, "two states that throw the machine back and forth",
         "Each of the two states has a transition to the other, and both hold for the same value "
         "of a parameter. While it has that value, the machine changes state in every tick. "
         "Parameters with `resetEachFrame` keep no value, so they do not count.",
         "{\"name\": \"ToWalk\", \"source\": 10, \"target\": 11, \"conditions\": "
         "[{\"conditionType\": \"float\", \"operator\": \"greater\", \"operand\": [{\"value\": "
         "0.1}]}]}\n{\"name\": \"ToStand\", \"source\": 11, \"target\": 10, \"conditions\": "
         "[{\"conditionType\": \"float\", \"operator\": \"less\", \"operand\": [{\"value\": "
         "0.5}]}]}",
         "{\"name\": \"ToWalk\", \"source\": 10, \"target\": 11, \"conditions\": "
         "[{\"conditionType\": \"float\", \"operator\": \"greater\", \"operand\": [{\"value\": "
         "0.5}]}]}\n{\"name\": \"ToStand\", \"source\": 11, \"target\": 10, \"conditions\": "
         "[{\"conditionType\": \"float\", \"operator\": \"less\", \"operand\": [{\"value\": "
         "0.1}]}]}"},
        {Code::TransitionToItself, Severity::Warning,
         "a transition that leads back to its own state",
         "While the transition holds, the state is left and entered again in every tick. Use a "
         "parameter with `resetEachFrame` when it should happen once.",
         "{\"name\": \"Again\", \"source\": 10, \"target\": 10, \"conditions\": "
         "[{\"conditionType\": \"bool\", \"operator\": \"equal\", \"operand\": [{\"value\": "
         "true}]}]}",
         "{\"name\": \"attack\", \"id\": 1203776827, \"parameterType\": \"bool\", "
         "\"resetEachFrame\": true}"},
        {Code::TargetLeftAtOnce, Severity::Warning, "a target that is left in the same tick",
         "Transitions are tested from the innermost state outwards, all in one tick. A transition "
         "of a substate around this state holds whenever this one does, so what this one enters is "
         "left at once.",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"children\": "
         "[200]}\n{\"name\": \"JabToHook\", \"id\": 300, \"conditions\": [{\"conditionType\": "
         "\"integer\", \"operator\": \"equal\", \"operand\": [{\"value\": 2}]}]}\n{\"name\": "
         "\"EndFight\", \"id\": 200, \"conditions\": [{\"conditionType\": \"integer\", "
         "\"operator\": \"greater\", \"operand\": [{\"value\": 0}]}]}",
         "{\"name\": \"EndFight\", \"id\": 200, \"conditions\": [{\"conditionType\": \"integer\", "
         "\"operator\": \"less\", \"operand\": [{\"value\": 1}]}]}"},
        {Code::BlipTooWeak, Severity::Warning, "a global transition with a priority below 1",
         "A transition of the global node starts a blip only when its priority is at least that of "
         "the running blip, and at least 1. This one never does, and while it holds it hides those "
         "behind it.",
         "{\"name\": \"TakeHit\", \"priority\": 0}", "{\"name\": \"TakeHit\", \"priority\": 20}"},
        {Code::BlipWithoutEnd, Severity::Warning, "a blip that never ends by itself",
         "A blip ends when it reaches an exit node. None can be reached from the state that this "
         "blip begins with, so only a stronger blip or the host can end it.",
         "{\"name\": \"HitReaction\", \"id\": 5010, \"builder\": \"animClip\", \"children\": []}",
         "{\"name\": \"HitReaction\", \"id\": 5010, \"builder\": \"animClip\", \"children\": "
         "[5011]},\n{\"name\": \"HitSettles\", \"id\": 5011, \"builder\": \"transition\", "
         "\"source\": 5010, \"target\": 5012},\n{\"name\": \"HitDone\", \"id\": 5012, \"builder\": "
         "\"exit\"}"},
        {Code::ParameterUntested, Severity::Note, "a parameter that no condition tests",
         "The parameter has no effect on the machine. The host may still read it.",
         "{\"name\": \"stance\", \"id\": 2197635900, \"parameterType\": \"integer\"}",
         "{\"conditionType\": \"integer\", \"parameter\": 2197635900, \"operator\": \"equal\", "
         "\"operand\": [{\"value\": 1}]}"},
        {Code::MessageUnawaited, Severity::Warning, "a message that no condition waits for",
         "A fired message takes the text of its `default`. No condition compares it with that "
         "text.",
         "{\"name\": \"jump\", \"id\": 2813527574, \"parameterType\": \"message\", \"default\": "
         "\"go\"}\n\n{\"conditionType\": \"message\", \"parameter\": 2813527574, \"operand\": "
         "[{\"value\": \"now\"}]}",
         "{\"name\": \"jump\", \"id\": 2813527574, \"parameterType\": \"message\", \"default\": "
         "\"now\"}\n\n{\"conditionType\": \"message\", \"parameter\": 2813527574, \"operand\": "
         "[{\"value\": \"now\"}]}"},
        {Code::MessageReset, Severity::Warning, "a message with resetEachFrame",
         "The default of a message is the text of a fired message. With `resetEachFrame` every "
         "tick ends with firing it.",
         "{\"name\": \"jump\", \"parameterType\": \"message\", \"default\": \"now\", "
         "\"resetEachFrame\": true}",
         "{\"name\": \"jump\", \"parameterType\": \"message\", \"default\": \"now\"}"},
        {Code::MessageEmpty, Severity::Warning, "a message that is fired as an empty text",
         "A fired message takes the text of its `default`. Without one, or with an empty one, it "
         "is as if it had not been fired: no condition can match it. Give it a default, and let "
         "the conditions compare it with that. Where the host sets one of several texts itself, "
         "write `\"default\": \"\"`.",
         "{\"name\": \"jump\", \"parameterType\": \"message\"}",
         "{\"name\": \"jump\", \"parameterType\": \"message\", \"default\": \"now\"}"},
        {Code::EndRunsAsState, Severity::Warning,
         "an enter, exit or global node that is run as a state",
         "An enter node leads on only when a substate is entered through it; the transitions of a "
         "global node are tested only beside the stacks; an exit node ends a blip and nothing "
         "else. When one of them is entered like a state, the machine stays there. Name the state "
         "that is meant. An exit node may be reached inside of a substate that is left by "
         "transitions of its own, and in a blip.",
         "{\"name\": \"WalkToStand\", \"builder\": \"transition\", \"target\": 1001}\n{\"name\": "
         "\"Enter\", \"id\": 1001, \"builder\": \"enter\", \"entryTarget\": 1010}",
         "{\"name\": \"WalkToStand\", \"builder\": \"transition\", \"target\": 1010}"},
        {Code::ChildTwice, Severity::Warning, "an id twice in one list of children",
         "The second one has no effect. Perhaps another node is meant.",
         "{\"name\": \"Walk\", \"builder\": \"generic\", \"children\": [20, 21, 21]}",
         "{\"name\": \"Walk\", \"builder\": \"generic\", \"children\": [20, 21, 22]}"},
    };
    return table;
}

} // namespace vell::check
