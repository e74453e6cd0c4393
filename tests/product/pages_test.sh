#!/usr/bin/env bash
# What the pages say can be followed: every relative link and every picture of a Markdown file exists, and the page of
# all operations names every export. The pictures are small, for they travel with the repository.
# usage: pages_test.sh REPOSITORY
set -u
cd "$1" || exit 1
failed=0
fail()
{
    echo "$*"
    failed=1
}

# links PAGE: the targets of [text](target), outside of code
links()
{
    # shellcheck disable=SC2016  # the quotes that fence code in Markdown
    sed -e '/^```/,/^```/d' -e '/^    /d' -e 's/`[^`]*`//g' "$1" | grep -o '](\([^)]*\))' | sed -e 's/^](//' -e 's/)$//'
}

count=0
while IFS= read -r page; do
    while IFS= read -r target; do
        case $target in
            http://* | https://* | mailto:*) continue ;;
        esac
        count=$((count + 1))
        path=${target%%#*}
        file=$page
        [ -n "$path" ] && file=$(dirname "$page")/$path
        if [ ! -e "$file" ]; then
            fail "${page#./}: $target does not exist"
        elif [[ $target == *#* ]] && ! grep -q "{#${target#*#}}" "$file"; then
            fail "${page#./}: there is no heading {#${target#*#}} in $path"
        fi
    done < <(links "$page")
done < <(find . -name '*.md' -not -path './build/*' -not -path './.git/*')
[ "$count" -ge 40 ] || fail "only $count links were found"

# the page abbreviates what is appended to an operation's name by "..."
named=$(awk -F '|' '
    {
        line = $0
        while (match(line, /lum(i|cv)[A-Z][A-Za-z0-9_]*/)) {
            print substr(line, RSTART, RLENGTH)
            line = substr(line, RSTART + RLENGTH)
        }
        first = $2
        while (match(first, /lumi[A-Za-z0-9_]*/)) {
            name = substr(first, RSTART, RLENGTH)
            first = substr(first, RSTART + RLENGTH)
            rest = $0
            while (match(rest, /\.\.\.[A-Za-z]+/)) {
                print name substr(rest, RSTART + 3, RLENGTH - 3)
                rest = substr(rest, RSTART + RLENGTH)
            }
        }
    }' docs/operations.md | sort -u)
# types, channels and what follows them, from the end
operations=$(sed -E -e '/^lum/!d' -e 's/_L$//' -e 's/_Sfs$//' -e 's/_(C[1-4][A-Z0-9]*(Sfs)?)$//' \
    -e 's/_((8|16|32|64|1)[usf])+$//' -e 's/_Low$//' tests/product/exports.txt | sort -u)
[ "$(wc -l <<<"$operations")" -ge 150 ] || fail "the list of exports makes too few operations"
missing=$(comm -13 <(echo "$named") <(echo "$operations"))
[ -z "$missing" ] || fail "docs/operations.md does not name: ${missing//$'\n'/ }"
# the other way: nothing is named that is not there
unknown=$(comm -23 <(echo "$named") <(echo "$operations"))
[ -z "$unknown" ] || fail "docs/operations.md names what is no export: ${unknown//$'\n'/ }"

total=0
while IFS= read -r picture; do
    bytes=$(wc -c <"$picture")
    total=$((total + bytes))
    [ "$bytes" -le 61440 ] || fail "$picture has $bytes bytes, above 60 KiB"
done < <(find docs/pictures -name '*.png')
[ "$total" -gt 0 ] || fail "there are no pictures"
[ "$total" -le 716800 ] || fail "the pictures have $total bytes, above 700 KiB"
exit $failed
