// VELL: data-driven hierarchical state machines.
// bench/PeersBench.cpp: the idle tick in other libraries, whose machines are part of the program.
#include <benchmark/benchmark.h>
#include <boost/mpl/list.hpp>
#include <boost/msm/back/state_machine.hpp>
#include <boost/msm/front/functor_row.hpp>
#include <boost/msm/front/state_machine_def.hpp>
#include <boost/statechart/custom_reaction.hpp>
#include <boost/statechart/event.hpp>
#include <boost/statechart/simple_state.hpp>
#include <boost/statechart/state_machine.hpp>

namespace vell::bench
{
namespace
{

// Three states on top of each other, four transitions each, one condition each; none holds.
constexpr int kTransitions = 4;
float values[3 * kTransitions] = {};

bool Holds(int condition)
{
    benchmark::DoNotOptimize(values);
    return values[condition] > 1.0f;
}

namespace chart
{

namespace sc = boost::statechart;

struct Tick : sc::event<Tick>
{
};
struct Outer;
struct Middle;
struct Inner;
struct Other;

struct Machine : sc::state_machine<Machine, Outer>
{
};

/// Leaves for another state when a condition holds, and else hands the event outwards.
template <class State>
sc::result React(State& state, int level)
{
    for (int i = 0; i < kTransitions; ++i)
    {
        if (Holds(level * kTransitions + i))
        {
            return state.template transit<Other>();
        }
    }
    return state.forward_event();
}

struct Outer : sc::simple_state<Outer, Machine, Middle>
{
    using reactions = sc::custom_reaction<Tick>;
    sc::result react(const Tick&)
    {
        return React(*this, 0);
    }
};
struct Middle : sc::simple_state<Middle, Outer, Inner>
{
    using reactions = sc::custom_reaction<Tick>;
    sc::result react(const Tick&)
    {
        return React(*this, 1);
    }
};
struct Inner : sc::simple_state<Inner, Middle>
{
    using reactions = sc::custom_reaction<Tick>;
    sc::result react(const Tick&)
    {
        return React(*this, 2);
    }
};
struct Other : sc::simple_state<Other, Machine>
{
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

template <int Condition>
struct Guard
{
    template <class Event, class Machine, class Source, class Target>
    bool operator()(const Event&, Machine&, Source&, Target&) const
    {
        return Holds(Condition);
    }
};

struct Leaf : msm::front::state<>
{
};

/// A level whose one state has four transitions to another.
template <int Level, class Child>
struct Front : msm::front::state_machine_def<Front<Level, Child>>
{
    struct Other : msm::front::state<>
    {
    };
    using initial_state = Child;
    struct transition_table
        : mpl::vector<Row<Child, Tick, Other, none, Guard<Level * kTransitions>>,
                      Row<Child, Tick, Other, none, Guard<Level * kTransitions + 1>>,
                      Row<Child, Tick, Other, none, Guard<Level * kTransitions + 2>>,
                      Row<Child, Tick, Other, none, Guard<Level * kTransitions + 3>>>
    {
    };
    template <class Machine, class Event>
    void no_transition(const Event&, Machine&, int)
    {
    }
};

using Inner = msm::back::state_machine<Front<2, Leaf>>;
using Middle = msm::back::state_machine<Front<1, Inner>>;
using Outer = msm::back::state_machine<Front<0, Middle>>;

} // namespace meta

void PeerStatechart(benchmark::State& state)
{
    chart::Machine machine;
    machine.initiate();
    for (auto _ : state)
    {
        machine.process_event(chart::Tick());
    }
    state.counters["checksum"] = machine.state_cast<const chart::Inner*>() != nullptr ? 1 : 0;
}
BENCHMARK(PeerStatechart);

void PeerMetaStateMachine(benchmark::State& state)
{
    meta::Outer machine;
    machine.start();
    for (auto _ : state)
    {
        machine.process_event(meta::Tick());
    }
    state.counters["checksum"] = machine.current_state()[0] == 0 ? 1 : 0;
}
BENCHMARK(PeerMetaStateMachine);

} // namespace
} // namespace vell::bench

BENCHMARK_MAIN();
