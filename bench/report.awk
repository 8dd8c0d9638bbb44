# Prints the goals with the figures of build/bench.csv beside them. What was not measured has no figure.
BEGIN { FS = "," }
NR > 1 { figure[$1] = $4; least[$1] = $3 }

function has(name) { return name in figure }

function line(work, value, goal, stretch) { printf "%-62s %12s  %-16s %s\n", work, value, goal, stretch }

function plain(work, name, goal, stretch)
{
    line(work, has(name) ? sprintf("%.4g", figure[name]) : "", goal, stretch)
}

function ratio(work, above, below, goal, stretch)
{
    if (below ~ /^Peer/ && !has(below)) return
    line(work, has(above) && has(below) ? sprintf("%.2f", figure[above] / figure[below]) : "", goal,
        stretch)
}

function load(states, goal, stretch,    net)
{
    if (!has("Load/" states))
        return
    net = figure["Load/" states] - figure["LimitLoadWrites/" states]
    line("load less its writes / bare parse, " states " states",
        sprintf("%.2f", net / figure["LimitLoadParse/" states]), goal, stretch)
}

function net_state(states)
{
    return (figure["Load/" states] - figure["LimitLoadWrites/" states]) / states
}

END {
    line("work", "figure", "goal", "stretch")
    plain("idle tick, 3 states, 12 conditions: instructions", "instructions_idle_tick", "430", "300")
    plain("  nanoseconds", "IdleTickByConditions/12", "", "")
    ratio("  / limit.virtual in one block", "IdleTickByConditions/12", "LimitVirtualBlock", "1.25", "1.0")
    ratio("  / limit.switch", "IdleTickByConditions/12", "LimitSwitch", "", "")
    ratio("  / Boost.Statechart", "IdleTickByConditions/12", "PeerStatechart", "", "")
    ratio("  / Boost.MSM", "IdleTickByConditions/12", "PeerMetaStateMachine", "", "")
    plain("each further condition: instructions", "instructions_further_condition", "30", "18")
    line("  nanoseconds", sprintf("%.2f", (figure["IdleTickByConditions/96"] - \
        figure["IdleTickByConditions/12"]) / 84), "2", "")
    ratio("tick in 100,000 nodes / in 10", "IdleTickByNodes/100000", "IdleTickByNodes/10", "1.05", "1.0")
    plain("state change without the tick: instructions", "instructions_state_change", "1400", "900")
    line("state change / its bare writes", sprintf("%.2f", (figure["SwitchingTick/3"] - \
        figure["HeldTick/3"]) / figure["LimitLogOfOneChange"]), "1.15", "")
    plain("  switching tick, nanoseconds", "SwitchingTick/3", "", "")
    plain("  its bare writes, nanoseconds", "LimitLogOfOneChange", "", "")
    plain("blip, start to end: nanoseconds", "BlipStartAndEnd", "", "")
    ratio("10,000 machines in turn, UpdateMachines / limit.virtual", "ManyMachinesTogether/10000/0", \
        "ManyLimitVirtualBlock/10000/0", "1.25", "1.0")
    ratio("10,000 machines shuffled, UpdateMachines / limit.virtual", "ManyMachinesTogether/10000/1", \
        "ManyLimitVirtualBlock/10000/1", "1.25", "1.0")
    ratio("10,000 machines in turn / limit.virtual", "ManyMachines/10000/0", \
        "ManyLimitVirtualBlock/10000/0", "1.25", "1.0")
    ratio("10,000 machines shuffled / limit.virtual", "ManyMachines/10000/1", \
        "ManyLimitVirtualBlock/10000/1", "1.25", "1.0")
    ratio("10,000 machines shuffled / limit.virtual scattered", "ManyMachines/10000/1", \
        "ManyLimitVirtualScattered/10000/1", "", "")
    load(1000, "2.0", "1.5")
    load(10000, "2.0", "1.5")
    load(100000, "2.0", "1.5")
    line("load, nanoseconds a state at 100,000 / at 1,000", \
        sprintf("%.2f", net_state(100000) / net_state(1000)), "1.35", "")
    plain("memory a node with its tables, its conditions' too: bytes", "memory_node", "", "")
    plain("memory a definition with its tables: bytes", "memory_definition", "600", "400")
    plain("  of a node in the arena", "memory_arena", "", "")
    plain("  of a node on the heap", "memory_heap", "", "")
    plain("  of a node in its tables", "memory_tables", "", "")
    plain("table of three keys, make and close: nanoseconds", "TableMake", "75", "")
    plain("  read", "TableRead", "9", "")
    plain("  write", "TableWrite", "16", "")
    plain("  bytes", "memory_table", "170", "")
    # By the clock on the wall, which all that goes on beside adds to: the least of each.
    line("process start to first state / program that only parses", has("ProcessToFirstState") ? \
        sprintf("%.2f", least["ProcessToFirstState"] / least["LimitProcessToParse"]) : "", "1.45", "1.2")
}
