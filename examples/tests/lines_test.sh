#!/bin/bash
# Runs lines as a user does: it finds the sides of a drawn quadrilateral; what it says to wrong files and command lines,
# and its exit statuses.
#
#     lines_test.sh LINES SCRATCH_FOLDER
set -u
here=$(cd "$(dirname "$0")" && pwd)
lines=$1
scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
# shellcheck source=examples/tests/expectations.sh
. "$here/expectations.sh"

# a bright quadrilateral, its corners at 20,20 110,30 100,100 30,90, on dark ground, 160 x 120
cp "$here/sides.png" .

# has_segment X0 Y0 X1 Y1: some segment lies within 3 pixels of the line through both points and is 25 pixels long
has_segment()
{
    awk -v x0="$1" -v y0="$2" -v x1="$3" -v y1="$4" '
        function away(x, y) { d = ((x - x0) * (y1 - y0) - (y - y0) * (x1 - x0)) / side; return d < 0 ? -d : d }
        BEGIN { side = sqrt((x1 - x0) ^ 2 + (y1 - y0) ^ 2) }
        $1 == "segment" && away($2, $3) < 3 && away($4, $5) < 3 && ($2 - $4) ^ 2 + ($3 - $5) ^ 2 >= 625 { n++ }
        END { exit n < 1 }' found.txt || fail "no segment from $1,$2 to $3,$4: $(cat found.txt)"
}

# has_line DISTANCE ANGLE: one line, and no other, is within 3 pixels and 3 degrees
has_line()
{
    awk -v distance="$1" -v angle="$2" '
        $1 == "line" && ($2 - distance) ^ 2 <= 9 && ($3 - angle) ^ 2 <= 9 { n++ }
        END { exit n != 1 }' found.txt || fail "not one line $1 $2: $(cat found.txt)"
}

expect 0 "" "$lines" sides.png found.png
cp stdout.txt found.txt
is_png found.png
has_segment 20 20 110 30
has_segment 110 30 100 100
has_segment 100 100 30 90
has_segment 30 90 20 20
[ "$(grep -c ^segment found.txt)" -le 6 ] || fail "too many segments: $(cat found.txt)"
# distance of the top left pixel and angle of the normal of each side, by hand
has_line 18 96
has_line 113 8
has_line 85 98
has_line -17 172
[ "$(grep -c ^line found.txt)" -eq 4 ] || fail "not four lines: $(cat found.txt)"
[ "$(grep -cv '^segment [0-9]* [0-9]* [0-9]* [0-9]*$\|^line -\?[0-9]* [0-9]*$' found.txt)" -eq 0 ] ||
    fail "not the format that is told: $(cat found.txt)"

# the same again; fewer of them; none
expect 0 "" "$lines" sides.png again.png
cmp stdout.txt found.txt || fail "another list from run to run"
cmp again.png found.png || fail "another picture from run to run"
expect 0 "" "$lines" --strongest 2 sides.png two.png
[ "$(grep -c ^line stdout.txt)" -eq 2 ] || fail "not the two strongest: $(cat stdout.txt)"
diff <(grep ^line stdout.txt) <(grep ^line found.txt | head -n 2) || fail "not the strongest two of all"
expect 0 "" "$lines" --length 80 --strongest 0 sides.png long.png
[ "$(grep -c ^line stdout.txt)" -eq 0 ] || fail "lines in spite of --strongest 0"
awk '($2 - $4) ^ 2 < 6400 && ($3 - $5) ^ 2 < 6400 { bad = 1 } END { exit bad }' stdout.txt ||
    fail "segments shorter than asked for: $(cat stdout.txt)"
expect 0 "" "$lines" --low 5000 --high 5000 sides.png none.png
[ -s stdout.txt ] && fail "found without an edge: $(cat stdout.txt)"
cmp -s none.png found.png && fail "nothing is drawn"

# one pixel has no lines
base64 -d >one.png <<<iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==
expect 0 "" "$lines" one.png one-found.png
[ -s stdout.txt ] && fail "found in one pixel: $(cat stdout.txt)"

# files that cannot be read or written
expect 1 "cannot read 'missing.png': No such file" "$lines" missing.png out.png
expect 1 "not a PNG" "$lines" found.txt out.png
expect 1 "cannot write 'missing/out.png'" "$lines" one.png missing/out.png
[ -e out.png ] && fail "a picture was written in spite of an error"

# command lines that make no sense
expect 2 "usage" "$lines"
expect 2 "usage" "$lines" one.png
expect 2 "usage" "$lines" one.png out.png out.png
expect 2 "usage" "$lines" one.png out.png --votes
expect 2 "usage" "$lines" --votes 0 one.png out.png
expect 2 "usage" "$lines" --votes 3x one.png out.png
expect 2 "usage" "$lines" --length -1 one.png out.png
expect 2 "usage" "$lines" --gap '' one.png out.png
expect 2 "usage" "$lines" --strongest 10001 one.png out.png
expect 2 "usage" "$lines" --low 101 one.png out.png
expect 2 "usage" "$lines" --width 9 one.png out.png

echo "$failures failures"
[ $failures -eq 0 ]
