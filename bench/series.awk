# Turns a CSV of bench/run.sh into the data blocks of bench/picture.gp: a block for each line
# and each panel of dots. has_NAME is 0 when nothing of a line was measured.
BEGIN { FS = "," }

NR > 1 {
    figure[$1] = $4
    commit = $6
    date = $7
    split($0, quoted, "\"")
}

# The figures named `pattern` with each of `sizes` in place of `@`, divided by the size where `each` says.
function line(name, pattern, sizes, each,    n, i, size, key, found)
{
    found = 0
    printf "$%s << EOD\n", name
    n = split(sizes, size, " ")
    for (i = 1; i <= n; ++i) {
        key = pattern
        sub(/@/, size[i], key)
        if (!(key in figure)) continue
        printf "%s %.6g\n", size[i], figure[key] / (each ? size[i] : 1)
        found = 1
    }
    if (!found) print "NaN NaN"
    printf "EOD\nhas_%s = %d\n", name, found
}

# Starts a panel of dots, one below the other; each `dot` has a figure, a line style and a name.
function begin(name) { panel = name; rows = 0; printf "$%s << EOD\n", name }
function dot(key, style, label, divide)
{
    if (key in figure)
        printf "%d %.6g %d \"%s\"\n", ++rows, figure[key] / divide, style, label
}
function end()
{
    if (!rows) print "1 NaN 0 \"\""
    printf "EOD\nrows_%s = %d\n", panel, rows
}

# The lines of crowds: in turn where `shuffled` is 0.
function crowds(name, shuffled,    sizes)
{
    sizes = "1 10 100 1000 10000"
    line(name "_frame_loop", "FramesOfMany/@/" shuffled, sizes, 1)
    line(name "_frame_together", "FramesOfManyTogether/@/" shuffled, sizes, 1)
    line(name "_frame_limit", "FramesOfManyLimits/@/" shuffled, sizes, 1)
    line(name "_frame_meta", "PeerFramesOfManyMetaStateMachine/@/" shuffled, sizes, 1)
    line(name "_frame_chart", "PeerFramesOfManyStatechart/@/" shuffled, sizes, 1)
    line(name "_idle_loop", "ManyMachines/@/" shuffled, sizes, 1)
    line(name "_idle_together", "ManyMachinesTogether/@/" shuffled, sizes, 1)
    line(name "_idle_limit", "ManyLimitVirtualBlock/@/" shuffled, sizes, 1)
    line(name "_idle_meta", "PeerManyMetaStateMachine/@/" shuffled, sizes, 1)
    line(name "_idle_chart", "PeerManyStatechart/@/" shuffled, sizes, 1)
}

END {
    conditions = "12 24 48 96"
    states = "1000 10000 100000"
    printf "source = '%s, commit %s, %s'\n", quoted[2], commit, date
    crowds("turn", 0)
    crowds("shuffled", 1)
    line("condition_vell", "IdleTickByConditions/@", conditions, 0)
    line("condition_limit", "LimitVirtualBlock/@", conditions, 0)
    line("condition_meta", "PeerMetaStateMachine/@", conditions, 0)
    line("condition_chart", "PeerStatechart/@", conditions, 0)
    line("load_vell", "Load/@", states, 1)
    line("load_quiet", "LoadQuiet/@", states, 1)
    line("load_limit", "LimitLoadParse/@", states, 1)
    begin("frame")
    dot("Frame", 1, "VELL", 1)
    dot("LimitFrame", 3, "by hand", 1)
    dot("PeerFrameMetaStateMachine", 4, "Boost.MSM", 1)
    dot("PeerFrameStatechart", 5, "Boost.Statechart", 1)
    dot("FrameReset", 1, "and a reset: VELL", 1)
    dot("LimitFrameReset", 3, "by hand", 1)
    dot("FrameTrigger", 1, "and a trigger: VELL", 1)
    dot("LimitFrameTrigger", 3, "by hand", 1)
    dot("FrameListener", 1, "and a listener: VELL", 1)
    dot("LimitFrameListener", 3, "by hand", 1)
    dot("FrameActions", 1, "and three actions: VELL", 1)
    dot("LimitFrameActions", 3, "by hand", 1)
    end()
    begin("switch")
    dot("SwitchWithLines", 1, "VELL, with lines", 1)
    dot("LimitSwitchWrites", 3, "bare writes of the lines", 1)
    dot("SwitchQuiet", 2, "VELL, errors only", 1)
    dot("LimitSwitchByHand", 3, "by hand", 1)
    dot("PeerSwitchMetaStateMachine", 4, "Boost.MSM", 1)
    dot("PeerSwitchStatechart", 5, "Boost.Statechart", 1)
    end()
    begin("spawn")
    dot("SpawnWithLines", 1, "VELL, with lines", 1000)
    dot("SpawnQuiet", 2, "VELL, errors only", 1000)
    dot("LimitSpawnParse", 3, "bare parse", 1000)
    dot("SpawnQuietAgain", 2, "VELL, memory reused", 1000)
    dot("LimitSpawnParseAgain", 3, "parse, memory reused", 1000)
    dot("PeerSpawnMetaStateMachine", 4, "Boost.MSM", 1000)
    dot("PeerSpawnStatechart", 5, "Boost.Statechart", 1000)
    end()
    begin("resident")
    dot("ResidentMachine", 1, "VELL", 1024)
    dot("LimitResidentParse", 3, "bare parse", 1024)
    dot("PeerResidentMetaStateMachine", 4, "Boost.MSM", 1024)
    dot("PeerResidentStatechart", 5, "Boost.Statechart", 1024)
    end()
}
