# The picture of docs/performance.md, drawn by bench/draw.sh from the data blocks of bench/series.awk.
# One colour and one mark for one thing, in all panels; the colours are those of Okabe and Ito, which
# colour-blind readers tell apart. All axes are logarithmic.
set terminal svg size 960,1640 font "DejaVu Sans,Verdana,sans-serif,12" background "#ffffff"
set output target
set encoding utf8

set style line 1 lc rgb "#0072b2" lw 2 pt 7 ps 0.7          # VELL
set style line 2 lc rgb "#56b4e9" lw 2 pt 5 ps 0.7          # VELL: UpdateMachines, errors only
set style line 3 lc rgb "#000000" lw 2 pt 9 ps 0.8 dt (6,4) # the limit
set style line 4 lc rgb "#d55e00" lw 1.5 pt 11 ps 0.8       # Boost.MSM
set style line 5 lc rgb "#cc79a7" lw 1.5 pt 13 ps 0.9       # Boost.Statechart

set border 3 lc rgb "#888888"
set grid x y lc rgb "#dddddd" lt 1 lw 0.8
set tics nomirror out scale 0.5 textcolor rgb "#222222"
set key top left reverse Left samplen 2 spacing 1.05 font ",11"
set title font ",13" offset 0,-0.3
set logscale xy

set multiplot
set label 1 "What VELL costs" at screen 0.02, screen 0.988 font ",17"
set label 2 source at screen 0.02, screen 0.973 font ",11" textcolor rgb "#555555"

# The panel of a column (0, 1) and a row (0 at the top).
left(c) = 0.085 + 0.5 * c
place(c, r) = sprintf("set lmargin at screen %f; set rmargin at screen %f; " . \
    "set tmargin at screen %f; set bmargin at screen %f", left(c), left(c) + 0.395, \
    0.935 - 0.192 * r, 0.935 - 0.192 * r - 0.132)

# --- Crowds ---
set format x "%.0f"
unset mxtics
set xlabel "machines" offset 0,0.5
set xrange [0.8:12500]

crowd(name, together) = \
    sprintf("plot $%s_loop with linespoints ls 1 title 'VELL, a loop', ", name) . \
    sprintf("$%s_together with linespoints ls 2 title 'VELL, %s', ", name, together) . \
    sprintf("$%s_limit with linespoints ls 3 title 'hand-written limit', ", name) . \
    sprintf("$%s_meta with linespoints ls 4 title (has_%s_meta ? 'Boost.MSM' : ''), ", name, name) . \
    sprintf("$%s_chart with linespoints ls 5 title (has_%s_chart ? 'Boost.Statechart' : '')", \
        name, name)

do for [shuffled = 0:1] {
    order = shuffled ? "in shuffled order" : "in turn"
    name = shuffled ? "shuffled" : "turn"
    set ylabel (shuffled ? "" : "ns per machine") offset 1.5,0

    eval place(shuffled, 0)
    set title "A frame: five parameters set and a tick, " . order
    set yrange [5:20000]
    eval crowd(name . "_frame", "all inputs, then UpdateMachines")
    unset label 1
    unset label 2

    eval place(shuffled, 1)
    set title "An idle tick, twelve conditions, " . order
    set yrange [5:5000]
    eval crowd(name . "_idle", "UpdateMachines")
}

# --- Conditions and loads ---
eval place(0, 2)
set title "An idle tick of one machine"
set xlabel "conditions of three states"
set ylabel "ns"
set xrange [11:105]
set yrange [5:500]
set xtics (12, 24, 48, 96)
plot $condition_vell with linespoints ls 1 title "VELL", \
    $condition_limit with linespoints ls 3 title "hand-written limit", \
    $condition_meta with linespoints ls 4 title (has_condition_meta ? "Boost.MSM" : ""), \
    $condition_chart with linespoints ls 5 title (has_condition_chart ? "Boost.Statechart" : "")

eval place(1, 2)
set title "A load (the peers load nothing)"
set xlabel "states of the document, three transitions each"
set ylabel "ns per state"
set xrange [800:125000]
set yrange [500:50000]
set xtics (1000, 10000, 100000)
plot $load_vell with linespoints ls 1 title "VELL, with its log lines", \
    $load_quiet with linespoints ls 2 title "VELL, lines of errors only", \
    $load_limit with linespoints ls 3 title "bare parse of the same text"

# --- Dots: one below the other, each with its figure ---
unset ylabel
unset logscale y
unset key
set grid noytics
set border 1
set format x "%g"
set xtics auto
set mxtics default
set ytics scale 0
shown(x) = x < 10 ? sprintf("%.2g", x) : sprintf("%.0f", x)
dots(c, r, name, rows) = place(c, r) . sprintf("; set lmargin at screen %f; ", left(c) + 0.1) . \
    sprintf("set yrange [%d.6:0.4]; plot ", rows) . \
    sprintf("for [s = 1:5] $%s using ($3 == s ? $2 : NaN):1 with points ls s ps 1, ", name) . \
    sprintf("$%s using 2:1:(shown($2)) with labels left offset 1.1,0 font ',10', ", name) . \
    sprintf("$%s using (NaN):1:ytic(4)", name)

set title "A frame of one machine, and what may come with it"
set xlabel "ns (the peers: a frame alone)"
set xrange [5:1000]
eval dots(0, 3, "frame", rows_frame)

set title "A frame that changes the innermost state"
set xlabel "ns (the peers write no lines)"
set xrange [10:5000]
eval dots(1, 3, "switch", rows_switch)

set title "One more machine: create, Init, Start"
set xlabel "µs (the peers load nothing)"
set xrange [0.1:1000]
eval dots(0, 4, "spawn", rows_spawn)

set title "One more machine: resident memory"
set xlabel "KiB (the peers load nothing)"
set xrange [0.1:1000]
eval dots(1, 4, "resident", rows_resident)

unset multiplot
