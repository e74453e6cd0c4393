#!/bin/bash
# Runs repair as a user does: what it writes, how near the repair comes to the photograph, what it says to wrong files,
# and its exit statuses.
#
#     repair_test.sh REPAIR PHOTO.png SCRATCH_FOLDER
set -u
here=$(cd "$(dirname "$0")" && pwd)
repair=$1
photo=$2
scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
# shellcheck source=examples/tests/expectations.sh
. "$here/expectations.sh"

pictures="mask before distance by-front difference-front by-isophote difference-isophote"

# check_pictures FOLDER: all are there, and nothing else is
check_pictures()
{
    local picture
    for picture in $pictures; do
        is_png "$1/$picture.png"
    done
    [ "$(find "$1" -type f | wc -l)" -eq 7 ] || fail "$1 holds other files than the seven pictures"
}

# levels_of WHAT: how many levels stdout.txt says that it is from the photograph
levels_of()
{
    sed -n "s/^$1: \([0-9.]*\) levels from the photograph$/\1/p" stdout.txt
}

# without a mask: scratched, and repaired to a tenth of the damage
expect 0 "" "$repair" "$photo" own
check_pictures own
grep -q '^[1-9][0-9]* of [0-9]* pixels are damaged$' stdout.txt || fail "no count of damaged pixels"
damage=$(levels_of scratched)
for method in front isophote; do
    after=$(levels_of "by $method")
    echo "by $method: $after levels instead of $damage"
    awk -v after="$after" -v damage="$damage" 'BEGIN { exit !(damage > 50 && after > 0 && after < damage / 10) }' ||
        fail "the repair by $method is $after levels off, the damage $damage"
done
cmp -s own/by-front.png own/by-isophote.png && fail "both methods make the same picture"
cmp -s own/before.png own/by-front.png && fail "nothing was repaired"

# the same again
cp stdout.txt own.txt
expect 0 "" "$repair" "$photo" again
cmp stdout.txt own.txt || fail "other numbers from run to run"
for picture in $pictures; do
    cmp "own/$picture.png" "again/$picture.png" || fail "$picture.png differs from run to run"
done

# with the mask that it has written, what it has scratched is repaired to the same pictures
expect 0 "" "$repair" --mask own/mask.png own/before.png given/deeper
check_pictures given/deeper
for picture in mask before distance by-front by-isophote; do
    cmp "own/$picture.png" "given/deeper/$picture.png" || fail "$picture.png is another with the mask given"
done
grep -q scratched stdout.txt && fail "scratched in spite of a mask"

# known pixels from farther away make another picture
expect 0 "" "$repair" --radius 2.5 "$photo" near
cmp -s own/by-front.png near/by-front.png && fail "the radius does not matter"
cmp own/before.png near/before.png || fail "the radius matters to the scratches"

# one pixel, scratched or told to be damaged
base64 -d >one.png <<<iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==
expect 0 "" "$repair" one.png one
check_pictures one
expect 0 "" "$repair" --mask one.png one.png whole
check_pictures whole

# files that cannot be read or written
expect 1 "cannot read 'missing.png': No such file" "$repair" missing.png out
expect 1 "cannot read 'missing.png': No such file" "$repair" --mask missing.png one.png out
expect 1 "not a PNG" "$repair" own.txt out
expect 1 "the mask 'own/mask.png' is not as large as the photograph" "$repair" --mask own/mask.png one.png out
[ -e out ] && fail "a folder was made in spite of an error"
: >in-the-way
expect 1 "cannot make the folder 'in-the-way'" "$repair" one.png in-the-way
mkdir -p blocked/by-front.png
expect 1 "cannot write 'blocked/by-front.png'" "$repair" one.png blocked

# command lines that make no sense
expect 2 "usage" "$repair"
expect 2 "usage" "$repair" one.png
expect 2 "usage" "$repair" one.png out out
expect 2 "usage" "$repair" --mask one.png out
expect 2 "usage" "$repair" one.png out --mask
expect 2 "usage" "$repair" --mask one.png --mask one.png one.png out
expect 2 "usage" "$repair" --radius 0.5 one.png out
expect 2 "usage" "$repair" --radius nan one.png out
expect 2 "usage" "$repair" --radius 101 one.png out
expect 2 "usage" "$repair" --radius 3x one.png out
expect 2 "usage" "$repair" one.png out --radius
expect 2 "usage" "$repair" --method front one.png out

echo "$failures failures"
[ $failures -eq 0 ]
