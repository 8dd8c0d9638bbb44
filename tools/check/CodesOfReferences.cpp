// VELL: data-driven hierarchical state machines.
// tools/check/CodesOfReferences.cpp: the codes of references.
#include "tools/check/Code.h"

namespace vell::check
{

const CodeTable& ReferenceCodes()
{
    static const CodeTable table = {
        {Code::TargetAbsent, Severity::Error, "a transition to a node that does not exist",
         "When the transition fires, its state is left and nothing is entered.",
         "\"source\": 10, \"target\": 99", "\"source\": 10, \"target\": 11"},
        {Code::TargetCannotRun, Severity::Error, "a transition to a node that cannot run",
         "Only `generic`, `animClip`, `substate`, `enter`, `exit` and `global` nodes run. At any "
         "other target the state is left and nothing is entered; connectors are not followed.",
         "\"target\": 100", "\"target\": 11"},
        {Code::TargetZero, Severity::Error, "a transition with the target 0",
         "The id 0 means none. The transition never fires, and while it holds, no transition "
         "behind it is tested.",
         "\"target\": 0", "\"target\": 11"},
        {Code::ChildAbsent, Severity::Error, "a child that does not exist",
         "`children` names an id that no node has. The library skips it.",
         "\"children\": [100, 999]", "\"children\": [100, 101]"},
        {Code::ChildZero, Severity::Error, "a child with the id 0",
         "The id 0 means none. The library refuses the node, and with it all nodes read so far.",
         "\"children\": [100, 0]", "\"children\": [100]"},
        {Code::ChildOfOther, Severity::Warning, "a child whose parentId is another node",
         "`children` names a state whose `parentId` is not this node. The library takes only "
         "transitions from `children`; one of the two members is wrong.",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"children\": "
         "[30]},\n{\"name\": \"Jab\", \"id\": 30, \"parentId\": 10, \"builder\": \"generic\"}",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"children\": "
         "[30]},\n{\"name\": \"Jab\", \"id\": 30, \"parentId\": 20, \"builder\": \"generic\"}"},
        {Code::TransitionUnlisted, Severity::Warning, "a transition that no state lists",
         "A state tests the transitions that its `children` lists, whatever their `source` says. "
         "This one is in no list and is never tested.",
         "{\"name\": \"Stand\", \"id\": 10, \"builder\": \"generic\", \"children\": "
         "[]},\n{\"name\": \"StandToWalk\", \"id\": 100, \"builder\": \"transition\", \"source\": "
         "10, \"target\": 11}",
         "{\"name\": \"Stand\", \"id\": 10, \"builder\": \"generic\", \"children\": "
         "[100]},\n{\"name\": \"StandToWalk\", \"id\": 100, \"builder\": \"transition\", "
         "\"source\": 10, \"target\": 11}"},
        {Code::TransitionListedTwice, Severity::Warning, "a transition that two states list",
         "Both states test the transition, but it has one `source`. Give each state a transition "
         "of its own.",
         "{\"name\": \"Walk\", \"id\": 11, \"builder\": \"generic\", \"children\": "
         "[100]},\n{\"name\": \"Run\", \"id\": 12, \"builder\": \"generic\", \"children\": [100]}",
         "{\"name\": \"Walk\", \"id\": 11, \"builder\": \"generic\", \"children\": "
         "[100]},\n{\"name\": \"Run\", \"id\": 12, \"builder\": \"generic\", \"children\": [101]}"},
        {Code::ListerCannotRun, Severity::Warning,
         "a transition in the children of a node that cannot run",
         "Only states and the global node test transitions. This one is never tested.",
         "{\"name\": \"Out\", \"id\": 40, \"builder\": \"connector\", \"connectorType\": \"out\", "
         "\"children\": [100]}",
         "{\"name\": \"Stand\", \"id\": 10, \"builder\": \"generic\", \"children\": [100]}"},
        {Code::SourceNotLister, Severity::Warning, "a transition whose source is another state",
         "A transition leaves the state whose `children` lists it. Its `source` names another one, "
         "so either the list or the source is wrong.",
         "{\"name\": \"Walk\", \"id\": 11, \"builder\": \"generic\", \"children\": "
         "[100]},\n{\"name\": \"Stop\", \"id\": 100, \"builder\": \"transition\", \"source\": 12, "
         "\"target\": 10}",
         "{\"name\": \"Walk\", \"id\": 11, \"builder\": \"generic\", \"children\": "
         "[100]},\n{\"name\": \"Stop\", \"id\": 100, \"builder\": \"transition\", \"source\": 11, "
         "\"target\": 10}"},
        {Code::ParentNotLevel, Severity::Warning,
         "a state whose parentId is not the level that it runs in",
         "`parentId` names the substate that a state runs in, 0 at the top. A substate remembers "
         "only states that name it: with another `parentId` it does not resume this state when it "
         "is entered again.",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 21, \"exit\": "
         "22},\n{\"name\": \"FightIn\", \"id\": 21, \"parentId\": 20, \"builder\": \"enter\", "
         "\"entryTarget\": 30},\n{\"name\": \"Jab\", \"id\": 30, \"builder\": \"generic\"}",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 21, \"exit\": "
         "22},\n{\"name\": \"FightIn\", \"id\": 21, \"parentId\": 20, \"builder\": \"enter\", "
         "\"entryTarget\": 30},\n{\"name\": \"Jab\", \"id\": 30, \"parentId\": 20, \"builder\": "
         "\"generic\"}"},
        {Code::TargetOfOtherLevel, Severity::Warning, "a transition to a state of another level",
         "A transition replaces its state on the stack, so the target runs in the same substate, "
         "above all that is around the state. To leave a substate, give the substate the "
         "transition. To enter one, lead to the substate itself.",
         "{\"name\": \"Jab\", \"id\": 30, \"parentId\": 20, \"builder\": \"generic\", "
         "\"children\": [300]},\n{\"name\": \"JabToStand\", \"id\": 300, \"builder\": "
         "\"transition\", \"source\": 30, \"target\": 10}",
         "{\"name\": \"Fight\", \"id\": 20, \"parentId\": 0, \"builder\": \"substate\", "
         "\"children\": [300], \"enter\": 21, \"exit\": 22},\n{\"name\": \"FightToStand\", \"id\": "
         "300, \"builder\": \"transition\", \"source\": 20, \"target\": 10}"},
        {Code::ParentWrong, Severity::Warning, "a parentId that is no substate",
         "`parentId` names a node that does not exist, the node itself, or one that is not a "
         "substate. The state then has no level around it.",
         "{\"name\": \"Jab\", \"id\": 30, \"parentId\": 99, \"builder\": \"generic\"}",
         "{\"name\": \"Jab\", \"id\": 30, \"parentId\": 20, \"builder\": \"generic\"}"},
        {Code::EntryTarget, Severity::Error, "an entryTarget that leads nowhere",
         "The `entryTarget` of an enter node is the state with which its substate starts. At 0 the "
         "library refuses the node, and with it all nodes read so far; at an id that names no "
         "state, the substate tries to start in every tick and fails. An exit node needs no "
         "`entryTarget`.",
         "{\"name\": \"FightIn\", \"id\": 21, \"parentId\": 20, \"builder\": \"enter\", "
         "\"entryTarget\": 0}",
         "{\"name\": \"FightIn\", \"id\": 21, \"parentId\": 20, \"builder\": \"enter\", "
         "\"entryTarget\": 30}"},
        {Code::SubstateEnter, Severity::Error, "an enter that is no enter node",
         "The `enter` of a substate names an `enter` node. At 0 the library refuses the node, and "
         "with it all nodes read so far; at any other node the substate cannot be entered.",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 30, \"exit\": "
         "22}",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 21, \"exit\": "
         "22}"},
        {Code::SubstateExit, Severity::Error, "an exit that is no exit node",
         "The `exit` of a substate names an `exit` node. At 0 the library refuses the node, and "
         "with it all nodes read so far; at any other node the substate cannot be entered.",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 21, \"exit\": "
         "30}",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 21, \"exit\": "
         "22}"},
        {Code::EndOfOtherLevel, Severity::Warning, "an enter or exit node with another parent",
         "The enter and exit nodes of a substate have it as their `parentId`.",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 21, \"exit\": "
         "22},\n{\"name\": \"FightOut\", \"id\": 22, \"parentId\": 10, \"builder\": \"exit\"}",
         "{\"name\": \"Fight\", \"id\": 20, \"builder\": \"substate\", \"enter\": 21, \"exit\": "
         "22},\n{\"name\": \"FightOut\", \"id\": 22, \"parentId\": 20, \"builder\": \"exit\"}"},
        {Code::SecondEnterNode, Severity::Error, "two enter nodes with one parent",
         "A level has one enter node. The library files the first under its parent and logs an "
         "error for the second. Two enter nodes without `parentId` have the same parent too.",
         "{\"name\": \"FightIn\", \"id\": 21, \"parentId\": 20, \"builder\": \"enter\", "
         "\"entryTarget\": 30},\n{\"name\": \"FightAgain\", \"id\": 23, \"parentId\": 20, "
         "\"builder\": \"enter\", \"entryTarget\": 31}",
         "{\"name\": \"FightIn\", \"id\": 21, \"parentId\": 20, \"builder\": \"enter\", "
         "\"entryTarget\": 30}"},
        {Code::EnterNodeAbsent, Severity::Error, "an enterNode that does not exist",
         "The head's `enterNode` names a node of the document. At 0 the library refuses the "
         "document; at an id that no node has it logs an error.",
         "\"enterNode\": 0", "\"enterNode\": 10"},
        {Code::EnterNodeCannotRun, Severity::Warning, "an enterNode that cannot run",
         "The head's `enterNode` names a node that is no state. The machine starts with "
         "`substateRoot`, so this has no effect, but it is hardly meant.",
         "\"enterNode\": 100", "\"enterNode\": 10"},
        {Code::StartWrong, Severity::Error, "a substateRoot with which nothing starts",
         "`substateRoot` is the state that the machine starts with. It names a node that does not "
         "exist or cannot run, so the machine starts nothing.",
         "\"substateRoot\": 100", "\"substateRoot\": 10"},
        {Code::ExitConnectorWrong, Severity::Warning, "an exitConnector that is no connector",
         "The library stores `exitConnector` for the host. It should name a node with the builder "
         "`connector`.",
         "\"exitConnector\": 10", "\"exitConnector\": 40"},
        {Code::ConditionParameter, Severity::Error,
         "a condition on a parameter that does not exist",
         "The condition names a parameter by its id, the CRC of its name. No parameter has this "
         "id, so the condition never holds. At 0 the condition and those behind it are left out. "
         "Where a parameter of that name has another id, it is reported there, once for all "
         "conditions.",
         "\"parameter\": 254213879", "\"parameter\": 254213878"},
        {Code::NodesAtRoot, Severity::Warning, "nodes at the root",
         "Nodes belong to a layer. With `layers` the library does not read those at the root; "
         "without, it refuses the document.",
         "\"nodes\": [ ]", "\"layers\": [{ \"name\": \"Base\", \"nodes\": [ ] }]"},
        {Code::NoLayers, Severity::Error, "no layers",
         "`layers` is empty, so the machine has no nodes.", "\"layers\": [ ]",
         "\"layers\": [{ \"name\": \"Base\", \"nodes\": [ ] }]"},
        {Code::GlobalInLayer, Severity::Warning, "a global node in a layer",
         "A global node counts only in the root's `global`. In a layer its transitions are never "
         "tested.",
         "\"layers\": [{ \"name\": \"Base\", \"nodes\": [{\"name\": \"Hits\", \"id\": 5, "
         "\"builder\": \"global\"}] }]",
         "\"global\": [{\"name\": \"Hits\", \"id\": 5, \"builder\": \"global\"}]"},
        {Code::SecondGlobalNode, Severity::Warning, "two global nodes",
         "Of several global nodes the last counts; the transitions of the others are never tested.",
         "\"global\": [{\"name\": \"Hits\", \"id\": 5, \"builder\": \"global\"}, {\"name\": "
         "\"Turns\", \"id\": 6, \"builder\": \"global\"}]",
         "\"global\": [{\"name\": \"Hits\", \"id\": 5, \"builder\": \"global\"}]"},
        {Code::NoGlobalNode, Severity::Warning, "global without a global node",
         "`global` holds the global node, whose transitions interrupt all other states, and the "
         "nodes that belong to it. None of these has the builder `global`.",
         "\"global\": [{\"name\": \"Hits\", \"id\": 5, \"builder\": \"generic\"}]",
         "\"global\": [{\"name\": \"Hits\", \"id\": 5, \"builder\": \"global\"}]"},
        {Code::NoConditions, Severity::Error, "a transition without conditions",
         "A transition holds when one of its conditions holds. Without any, only a trigger that "
         "the host assigns can make it fire; the library logs an error and a warning. When a "
         "trigger is meant, allow this code for the transition.",
         "{\"name\": \"StandToWalk\", \"id\": 100, \"builder\": \"transition\", \"source\": 10, "
         "\"target\": 11}",
         "{\"name\": \"StandToWalk\", \"id\": 100, \"builder\": \"transition\", \"source\": 10, "
         "\"target\": 11,\n    \"$allow\": [\"VELL098\"]}"},
        {Code::VersionWithoutStart, Severity::Error, "a version without a start state",
         "`substateRoot`, the state that the machine starts with, is read from version 3 of the "
         "head on. With a lower version the machine starts nothing.",
         "\"version\": 2, \"substateRoot\": 10", "\"version\": 3, \"substateRoot\": 10"},
    };
    return table;
}

} // namespace vell::check
