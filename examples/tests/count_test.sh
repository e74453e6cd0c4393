#!/bin/bash
# Runs count as a user does: it counts the coins of a photograph; what it says to wrong files and command lines, and its
# exit statuses.
#
#     count_test.sh COUNT PHOTO.png SCRATCH_FOLDER
set -u
here=$(cd "$(dirname "$0")" && pwd)
count=$1
photo=$2
scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
# shellcheck source=examples/tests/expectations.sh
. "$here/expectations.sh"

# check_results FOLDER: all files are there, nothing else is, and the table has a line for each object
check_results()
{
    is_png "$1/mask.png"
    is_png "$1/objects.png"
    [ "$(find "$1" -type f | wc -l)" -eq 3 ] || fail "$1 holds other files than the three"
    [ "$(head -n 1 "$1/objects.csv")" = "label,area,x,y,width,height" ] || fail "other columns in $1/objects.csv"
    [ "$(cat stdout.txt)" = "$(($(wc -l <"$1/objects.csv") - 1)) objects" ] || fail "another number than lines in the table"
    [ "$(tail -n +2 "$1/objects.csv" | grep -cv '^[0-9]*,[0-9]*,[0-9]*,[0-9]*,[0-9]*,[0-9]*$')" -eq 0 ] ||
        fail "lines of another form in $1/objects.csv"
}

# the photograph shows 24 coins; each is within its box, none is smaller than 500 pixels or wider than 70
expect 0 "" "$count" --threshold 130 --least 300 "$photo" coins
check_results coins
[ "$(cat stdout.txt)" = "24 objects" ] || fail "not 24 coins: $(cat stdout.txt)"
awk -F, 'NR > 1 { if ($1 != NR - 1 || $2 < 500 || $2 > $5 * $6 || $5 > 70 || $6 > 70 || $3 + $5 > 384 || $4 + $6 > 303) bad = 1 }
    END { exit bad }' coins/objects.csv || fail "no coins: $(cat coins/objects.csv)"
cp stdout.txt coins.txt

# without a least area there are specks besides; the dark ground is one object that takes most of the photograph
expect 0 "" "$count" --threshold 130 --least 1 --smooth 1 "$photo" specks
check_results specks
[ "$(wc -l <specks/objects.csv)" -gt 60 ] || fail "where are the specks? $(cat stdout.txt)"
expect 0 "" "$count" --threshold 130 --dark --least 300 "$photo" ground
check_results ground
awk -F, 'NR > 1 && $2 > 58000 && $5 == 384 && $6 == 303 { found = 1 } END { exit !found }' ground/objects.csv ||
    fail "no ground: $(cat ground/objects.csv)"
expect 0 "" "$count" --threshold 130 --least 1 --smooth 1 --four "$photo" four
check_results four
[ "$(wc -l <four/objects.csv)" -gt "$(wc -l <specks/objects.csv)" ] || fail "corners join in spite of --four"

# the same again
expect 0 "" "$count" --threshold 130 --least 300 "$photo" again/deeper
cmp stdout.txt coins.txt || fail "another number from run to run"
for file in mask.png objects.png objects.csv; do
    cmp "coins/$file" "again/deeper/$file" || fail "$file differs from run to run"
done

# one pixel is an object, or none
base64 -d >one.png <<<iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==
expect 0 "" "$count" --threshold 0 --least 1 one.png one
check_results one
expect 0 "" "$count" --threshold 255 one.png none
check_results none
[ "$(cat stdout.txt)" = "0 objects" ] || fail "nothing is brighter than 255"

# files that cannot be read or written
expect 1 "cannot read 'missing.png': No such file" "$count" --threshold 9 missing.png out
expect 1 "not a PNG" "$count" --threshold 9 coins.txt out
[ -e out ] && fail "a folder was made in spite of an error"
: >in-the-way
expect 1 "cannot make the folder 'in-the-way'" "$count" --threshold 9 one.png in-the-way
mkdir -p blocked/objects.csv
expect 1 "cannot write 'blocked/objects.csv'" "$count" --threshold 9 one.png blocked

# command lines that make no sense
expect 2 "usage" "$count"
expect 2 "usage" "$count" one.png out
expect 2 "usage" "$count" --threshold 9 one.png
expect 2 "usage" "$count" --threshold 9 one.png out out
expect 2 "usage" "$count" --threshold 256 one.png out
expect 2 "usage" "$count" --threshold -1 one.png out
expect 2 "usage" "$count" --threshold 9x one.png out
expect 2 "usage" "$count" one.png out --threshold
expect 2 "usage" "$count" --threshold 9 --smooth 4 one.png out
expect 2 "usage" "$count" --threshold 9 --smooth 101 one.png out
expect 2 "usage" "$count" --threshold 9 --least 0 one.png out
expect 2 "usage" "$count" --threshold 9 --bright one.png out

echo "$failures failures"
[ $failures -eq 0 ]
