# Prints the figures of a CSV of bench/run.sh as tables in Markdown, which bench/page.sh puts into
# docs/performance.md: first the goals, in the order in which they matter to a game. What was not measured
# has no figure.
BEGIN { FS = "," }
NR > 1 {
    figure[$1] = $4
    least[$1] = $3
    commit = $6
    date = $7
    split($0, quoted, "\"")
}

function has(name) { return name in figure }

# The figure in three digits that count, or none.
function digits(value)
{
    if (value == "") return ""
    if (value >= 100) return grouped(sprintf("%.0f", value))
    return value >= 10 ? sprintf("%.1f", value) : sprintf("%.2f", value)
}

function grouped(text)
{
    return text + 0 > 999 ? grouped(int(text / 1000)) "," substr(text, length(text) - 2) : text
}

function over(name, divide) { return has(name) ? figure[name] / divide : "" }

function ratio(above, below) { return has(above) && has(below) ? figure[above] / figure[below] : "" }

function header(title, columns)
{
    printf "\n### %s\n\n| %s |\n|", title, columns
    gsub(/[^|]+/, " --- ", columns)
    printf "%s|\n", columns
}

# A row of the goals. `beside` says what the figure is to be compared with.
function goal(work, value, wanted, stretch, beside,    reached, bare_goal, bare_stretch)
{
    bare_goal = wanted
    bare_stretch = stretch
    gsub(/,/, "", bare_goal)
    gsub(/,/, "", bare_stretch)
    reached = value == "" || wanted == "" ? "" : value <= bare_stretch + 0 ? "stretch" : \
        value <= bare_goal + 0 ? "yes" : "no"
    printf "| %s | %s | %s | %s | %s | %s |\n", work, digits(value), wanted, stretch, reached, beside
}

function row(work, value, beside) { printf "| %s | %s | %s |\n", work, digits(value), beside }

# "NAME FIGURE UNIT" of what was measured, "" of what was not; joined by `and_also`.
function named(name, label, divide, unit)
{
    return has(name) ? label " " digits(figure[name] / divide) unit : ""
}

function and_also(first, second) { return first == "" || second == "" ? first second : first ", " second }

function peers(name, divide, unit)
{
    return and_also(named(name "MetaStateMachine", "Boost.MSM", divide, unit), \
        named(name "Statechart", "Boost.Statechart", divide, unit))
}

# "A and B UNIT", the two figures of a ratio.
function two(above, below, divide, unit)
{
    return has(above) && has(below) ? \
        digits(figure[above] / divide) " and " digits(figure[below] / divide) " " unit : ""
}

function by_hand(name, unit) { return named(name, "by hand", 1, unit) }

function net_load(states)
{
    return has("Load/" states) ? figure["Load/" states] - figure["LimitLoadWrites/" states] : ""
}

function load(states, name,    net)
{
    net = net_load(states)
    goal("A load without its writes, relative to the bare parse: " name " states", \
        net == "" ? "" : net / figure["LimitLoadParse/" states], "2.0", "1.5", \
        has("LoadQuiet/" states) ? "with lines of errors only " \
            digits(ratio("LoadQuiet/" states, "LimitLoadParse/" states)) : "")
}

function frame(work, name, count, limit)
{
    printf "| %s | %s | %s | %s | %s |\n", work, digits(over("instructions_frame" name, 1)), \
        digits(over("instructions_" limit, 1)), digits(over("Frame" count, 1)), \
        digits(over("LimitFrame" count, 1))
}

function crowd(work, name,    i, shuffled, size)
{
    if (!has(name "/1000/0")) return
    printf "| %s |", work
    split("1 100 1000 10000", size, " ")
    for (shuffled = 0; shuffled <= 1; ++shuffled)
        for (i = 1; i <= 4; ++i)
            printf " %s |", digits(over(name "/" size[i] "/" shuffled, size[i]))
    print ""
}

function crowds(title)
{
    header(title, "Nanoseconds per machine | 1 | 100 | 1,000 | 10,000 | 1, shuffled | 100 | 1,000 | 10,000")
}

function goals()
{
    header("Goals", "Work | Figure | Goal | Stretch | Reached | Beside it")
    goal("A frame of the sample character, five parameters set and a tick: instructions", \
        over("instructions_frame", 1), "700", "450", by_hand("instructions_frame_limit", ""))
    goal("Setting a float that nobody listens to: instructions", over("instructions_set_value", 1), \
        "60", "30", "")
    goal("the same: nanoseconds", over("SetValueHot", 1), "8", "4", named("LimitSetValue", "a store", 1, ""))
    goal("A frame of 1,000 machines in turn, relative to those by hand", \
        ratio("FramesOfMany/1000/0", "FramesOfManyLimits/1000/0"), "2.0", "1.5", \
        two("FramesOfMany/1000/0", "FramesOfManyLimits/1000/0", 1000, "ns"))
    goal("the same, all inputs set first, then `UpdateMachines`", \
        ratio("FramesOfManyTogether/1000/0", "FramesOfManyLimits/1000/0"), "2.0", "1.5", \
        two("FramesOfManyTogether/1000/0", "FramesOfManyLimits/1000/0", 1000, "ns"))
    goal("10,000 idle machines in turn by `UpdateMachines`, relative to limit.virtual", \
        ratio("ManyMachinesTogether/10000/0", "ManyLimitVirtualBlock/10000/0"), "1.25", "1.0", \
        two("ManyMachinesTogether/10000/0", "ManyLimitVirtualBlock/10000/0", 10000, "ns"))
    goal("the same in shuffled order", \
        ratio("ManyMachinesTogether/10000/1", "ManyLimitVirtualBlock/10000/1"), "1.25", "1.0", \
        two("ManyMachinesTogether/10000/1", "ManyLimitVirtualBlock/10000/1", 10000, "ns"))
    goal("An idle tick of the sample, with three parameters that reset: instructions", \
        over("instructions_sample_tick", 1), "300", "200", \
        has("CharacterTick") ? digits(figure["CharacterTick"]) " ns" : "")
    goal("A tick of `samples/locomotion.json`, which has none that resets: instructions", \
        over("instructions_settled_tick", 1), "200", "120", "")
    goal("A tick of the sample with a trigger on a transition of the active state: instructions", \
        over("instructions_trigger_tick", 1), "400", "350", "")
    goal("A state change, with listener and callback, without the tick: instructions", \
        over("instructions_state_change", 1), "2,200", "1,400", "")
    goal("the same under `SetLogLevel(LogError)`: instructions", \
        over("instructions_state_change_quiet", 1), "1,200", "700", "")
    load(1000, "1,000")
    load(10000, "10,000")
    load(100000, "100,000")
    goal("One more machine of the sample, errors only, relative to its bare parse", \
        ratio("SpawnQuiet", "LimitSpawnParse"), "2.5", "1.5", two("SpawnQuiet", "LimitSpawnParse", 1000, "us"))
    goal("the same: resident KiB", over("ResidentMachine", 1024), "56", "40", \
        named("LimitResidentParse", "bare parse", 1024, ""))
    goal("Memory per definition with its tables: bytes", over("memory_definition", 1), "330", "250", "")
}

function games()
{
    header("A frame of one machine", \
        "With | Instructions | by hand | Nanoseconds | by hand")
    frame("nothing else", "", "", "frame_limit")
    frame("a parameter that resets each frame, set in each", "_reset", "Reset", "reset_limit")
    frame("a trigger on a transition of the active state", "_trigger", "Trigger", "trigger_limit")
    frame("a listener on a parameter that changes", "_listener", "Listener", "listener_limit")
    frame("an execute action on each of three active states", "_actions", "Actions", "actions_limit")
    crowds("A frame of many machines")
    crowd("a loop", "FramesOfMany")
    crowd("all inputs, then `UpdateMachines`", "FramesOfManyTogether")
    crowd("by hand", "FramesOfManyLimits")
    crowd("Boost.MSM", "PeerFramesOfManyMetaStateMachine")
    crowd("Boost.Statechart", "PeerFramesOfManyStatechart")
    crowds("A tick of many machines of the sample, without inputs")
    crowd("a loop", "TicksOfMany")
    crowd("`UpdateMachines`", "TicksOfManyTogether")
    crowd("by hand", "TicksOfManyLimits")
    crowds("An idle tick of many generated machines, twelve conditions")
    crowd("a loop", "ManyMachines")
    crowd("`UpdateMachines`", "ManyMachinesTogether")
    crowd("limit.virtual in one block", "ManyLimitVirtualBlock")
    crowd("Boost.MSM", "PeerManyMetaStateMachine")
    crowd("Boost.Statechart", "PeerManyStatechart")
}

function changes()
{
    header("Spawns and state changes of the sample", "Work | Figure | Beside it")
    row("One more machine, with its log lines: microseconds", over("SpawnWithLines", 1000), "")
    row("with lines of errors only", over("SpawnQuiet", 1000), \
        and_also(named("LimitSpawnParse", "bare parse", 1000, ""), peers("PeerSpawn", 1000, "")))
    row("in memory that an earlier machine had", over("SpawnQuietAgain", 1000), \
        named("LimitSpawnParseAgain", "bare parse", 1000, ""))
    row("the same: instructions, with its end", over("instructions_spawn_quiet", 1), \
        named("instructions_spawn_limit", "bare parse", 1, ""))
    row("Machines per second, with lines of errors only", \
        has("SpawnQuiet") ? 1e9 / figure["SpawnQuiet"] : "", \
        has("LimitSpawnParse") ? "bare parses " digits(1e9 / figure["LimitSpawnParse"]) : "")
    row("One more machine: resident KiB", over("ResidentMachine", 1024), \
        and_also(named("LimitResidentParse", "bare parse", 1024, ""), peers("PeerResident", 1024, "")))
    row("A frame that changes the innermost state: nanoseconds", over("SwitchWithLines", 1), \
        named("LimitSwitchWrites", "bare writes of its lines", 1, ""))
    row("with lines of errors only", over("SwitchQuiet", 1), \
        and_also(by_hand("LimitSwitchByHand", ""), peers("PeerSwitch", 1, "")))
    row("the same: instructions", over("instructions_switch_quiet", 1), by_hand("instructions_switch_limit", ""))
    row("A switching tick of a generated document without the tick, relative to its bare writes", \
        has("SwitchingTick/3") ? (figure["SwitchingTick/3"] - figure["HeldTick/3"]) / \
        figure["LimitLogOfOneChange"] : "", two("SwitchingTick/3", "LimitLogOfOneChange", 1, "ns"))
    row("A blip from start to end, three ticks: nanoseconds", over("BlipStartAndEnd", 1), "")
}

function others()
{
    header("Idle ticks, loads and tables", "Work | Figure | Beside it")
    row("Idle tick, three states, twelve conditions: instructions", over("instructions_idle_tick", 1), "")
    row("the same: nanoseconds", over("IdleTickByConditions/12", 1), \
        and_also(and_also(and_also(named("LimitVirtualBlock/12", "limit.virtual in one block", 1, ""), \
        named("LimitVirtualScattered", "scattered", 1, "")), named("LimitSwitch", "limit.switch", 1, "")), \
        and_also(named("PeerMetaStateMachine/12", "Boost.MSM", 1, ""), \
        named("PeerStatechart/12", "Boost.Statechart", 1, ""))))
    row("Each additional condition: instructions", over("instructions_further_condition", 1), "")
    row("the same: nanoseconds", has("IdleTickByConditions/96") ? \
        (figure["IdleTickByConditions/96"] - figure["IdleTickByConditions/12"]) / 84 : "", \
        has("LimitVirtualBlock/96") ? "limit.virtual " \
        digits((figure["LimitVirtualBlock/96"] - figure["LimitVirtualBlock/12"]) / 84) : "")
    row("Each additional state on the stack, with four conditions: nanoseconds", \
        has("IdleTickByDepth/8") ? (figure["IdleTickByDepth/8"] - figure["IdleTickByDepth/1"]) / 7 : "", "")
    row("The same tick in a document of 100,000 nodes, relative to one of 10", \
        ratio("IdleTickByNodes/100000", "IdleTickByNodes/10"), "")
    row("10,000 machines in shuffled order, relative to limit.virtual scattered over the heap", \
        ratio("ManyMachines/10000/1", "ManyLimitVirtualScattered/10000/1"), "")
    row("A load, nanoseconds per state at 100,000, relative to 1,000", \
        has("Load/100000") ? net_load(100000) / net_load(1000) / 100 : "", "")
    row("A load of a state with its transitions: instructions", over("instructions_load_state", 1), \
        named("instructions_parse_state", "bare parse", 1, ""))
    row("the same with lines of errors only", over("instructions_load_state_quiet", 1), "")
    row("Memory per node with its conditions: bytes", over("memory_node", 1), \
        and_also(and_also(named("memory_arena", "arena", 1, ""), named("memory_heap", "heap", 1, "")), \
        named("memory_tables", "tables", 1, "")))
    row("A table of three short keys, created and closed: nanoseconds", over("TableMake", 1), \
        named("LimitMapMake", "a `std::map`", 1, ""))
    row("read: nanoseconds", over("TableRead", 1), "")
    row("written: nanoseconds", over("TableWrite", 1), "")
    row("its bytes", over("memory_table", 1), "")
    # By the clock on the wall, which all that goes on beside adds to: the least of each.
    row("Process start to the first \"[Enter] \" line, relative to a program that only parses", \
        has("ProcessToFirstState") ? least["ProcessToFirstState"] / least["LimitProcessToParse"] : "", "")
}

END {
    printf "All figures are of one run, of %s at commit %s: %s, %s.\n", date, commit, quoted[2], quoted[4]
    goals()
    games()
    changes()
    others()
}
