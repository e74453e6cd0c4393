# Writes docs/speed.md: every row of the benchmark, for each build and size, as multiples of a memory copy.
# Takes the public headers and the pages of the families, for which function belongs where, and then the tables of the
# builds, with tabs between their columns: function, variant, size, time, copies, peer, goal, multiple.
#
#     awk -v levels="base v3 v4" -v command="..." -v seconds=0.5 -v caches="..." -f page.awk HEADERS PAGES TABLES

function figure(multiple)
{
    return multiple == "" ? "-" : sprintf(multiple < 1.995 ? "%.2f" : multiple < 19.95 ? "%.1f" : "%.0f", multiple)
}

# the figures of one size, of all builds
function cell(row, size, values,    t, text, value, any)
{
    for (t = 1; t <= builds; t++) {
        value = values == "time" ? time[row, size, t] : figure(multiple[row, size, t])
        any = any || (value != "-" && value != "")
        text = text (t > 1 ? " / " : "") (value == "" ? "-" : value)
    }
    return any ? text : ""
}

BEGIN {
    builds = split(levels, level, " ")
    families = split("frame stats filter morph integral pyramid feature distance segment motion geometry", family, " ")
    split("1920x1080 8192x8192 64x64", sizes, " ")
    about["1920x1080"] = "is the size to compare by."
    about["8192x8192"] = "shows that cost grows with the pixels and little else. A copy of so much runs at the\n" \
        "  speed of main memory."
    about["64x64"] = "is the price of a call. Its copy never leaves the first cache, so that multiples are large; the\n" \
        "  time of the call stands beside them. So short a time varies from run to run, now and then by half of itself."
    for (s in sizes) {
        words[sizes[s]] = sizes[s]
        sub(/x/, " x ", words[sizes[s]])
    }
}

FNR == 1 {
    name = FILENAME
    sub(/.*\//, "", name)
    table += name ~ /\.tsv$/
}

name ~ /\.h$/ {
    line = $0
    while (match(line, /lum(i|cv)[A-Z][A-Za-z0-9_]*\(/)) {
        found = substr(line, RSTART, RLENGTH - 1)
        if (line ~ /LUMCV_API/) home[found] = substr(name, 1, length(name) - 2)
        line = substr(line, RSTART + RLENGTH)
    }
}

name ~ /\.md$/ && FNR == 1 {
    heading = $0
    sub(/^# /, "", heading)
    sub(/ *\{.*/, "", heading)
    title[substr(name, 1, length(name) - 3)] = heading
}

name ~ /\.tsv$/ {
    split($0, column, "\t")
    row = column[1] "\t" column[2]
    if (!(row in known)) {
        known[row] = 1
        order[++rows] = row
    }
    measured[column[3]] = 1
    time[row, column[3], table] = column[4]
    multiple[row, column[3], table] = column[8]
}

END {
    print "# Measured speed {#speed}\n"
    print "Every operation that has a benchmark, on one thread, as a multiple of a memory copy: its time, divided by the"
    print "time of one `memcpy` of half the bytes that it reads and writes, taken in turn with it in the same process."
    print "So 1 is the speed of memory, and a multiple belongs to its machine: where caches copy faster, the same work is"
    print "more copies, though it may take less time. This page is what one command makes of its measurements:\n"
    print "    " command " > docs/speed.md\n"
    print "What stands here comes from a processor with " caches ", with " seconds " s"
    print "for each figure. The three builds are those that [the guide](guide.md) tells of; figures of one size stand in"
    gsub(/ /, " / ", levels)
    print "this order: " levels ". They are medians; differences of a few hundredths say nothing.\n"
    for (s = 1; s <= 3; s++)
        if (sizes[s] in measured) print "- **" words[sizes[s]] "** " about[sizes[s]]
    print ""
    print "Where an operation is measured on an image of its own, its variant tells the size, and all columns tell of that."
    for (f = 1; f <= families; f++) {
        printed = 0
        for (r = 1; r <= rows; r++) {
            split(order[r], part, "\t")
            if (home[part[1]] != family[f]) continue
            if (!printed) {
                print "\n## " title[family[f]] "\n"
                print "What these functions are for, tells [their page](" family[f] ".md).\n"
                head = "| Function | Variant |"
                for (s = 1; s <= 3; s++)
                    if (sizes[s] in measured) head = head " " words[sizes[s]] " |"
                if ("64x64" in measured) head = head " One call of 64 x 64 |"
                print head
                gsub(/[^|]+/, "---", head)
                print head
                printed = 1
            }
            done[order[r]] = 1
            printf "| `%s` | %s |", part[1], part[2] == "-" ? "" : part[2]
            for (s = 1; s <= 3; s++)
                if (sizes[s] in measured) printf " %s |", cell(order[r], sizes[s], "multiple")
            print "64x64" in measured ? " " cell(order[r], "64x64", "time") " |" : ""
        }
    }
    for (r = 1; r <= rows; r++)
        if (!(order[r] in done)) {
            print "no header declares the function of the row " order[r] > "/dev/stderr"
            failed = 1
        }
    exit failed
}
