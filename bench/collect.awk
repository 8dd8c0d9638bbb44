# Gathers the runs of the benchmark program, the counted instructions and the bytes into one CSV: name,
# unit, minimum, median, number of samples, commit, date, machine, compiler.
function add(name, unit, value)
{
    units[name] = unit
    samples[name, ++count[name]] = value
    if (count[name] == 1)
        order[++names] = name
}

FNR == 1 { header = 0 }

FILENAME ~ /\.csv$/ {
    if ($0 ~ /^name,/) {
        header = 1
        columns = split($0, field, ",")
        counter = field[columns]
        gsub(/"/, "", counter)
        next
    }
    if (!header) next
    split($0, field, ",")
    name = field[1]
    gsub(/"/, "", name)
    if (name ~ /_(mean|median|stddev|cv)$/) next
    if (counter == "bytes") {
        sub(/\/.*/, "", name)
        add(name, "bytes", field[columns] + 0)
        next
    }
    # Wall time is for what was timed by hand; all else goes by the time of the processor.
    value = name ~ /manual_time/ ? field[3] : field[4]
    sub(/\/manual_time/, "", name)
    sub(/\/repeats:[0-9]+/, "", name)
    gsub(/machines:|shuffled:/, "", name)
    add(name, field[5], value + 0)
    next
}

FILENAME ~ /table-memory$/ { add("memory_table", "bytes", $1 / 100000); next }

# Four nodes a state: itself and its transitions, with their conditions.
FILENAME ~ /memory$/ {
    add("memory_arena", "bytes", $1 / (4 * states))
    add("memory_heap", "bytes", $2 / (4 * states))
    add("memory_tables", "bytes", $3 / (4 * states))
    add("memory_node", "bytes", ($1 + $2 + $3) / (4 * states))
    add("memory_definition", "bytes", ($1 + $2 + $3) / (7 * states))
    next
}

{ add("instructions_" $1, "instructions", $2) }

END {
    print "name,unit,minimum,median,samples,commit,date,machine,compiler"
    for (n = 1; n <= names; ++n) {
        name = order[n]
        total = count[name]
        for (i = 1; i <= total; ++i)
            sorted[i] = samples[name, i]
        for (i = 2; i <= total; ++i) {
            moving = sorted[i]
            for (j = i - 1; j >= 1 && sorted[j] > moving; --j)
                sorted[j + 1] = sorted[j]
            sorted[j + 1] = moving
        }
        half = int((total + 1) / 2)
        median = total % 2 ? sorted[half] : (sorted[half] + sorted[half + 1]) / 2
        printf "%s,%s,%.10g,%.10g,%d,%s,%s,\"%s\",\"%s\"\n", name, units[name], sorted[1], median, total,
            commit, date, machine, compiler
    }
}
