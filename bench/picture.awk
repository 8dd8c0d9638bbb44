# Draws cost against size from build/bench.csv as an SVG picture of four panels.
BEGIN {
    FS = ","
    width = 460
    height = 290
    colours[1] = "#1f5fa8"
    colours[2] = "#c4561b"
    colours[3] = "#3b8a3e"
}

NR > 1 {
    figure[$1] = $4
    commit = $6
    split($0, quoted, "\"")
    machine = quoted[2]
}

function text(x, y, anchor, size, words)
{
    printf "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\" font-size=\"%d\">%s</text>\n", x, y, anchor,
        size, words
}

function scaled(y) { return bottom - (bottom - top) * y / largest }

# The least of 1, 2, 2.5, 5 times a power of ten that is not below `value`.
function round_up(value,    power)
{
    power = 10 ^ int(log(value) / log(10))
    if (power > value) power /= 10
    if (value <= power) return power
    if (value <= 2 * power) return 2 * power
    if (value <= 2.5 * power) return 2.5 * power
    if (value <= 5 * power) return 5 * power
    return 10 * power
}

# A panel: its title, the sizes along its foot, and a line for each series. The value of a series at a
# size is the figure of its name with the size in place of `@`, divided by the size where `each` says.
function panel(column, row, title, foot, sizes, series, labels, each,
               n, m, i, j, xs, names, words, value, points, shown, key)
{
    left = column * width + 60
    right = column * width + width - 20
    top = row * height + 70
    bottom = row * height + height + 20
    n = split(sizes, xs, " ")
    m = split(series, names, " ")
    split(labels, words, ";")
    largest = 0
    for (j = 1; j <= m; ++j)
        for (i = 1; i <= n; ++i) {
            key = names[j]
            sub(/@/, xs[i], key)
            if (!(key in figure)) continue
            value[j, i] = figure[key] / (each ? xs[i] : 1)
            if (value[j, i] > largest) largest = value[j, i]
        }
    text(left - 40, top - 18, "start", 14, title)
    if (largest == 0) return
    largest = round_up(largest)
    for (i = 0; i <= 4; ++i) {
        printf "<line x1=\"%d\" y1=\"%.1f\" x2=\"%d\" y2=\"%.1f\" stroke=\"#dddddd\"/>\n", left,
            scaled(largest * i / 4), right, scaled(largest * i / 4)
        text(left - 6, scaled(largest * i / 4) + 4, "end", 11, sprintf("%g", largest * i / 4))
    }
    for (i = 1; i <= n; ++i)
        text(place(i, n), bottom + 16, "middle", 11, xs[i])
    text((left + right) / 2, bottom + 34, "middle", 11, foot)
    for (j = 1; j <= m; ++j) {
        points = ""
        shown = 0
        for (i = 1; i <= n; ++i)
            if ((j, i) in value) {
                points = points sprintf(" %.1f,%.1f", place(i, n), scaled(value[j, i]))
                printf "<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3\" fill=\"%s\"/>\n", place(i, n),
                    scaled(value[j, i]), colours[j]
                shown = 1
            }
        if (!shown) continue
        printf "<polyline fill=\"none\" stroke=\"%s\" stroke-width=\"2\" points=\"%s\"/>\n", colours[j],
            points
        printf "<g fill=\"%s\">", colours[j]
        text(left + 8, top + 14 * j - 4, "start", 11, words[j])
        printf "</g>\n"
    }
}

function place(i, n) { return left + 20 + (right - left - 40) * (i - 1) / (n - 1) }

END {
    printf "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" font-family=\"sans-serif\" fill=\"#222222\">\n",
        2 * width, 2 * height + 80
    printf "<rect width=\"100%%\" height=\"100%%\" fill=\"#ffffff\"/>\n"
    text(20, 24, "start", 15, "Cost against size, in nanoseconds (median)")
    text(20, 42, "start", 11, machine ", commit " commit)
    panel(0, 0, "Idle tick", "conditions, three states on the stack", "12 24 48 96",
        "IdleTickByConditions/@", "VELL", 0)
    panel(1, 0, "Idle tick", "states on the stack, four conditions each", "1 2 4 8",
        "IdleTickByDepth/@", "VELL", 0)
    panel(0, 1, "Idle tick of one of many machines", "machines", "1 10 100 1000 10000",
        "ManyMachines/@/0 ManyMachines/@/1 ManyLimitVirtualBlock/@/1",
        "in turn;in shuffled order;limit.virtual in shuffled order", 1)
    panel(1, 1, "Load of a state with three transitions", "states in the document", "1000 10000 100000",
        "Load/@ LimitLoadParse/@ LimitLoadWrites/@",
        "load;bare parse of the same text;bare writes of the same log", 1)
    print "</svg>"
}
