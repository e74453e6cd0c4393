#!/bin/bash
# Runs watch as a user does: on the scene that it draws, where it is known what is right, and on the frames of a folder;
# what it says to wrong files, and its exit statuses.
#
#     watch_test.sh WATCH SCRATCH_FOLDER
set -u
here=$(cd "$(dirname "$0")" && pwd)
watch=$1
scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
# shellcheck source=examples/tests/expectations.sh
. "$here/expectations.sh"

# All of the first frame is new. Before the balls come in at frame 20, next to nothing is in front; then they and their
# shadows are seen, and almost all pixels are told right.
expect 0 "" "$watch" --frames 40 --plain plain drawn
cp stdout.txt drawn.txt
awk '
    $1 == 0 { first = $2 == 100 }
    $1 >= 15 && $1 < 20 { quiet += $2 < 1 && $3 < 1 && $4 > 98 }
    $1 >= 31 { seen += $2 > 1 && $2 < 12 && $3 > 0.5 && $3 < 8 && $4 > 97 }
    END {
        print first + 0, quiet + 0, seen + 0
        exit !(NR == 40 && first && quiet == 5 && seen == 9)
    }' drawn.txt || fail "other pixels are in front: $(cat drawn.txt)"
for kind in classes background history; do
    [ "$(find drawn -name "$kind-*.png" | wc -l)" -eq 40 ] || fail "not 40 pictures of $kind"
done
for file in drawn/*.png plain/*.png; do
    is_png "$file"
done

# the same from run to run, and from the files of a folder, of which it is not known what is right
expect 0 "" "$watch" --frames 40 again
cmp stdout.txt drawn.txt || fail "other numbers from run to run"
expect 0 "" "$watch" --from plain --frames 40 folder
cut -d' ' -f1-3 drawn.txt | cmp - stdout.txt || fail "other numbers from the files"
for file in drawn/*.png; do
    cmp "$file" "again/${file#*/}" && cmp "$file" "folder/${file#*/}" || fail "$file differs from run to run"
done

# a gray frame of one pixel: a second one like it is background
mkdir dot
base64 -d >dot/a.png <<<iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==
cp dot/a.png dot/b.png
expect 0 "" "$watch" --from dot dots
printf '0 100.00 0.00\n1 0.00 0.00\n' | cmp - stdout.txt || fail "a pixel changes: $(cat stdout.txt)"

# files that cannot be read or written
expect 1 "cannot read the folder 'missing'" "$watch" --from missing out
mkdir empty mixed
expect 1 "the folder 'empty' holds no PNG files" "$watch" --from empty out
cp plain/frame-0000.png mixed/a.png
cp dot/a.png mixed/b.png
expect 1 "frame 1 has another size" "$watch" --from mixed mixed-out
echo "this is text" >mixed/a.png
expect 1 "not a PNG" "$watch" --from mixed out
[ -e out ] && fail "a folder was made for frames that cannot be read"
: >in-the-way
expect 1 "cannot make the folder 'in-the-way" "$watch" --frames 1 in-the-way/below

# command lines that make no sense
expect 2 "usage" "$watch"
expect 2 "usage" "$watch" a b
expect 2 "usage" "$watch" --frames 0 a
expect 2 "usage" "$watch" --frames 3x a
expect 2 "usage" "$watch" a --from
expect 2 "usage" "$watch" --backwards a

echo "$failures failures"
[ $failures -eq 0 ]
