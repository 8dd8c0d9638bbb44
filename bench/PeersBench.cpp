// VELL: data-driven hierarchical state machines.
// bench/PeersBench.cpp: the same work in other libraries, whose machines are part of the program.
#include "bench/Crowd.h"
#include "bench/Spawning.h"

#include <boost/mpl/list.hpp>
#include <boost/msm/back/state_machine.hpp>
#include <boost/msm/front/functor_row.hpp>
#include <boost/msm/front/state_machine_def.hpp>
#include <boost/statechart/custom_reaction.hpp>
#include <boost/statechart/event.hpp>
#include <boost/statechart/simple_state.hpp>
#include <boost/statechart/state_machine.hpp>

#include <memory>

namespace vell::bench
{
namespace
{

constexpr int kLevels = 3;

/// Three states on top of each other. Each has transitions away from it, which hold when one of
/// their conditions does.
template <int kTransitionCount, int kConditionCount>
struct Shape
{
    static constexpr int kTransitions = kTransitionCount;
    static constexpr int kConditions = kConditionCount; ///< of one transition
    static constexpr int kInLevel = kTransitions * kConditions;
};

using Sample = Shape<2, 1>; ///< as samples/character.json, when it walks

/// Tells whether one of the conditions holds.
template <int kCount>
bool AnyHolds(const float* values)
{
    for (int i = 0; i < kCount; ++i)
    {
        if (values[i] > 1.0f)
        {
            return true;
        }
    }
    return false;
}

namespace chart
{

namespace mpl = boost::mpl;
namespace sc = boost::statechart;

struct Tick : sc::event<Tick>
{
};
template <class AnyShape>
struct Outer;
template <class AnyShape>
struct Middle;
template <class AnyShape>
struct Inner;
template <class AnyShape>
struct Other;

template <class AnyShape>
struct Chart : sc::state_machine<Chart<AnyShape>, Outer<AnyShape>>
{
    float values[kLevels][AnyShape::kInLevel] = {};
    unsigned int switched = 0;
};

/// Leaves for another state when a condition holds, and else hands the event outwards.
template <class AnyShape, class Target, class State>
sc::result React(State& state, int level)
{
    Chart<AnyShape>& chart = state.outermost_context();
    if (AnyHolds<AnyShape::kInLevel>(chart.values[level]))
    {
        ++chart.switched;
        return state.template transit<Target>();
    }
    return state.forward_event();
}

// An initial state is in a list, so that it is not looked into before it is complete.
template <class AnyShape>
struct Outer : sc::simple_state<Outer<AnyShape>, Chart<AnyShape>, mpl::list<Middle<AnyShape>>>
{
    using reactions = sc::custom_reaction<Tick>;
    sc::result react(const Tick&)
    {
        return React<AnyShape, Outer<AnyShape>>(*this, 0);
    }
};
template <class AnyShape>
struct Middle : sc::simple_state<Middle<AnyShape>, Outer<AnyShape>, mpl::list<Inner<AnyShape>>>
{
    using reactions = sc::custom_reaction<Tick>;
    sc::result react(const Tick&)
    {
        return React<AnyShape, Middle<AnyShape>>(*this, 1);
    }
};
template <class AnyShape>
struct Inner : sc::simple_state<Inner<AnyShape>, Middle<AnyShape>>
{
    using reactions = sc::custom_reaction<Tick>;
    sc::result react(const Tick&)
    {
        return React<AnyShape, Other<AnyShape>>(*this, 2);
    }
};
template <class AnyShape>
struct Other : sc::simple_state<Other<AnyShape>, Middle<AnyShape>>
{
    using reactions = sc::custom_reaction<Tick>;
    sc::result react(const Tick&)
    {
        return React<AnyShape, Inner<AnyShape>>(*this, 2);
    }
};

/// As the hand-written machines are used.
template <class AnyShape>
class Machine
{
public:
    Machine()
    {
        chart.initiate();
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void SetValue(int index, float value)
    {
        chart.values[index / AnyShape::kInLevel][index % AnyShape::kInLevel] = value;
    }

    /// The values are those of the innermost state's conditions.
    void SetInnerValue(int index, float value)
    {
        chart.values[2][index] = value;
    }

    void Update(float)
    {
        chart.process_event(Tick());
    }

    unsigned int Switched() const
    {
        return chart.switched;
    }

private:
    Chart<AnyShape> chart;
};

} // namespace chart

namespace meta
{

namespace msm = boost::msm;
namespace mpl = boost::mpl;
using msm::front::none;
using msm::front::Row;

struct Tick
{
};

template <class AnyShape, int kTransition>
struct Guard
{
    template <class Event, class Machine, class Source, class Target>
    bool operator()(const Event&, Machine& machine, Source&, Target&) const
    {
        constexpr int kConditions = AnyShape::kConditions;
        return AnyHolds<kConditions>(machine.values + kTransition * kConditions);
    }
};

struct Count
{
    template <class Event, class Machine, class Source, class Target>
    void operator()(const Event&, Machine& machine, Source&, Target&) const
    {
        ++machine.switched;
    }
};

struct Leaf : msm::front::state<>
{
};
struct Other : msm::front::state<>
{
};

template <class AnyShape, class From, class To, int kTransition>
using Leave = Row<From, Tick, To, Count, Guard<AnyShape, kTransition>>;

/// The transitions of a level's state to another, and those back that the innermost level needs.
template <class AnyShape, class Child>
struct Table;
template <int kConditions, class Child>
struct Table<Shape<2, kConditions>, Child>
{
    using S = Shape<2, kConditions>;
    using Rows = mpl::vector<Leave<S, Child, Other, 0>, Leave<S, Child, Other, 1>,
                             Leave<S, Other, Child, 0>, Leave<S, Other, Child, 1>>;
};
template <int kConditions, class Child>
struct Table<Shape<4, kConditions>, Child>
{
    using S = Shape<4, kConditions>;
    using Rows = mpl::vector<Leave<S, Child, Other, 0>, Leave<S, Child, Other, 1>,
                             Leave<S, Child, Other, 2>, Leave<S, Child, Other, 3>>;
};

template <class AnyShape, class Child>
struct Front : msm::front::state_machine_def<Front<AnyShape, Child>>
{
    using initial_state = Child;
    using transition_table = typename Table<AnyShape, Child>::Rows;

    template <class Machine, class Event>
    void no_transition(const Event&, Machine&, int)
    {
    }

    float values[AnyShape::kInLevel] = {};
    unsigned int switched = 0;
};

/// As the hand-written machines are used.
template <class AnyShape>
class Machine
{
public:
    Machine()
    {
        outer.start();
    }

    void SetValue(int index, float value)
    {
        constexpr int kInLevel = AnyShape::kInLevel;
        switch (index / kInLevel)
        {
        case 0:
            outer.values[index] = value;
            break;
        case 1:
            outer.template get_state<Middle&>().values[index - kInLevel] = value;
            break;
        default:
            SetInnerValue(index - 2 * kInLevel, value);
        }
    }

    /// The values are those of the innermost state's conditions.
    void SetInnerValue(int index, float value)
    {
        GetInner().values[index] = value;
    }

    void Update(float)
    {
        outer.process_event(Tick());
    }

    unsigned int Switched()
    {
        return GetInner().switched;
    }

private:
    using Inner = msm::back::state_machine<Front<AnyShape, Leaf>>;
    using Middle = msm::back::state_machine<Front<AnyShape, Inner>>;
    using Outer = msm::back::state_machine<Front<AnyShape, Middle>>;

    Inner& GetInner()
    {
        return outer.template get_state<Middle&>().template get_state<Inner&>();
    }

    Outer outer;
};

} // namespace meta

/// What the benchmarks of crowds and frames ask of a machine.
template <class Machine>
class Peer
{
public:
    void SetInputs(int frame)
    {
        SetFrameValues(machine, frame);
    }

    void SetSwitching(int frame)
    {
        machine.SetInnerValue(0, InTurn(frame, 2.0f, 0.0f));
        machine.SetInnerValue(1, InTurn(frame, 0.0f, 2.0f));
    }

    void Update(float timeStep)
    {
        benchmark::DoNotOptimize(&machine);
        machine.Update(timeStep);
        benchmark::ClobberMemory();
    }

    unsigned int Current() const
    {
        return const_cast<Machine&>(machine).Switched();
    }

private:
    Machine machine;
};

template <class Machine>
void IdleTick(benchmark::State& state)
{
    Peer<Machine> peer;
    for (auto _ : state)
    {
        peer.Update(kTimeStep);
    }
    state.counters["checksum"] = peer.Current();
}

template <class Machine>
void Frame(benchmark::State& state)
{
    Peer<Machine> peer;
    int frame = 0;
    for (auto _ : state)
    {
        RunFrame<Extra::Nothing>(peer, frame++);
    }
    state.counters["checksum"] = peer.Current();
}

template <class Machine>
void Switch(benchmark::State& state)
{
    Peer<Machine> peer;
    int frame = 0;
    for (auto _ : state)
    {
        RunSwitch(peer, frame++);
    }
    if (peer.Current() != static_cast<unsigned int>(frame))
    {
        Fail("a peer did not switch in each tick");
    }
    state.counters["checksum"] = peer.Current() > 0 ? 1 : 0;
}

template <class Machine>
std::unique_ptr<Machine> Make()
{
    return std::make_unique<Machine>();
}

template <class Machine>
void Spawn(benchmark::State& state)
{
    TimeSpawns(state, true, Make<Machine>);
}

template <class Machine>
void Resident(benchmark::State& state)
{
    constexpr int kCount = 20000;
    CountResident(state, kCount, Make<Machine>);
}

/// Measures one library: `name` is a part of the benchmarks' names.
template <template <class> class Machine>
void Register(const std::string& name)
{
    const std::string idle = "Peer" + name + "/";
    benchmark::RegisterBenchmark((idle + "12").c_str(), IdleTick<Machine<Shape<4, 1>>>);
    benchmark::RegisterBenchmark((idle + "24").c_str(), IdleTick<Machine<Shape<4, 2>>>);
    benchmark::RegisterBenchmark((idle + "48").c_str(), IdleTick<Machine<Shape<4, 4>>>);
    benchmark::RegisterBenchmark((idle + "96").c_str(), IdleTick<Machine<Shape<4, 8>>>);
    benchmark::RegisterBenchmark(("PeerFrame" + name).c_str(), Frame<Machine<Sample>>);
    benchmark::RegisterBenchmark(("PeerSwitch" + name).c_str(), Switch<Machine<Sample>>);
    benchmark::RegisterBenchmark(("PeerMany" + name).c_str(),
                                 TickCrowd<Crowd<Peer<Machine<Shape<4, 1>>>>>)
        ->Apply(EachCrowd);
    benchmark::RegisterBenchmark(("PeerFramesOfMany" + name).c_str(),
                                 FrameCrowd<Crowd<Peer<Machine<Sample>>>>)
        ->Apply(EachCrowd);
    benchmark::RegisterBenchmark(("PeerSpawn" + name).c_str(), Spawn<Machine<Sample>>)
        ->UseManualTime();
    benchmark::RegisterBenchmark(("PeerResident" + name).c_str(), Resident<Machine<Sample>>)
        ->Iterations(1);
}

const bool isRegistered = []
{
    Register<chart::Machine>("Statechart");
    Register<meta::Machine>("MetaStateMachine");
    return true;
}();

} // namespace
} // namespace vell::bench
