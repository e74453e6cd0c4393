#!/bin/bash
# Runs train_cascade and detect as a user does: the cascade that is shipped comes out of the one and finds the coins of a
# photograph in the other; what they say to wrong files, and their exit statuses.
#
#     detect_test.sh TRAIN_CASCADE DETECT FOLDER_OF_DETECT SCRATCH_FOLDER
set -u
here=$(cd "$(dirname "$0")" && pwd)
train=$1
detect=$2
shipped=$3
scratch=$4
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
# shellcheck source=examples/tests/expectations.sh
. "$here/expectations.sh"

# the cascade comes out byte for byte
expect 0 "" "$train" --samples samples.png trained.cascade
cmp trained.cascade "$shipped/coins.cascade" || fail "train_cascade writes another cascade than the one shipped"
is_png samples.png

# the coins of the photograph: column and row of each one's middle, as seen by eye
coins="44,55 97,56 154,51 215,48 276,52 334,43
       44,125 102,125 156,126 205,125 270,119 337,125
       44,197 101,195 155,197 212,193 274,194 344,187
       46,259 113,266 172,263 241,265 302,264 357,268"

# check_coins LIST: most coins are found once, well placed, and hardly anything else is
check_coins()
{
    local found=0 lines others coin
    lines=$(wc -l <"$1")
    for coin in $coins; do
        awk -v cx="${coin%,*}" -v cy="${coin#*,}" '
            { dx = $1 + $3 / 2 - cx; dy = $2 + $4 / 2 - cy }
            $3 >= 40 && $3 <= 90 && $4 == $3 && dx * dx + dy * dy <= 100 { n++ }
            END { exit n != 1 }' "$1" && found=$((found + 1))
    done
    others=$((lines - found))
    echo "$found coins of 24 found, $others false alarms"
    [ $found -ge 22 ] || fail "only $found coins of 24 are found"
    [ $others -le 2 ] || fail "$others false alarms"
}

expect 0 "" "$detect" "$shipped/coins.cascade" "$shipped/coins.png" found.png
cp stdout.txt found.txt
check_coins found.txt
is_png found.png
[ "$(wc -c <found.png)" -gt 20000 ] || fail "found.png is too small for the photograph"

# the same again; in larger steps; and nothing where the smallest window is larger than any coin
expect 0 "" "$detect" "$shipped/coins.cascade" "$shipped/coins.png" again.png
cmp stdout.txt found.txt || fail "another list from run to run"
cmp again.png found.png || fail "another picture from run to run"
expect 0 "" "$detect" --growth 1.2 --windows 25 "$shipped/coins.cascade" "$shipped/coins.png" coarse.png
check_coins stdout.txt
expect 0 "" "$detect" --smallest 110 "$shipped/coins.cascade" "$shipped/coins.png" none.png
[ -s stdout.txt ] && fail "found among what is larger than any coin: $(cat stdout.txt)"

# a picture smaller than the window holds nothing
base64 -d >one.png <<<iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==
expect 0 "" "$detect" "$shipped/coins.cascade" one.png one-found.png
[ -s stdout.txt ] && fail "found in one pixel: $(cat stdout.txt)"

# files that cannot be read or written
expect 1 "cannot read the cascade 'missing.cascade': No such file" "$detect" missing.cascade one.png out.png
expect 1 "cannot read the cascade '.': it is a folder" "$detect" . one.png out.png
expect 1 "cannot read 'missing.png': No such file" "$detect" trained.cascade missing.png out.png
expect 1 "not a PNG" "$detect" trained.cascade trained.cascade out.png
expect 1 "cannot write 'missing/out.png'" "$detect" trained.cascade one.png missing/out.png
expect 1 "cannot write 'missing/out.cascade': No such file" "$train" missing/out.cascade

# a damaged cascade is refused, and the line is told
sed 's/^stage .*/stage much/' trained.cascade >damaged.cascade
expect 1 "line 5: 'much' is not a number" "$detect" damaged.cascade one.png out.png
head -n 3 trained.cascade >short.cascade
expect 1 "has no stage" "$detect" short.cascade one.png out.png
expect 1 "not a cascade" "$detect" one.png one.png out.png
[ -e out.png ] && fail "a picture was written in spite of an error"

# command lines that make no sense
expect 2 "usage" "$detect"
expect 2 "usage" "$detect" trained.cascade one.png
expect 2 "usage" "$detect" trained.cascade one.png out.png out.png
expect 2 "usage" "$detect" --growth 1 trained.cascade one.png out.png
expect 2 "usage" "$detect" --growth 1.1x trained.cascade one.png out.png
expect 2 "usage" "$detect" --windows 0 trained.cascade one.png out.png
expect 2 "usage" "$detect" --smallest trained.cascade one.png out.png
expect 2 "usage" "$detect" trained.cascade one.png out.png --smallest
expect 2 "usage" "$detect" --largest 9 trained.cascade one.png out.png
expect 2 "usage" "$train"
expect 2 "usage" "$train" a b
expect 2 "usage" "$train" --samples
expect 2 "usage" "$train" --sheet a b

echo "$failures failures"
[ $failures -eq 0 ]
