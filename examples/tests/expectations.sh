# shellcheck shell=bash
# What scripts share that run programs as a user does. They source it in the folder where what the programs say may be
# written. `failures` counts what failed.
failures=0

fail()
{
    echo "FAILED: $*"
    failures=$((failures + 1))
}

# expect STATUS WORDS COMMAND...: the command ends with the status, and what it writes to stderr holds the words (nothing
# at all if there are none)
expect()
{
    local status=$1 words=$2 got
    shift 2
    "$@" >stdout.txt 2>stderr.txt </dev/null
    got=$?
    [ $got -eq "$status" ] || fail "${*##*/}: status $got instead of $status: $(cat stderr.txt)"
    if [ -z "$words" ]; then
        [ ! -s stderr.txt ]
    else
        grep -qF -- "$words" stderr.txt
    fi || fail "${*##*/}: no '$words' in its message: $(cat stderr.txt)"
}

is_png()
{
    [ "$(head -c 8 "$1" | od -An -tx1 | tr -d ' \n')" = 89504e470d0a1a0a ] || fail "$1 is no PNG"
}
