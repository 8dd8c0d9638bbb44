// VELL: data-driven hierarchical state machines.
// bench/Documents.cpp: generated machine documents of any size.
#include "bench/Documents.h"

#include <vell/Types.h>

#include "tests/support/DocumentBuilder.h"

#include <algorithm>

namespace vell::bench
{
namespace
{

using test::DocumentBuilder;
using test::Ids;
using test::Json;

constexpr int kEqual = 1;
constexpr int kGreater = 3;
constexpr int kTransitionsInState = 4;

// The ids of the levels, their transitions and what fills a document up lie apart. Within a level
// the enter and the exit node follow the substate.
constexpr unsigned int kLevelStep = 1000;
constexpr unsigned int kTransitionOffset = 100;
constexpr unsigned int kFillerId = 1000000;

/// The head's figure: a hundredth of an arena with space for so many definitions, and not much
/// more, so that machines lie as close together as those of a host that counted.
int MemoryFigure(int definitions)
{
    return 64 + definitions * 5;
}

std::string LevelName(int level)
{
    return "Level" + std::to_string(level);
}

/// Four transitions away from `source`, each with conditions of its own on parameters of its own.
Ids AddTransitions(DocumentBuilder& document, const TickShape& shape, unsigned int source)
{
    Ids ids;
    for (int i = 0; i < kTransitionsInState; ++i)
    {
        const unsigned int id = source + kTransitionOffset + static_cast<unsigned int>(i);
        std::vector<Json> conditions;
        for (int j = 0; j < shape.conditionsInTransition; ++j)
        {
            const std::string name = "p" + std::to_string(id) + "_" + std::to_string(j);
            document.Parameter(test::FloatParameter(name, 0.0));
            conditions.push_back(test::FloatCondition(name, kGreater, 1.0));
        }
        document.Node(test::Transition("Leave", id, source, source, conditions));
        ids.push_back(id);
    }
    return ids;
}

/// All levels but the innermost, each a substate.
void AddOuterLevels(DocumentBuilder& document, const TickShape& shape)
{
    for (int level = 1; level < shape.levels; ++level)
    {
        const unsigned int id = InnermostId(level);
        const Ids transitions = AddTransitions(document, shape, id);
        document.Level(LevelName(level), id, InnermostId(level + 1), transitions,
                       level == 1 ? 0 : InnermostId(level - 1));
    }
    document.Start(InnermostId(1));
}

unsigned int ParentOfInnermost(int levels)
{
    return levels == 1 ? 0 : InnermostId(levels - 1);
}

} // namespace

unsigned int InnermostId(int levels)
{
    return kLevelStep * static_cast<unsigned int>(levels);
}

std::string IdleDocument(const TickShape& shape)
{
    DocumentBuilder document;
    AddOuterLevels(document, shape);
    const unsigned int id = InnermostId(shape.levels);
    const Ids transitions = AddTransitions(document, shape, id);
    document.Node(test::Generic("Idle", id, transitions, ParentOfInnermost(shape.levels)));

    const int present = shape.levels * (kTransitionsInState + 3) - 2;
    for (int i = present; i < shape.nodes; ++i)
    {
        document.Node(
            test::Generic("Filler" + std::to_string(i), kFillerId + static_cast<unsigned int>(i)));
    }
    const int conditions = shape.levels * kTransitionsInState * shape.conditionsInTransition;
    const int definitions = std::max(present, shape.nodes) + 2 * conditions;
    document.Head().Set(JSON_HeadMemory, MemoryFigure(definitions));
    return document.Text();
}

std::string SwitchingDocument(int levels)
{
    DocumentBuilder document;
    AddOuterLevels(document, TickShape{levels});
    document.Parameter(test::FloatParameter(kStill, 0.0));
    const unsigned int left = InnermostId(levels);
    const unsigned int right = left + 1;
    const unsigned int parent = ParentOfInnermost(levels);
    const unsigned int toRight = left + kTransitionOffset;
    const unsigned int toLeft = toRight + 1;
    const Json condition = test::FloatCondition(kStill, kEqual, 0.0);
    document.Node(test::Transition("ToRight", toRight, left, right, {condition}));
    document.Node(test::Transition("ToLeft", toLeft, right, left, {condition}));
    document.Node(test::Generic("Left", left, {toRight}, parent));
    document.Node(test::Generic("Right", right, {toLeft}, parent));
    return document.Text();
}

std::string BlipDocument()
{
    constexpr unsigned int kGlobalId = 10;
    constexpr unsigned int kInterruptId = 20;
    constexpr unsigned int kLeaveId = 21;
    constexpr unsigned int kExitId = 22;
    constexpr unsigned int kTriggerId = 11;
    DocumentBuilder document;
    document.Start(InnermostId(1)).Parameter(test::FloatParameter(kInterrupt, 0.0));
    document.Node(test::Generic("Idle", InnermostId(1)));
    document.Node(test::Generic("Interruption", kInterruptId, {kLeaveId}));
    document.Node(test::Exit("Back", kExitId));
    document.Node(test::Transition("Leave", kLeaveId, kInterruptId, kExitId,
                                   {test::FloatCondition(kInterrupt, kEqual, 0.0)}));
    document.Node(test::Transition("Interrupt", kTriggerId, kGlobalId, kInterruptId,
                                   {test::FloatCondition(kInterrupt, kGreater, 0.0)}));
    document.GlobalNode(test::Global("Global", kGlobalId, {kTriggerId}));
    return document.Text();
}

std::string LoadDocument(int states)
{
    constexpr unsigned int kTransitions = 3;
    constexpr unsigned int kParameters = 16;
    DocumentBuilder document;
    document.Start(1);
    for (unsigned int i = 0; i < kParameters; ++i)
    {
        document.Parameter(test::FloatParameter("parameter" + std::to_string(i), 0.0));
    }
    const unsigned int count = static_cast<unsigned int>(states);
    for (unsigned int i = 0; i < count; ++i)
    {
        const unsigned int id = 1 + i * (kTransitions + 1);
        Ids transitions;
        std::vector<Json> nodes;
        for (unsigned int j = 0; j < kTransitions; ++j)
        {
            const unsigned int target = 1 + (i + j + 1) % count * (kTransitions + 1);
            transitions.push_back(id + 1 + j);
            nodes.push_back(test::Transition(
                "Transition" + std::to_string(id + 1 + j), id + 1 + j, id, target,
                {test::FloatCondition("parameter" + std::to_string((i + j) % kParameters), kGreater,
                                      1.0)}));
        }
        document.Node(test::Generic("State" + std::to_string(i), id, transitions));
        document.Nodes(nodes);
    }
    document.Head().Set(JSON_HeadMemory, MemoryFigure(states * 7));
    return document.Text();
}

} // namespace vell::bench
