#!/bin/bash
# Runs track as a user does: on the scene that it draws, whose motion is known, and on the frames of a folder; what it
# says to wrong files, and its exit statuses.
#
#     track_test.sh TRACK SCRATCH_FOLDER
set -u
here=$(cd "$(dirname "$0")" && pwd)
track=$1
scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
# shellcheck source=examples/tests/expectations.sh
. "$here/expectations.sh"

# The camera moves by 5.3 columns a frame, and 11 frames later it looks 60 * sin(1.65) rows lower. Corners keep their
# place in the scene, so they move the other way; those on the ball do not, those at the left leave the picture.
expect 0 "" "$track" --frames 12 --plain plain drawn
cp stdout.txt drawn.txt
awk '
    { lost += $6 == "lost" }
    $6 == "" {
        followed++
        dx = $3 - $1 + 11 * 5.3; dy = $4 - $2 + 60 * sin(1.65)
        right += dx * dx + dy * dy < 0.25
        whole += $5 == 12
    }
    END {
        print followed + 0, "followed,", right + 0, "of them right,", lost + 0, "lost"
        exit !(followed >= 60 && whole == followed && right >= 0.85 * followed && lost >= 5)
    }' drawn.txt || fail "the corners went elsewhere"
[ "$(find drawn -name 'frame-*.png' | wc -l)" -eq 12 ] || fail "not 12 frames"
for file in drawn/*.png plain/*.png; do
    is_png "$file"
done
cmp -s drawn/frame-0011.png plain/frame-0011.png && fail "nothing is drawn into the frames"

# the same from run to run, and from the files of a folder
expect 0 "" "$track" --frames 12 again
cmp stdout.txt drawn.txt || fail "another list from run to run"
expect 0 "" "$track" --from plain folder
cmp stdout.txt drawn.txt || fail "another list from the files"
for file in drawn/*.png; do
    cmp "$file" "again/${file#*/}" && cmp "$file" "folder/${file#*/}" || fail "$file differs from run to run"
done

# a single frame has corners and no ways; few corners, a large window
expect 0 "" "$track" --frames 1 --corners 5 --window 31 one
[ "$(wc -l <stdout.txt)" -eq 5 ] || fail "not five corners"
awk '$5 != 1 || $1 != $3 || $2 != $4 { exit 1 }' stdout.txt || fail "corners move in a single frame"

# a frame of one pixel has no corner
mkdir dot
base64 -d >dot/a.png <<<iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==
cp dot/a.png dot/b.png
expect 0 "" "$track" --from dot dots
[ -s stdout.txt ] && fail "a corner in one pixel: $(cat stdout.txt)"

# files that cannot be read or written
expect 1 "cannot read the folder 'missing'" "$track" --from missing out
mkdir empty mixed
expect 1 "the folder 'empty' holds no PNG files" "$track" --from empty out
cp plain/frame-0000.png mixed/a.png
cp dot/a.png mixed/b.png
expect 1 "frame 1 has another size" "$track" --from mixed mixed-out
echo "this is text" >mixed/a.png
expect 1 "not a PNG" "$track" --from mixed out
[ -e out ] && fail "a folder was made for frames that cannot be read"
: >in-the-way
expect 1 "cannot make the folder 'in-the-way" "$track" --frames 1 in-the-way/below

# command lines that make no sense
expect 2 "usage" "$track"
expect 2 "usage" "$track" a b
expect 2 "usage" "$track" --frames 0 a
expect 2 "usage" "$track" --frames 3x a
expect 2 "usage" "$track" --window 2 a
expect 2 "usage" "$track" --corners
expect 2 "usage" "$track" a --from
expect 2 "usage" "$track" --backwards a

echo "$failures failures"
[ $failures -eq 0 ]
