# Reads the declarations of the headers, one a line, and writes C++ that compiles if each export can be called through
# the layer with the arguments that its parameters' names speak of, and cannot with others.

function fail(words) {
    print "every_export.awk: " words > "/dev/stderr"
    exit 1
}

{
    if (!match($0, /lum[A-Za-z0-9_]+ *\(/)) {
        fail("no function: " $0)
    }
    name = substr($0, RSTART, RLENGTH - 1)
    parameters = substr($0, RSTART + RLENGTH)
    sub(/\) *;? *$/, "", parameters)
    count = parameters == "void" ? 0 : split(parameters, parameter, / *, */)
    for (i = 1; i <= count; ++i) {
        match(parameter[i], /[A-Za-z0-9_]+(\[[0-9]+\])?$/)
        what[i] = substr(parameter[i], RSTART)
        type[i] = substr(parameter[i], 1, RSTART - 1)
        gsub(/^ +| +$/, "", type[i])
        if (sub(/\[[0-9]+\]/, "", what[i])) {
            type[i] = type[i] "*"
        }
    }
    channels = match(name, /_C[134]/) ? substr(name, RSTART + 2, 1) : 1

    arguments = 0
    for (i = 1; i <= count; ++i) {
        element = type[i]
        sub(/\*$/, "", element)
        if (what[i + 1] ~ /Step$/ && i < count) {
            if (what[i + 2] ~ /BitOffset$/ && i + 1 < count) {
                argument = "lumcv::BitView<" element ">"
                i += 2
            } else {
                isOfPixels = what[i] ~ /^p(Src[12]?|SrcDst|Dst|Image)$/
                # sources of three channels and a destination of one: C3C1, classes, the Harris response
                if (what[i] == "pDst" && (name ~ /C3C1/ || name ~ /^lumiFGMMForeground/)) {
                    isOfPixels = 0
                }
                argument = "lumcv::View<" element ", " (isOfPixels ? channels : 1) ">"
                i += 1
            }
        } else if (type[i] ~ /^Lum(32|64)s\*$/ && what[i] ~ /Size$/) {
            argument = "lumcv::Block&"
        } else if (type[i] ~ /\*\*$/ && what[i] ~ /^pp(State|Pyr)$/) {
            sub(/\*$/, "", element)
            argument = "lumcv::Record<" element ">&"
        } else if (type[i] ~ /^(const )?Lumi?[A-Z][A-Za-z]+(Spec|SpecL|Record|State)\*$/) {
            argument = sub(/^const /, "", element) ? "const lumcv::Record<" element ">&" : "lumcv::Record<" element ">&"
        } else if (type[i] == "Lum8u*" && what[i] ~ /^p(Buffer|StateMem|StateBuf|PyrMem|Spec)$/) {
            argument = "lumcv::Block&"
        } else {
            argument = type[i]
        }
        given[++arguments] = argument
    }

    head = list = types = others = shape = ""
    for (i = 1; i <= arguments; ++i) {
        head = head (i > 1 ? ", " : "") given[i] " a" i
        list = list (i > 1 ? ", " : "") "a" i
        types = types ", " given[i]
        shape = shape ", " given[i]
        if (i > 1) {
            others = others ", " given[i]
        }
    }
    printf "static_assert(lumcv::Callable<%s%s>);\n", name, types

    # the rest costs the compiler more: once for each list of parameters, whatever their elements are
    gsub(/Lum(8u|8s|16u|16s|32s|32f|64f)/, "Element", shape)
    if (!(shape in seen)) {
        seen[shape] = 1
        printf "void call_%s(%s) { [[maybe_unused]] auto result = lumcv::call<%s>(%s); }\n", name, head, name, list
        if (sub(/, [^,]*( [0-9]>)?[^,]*$/, "", types)) {
            printf "static_assert(!lumcv::Callable<%s%s>);\n", name, types
        }
        # no image has elements of Lum32u
        if (given[1] ~ /^lumcv::View/ && sub(/Lum[0-9]+[usf]/, "Lum32u", given[1])) {
            printf "static_assert(!lumcv::Callable<%s, %s%s>);\n", name, given[1], others
        }
    }
    split("", what)
    split("", type)
}
