#!/bin/bash
# Runs bands as a user does: bands of many heights on several threads; what it says to wrong files and command lines,
# and its exit statuses.
#
#     bands_test.sh BANDS PHOTO.png SCRATCH_FOLDER
set -u
here=$(cd "$(dirname "$0")" && pwd)
bands=$1
photo=$2
scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
# shellcheck source=examples/tests/expectations.sh
. "$here/expectations.sh"

for options in "" "--rows 1" "--rows 300 --threads 1" "--threads 8 --rows 7"; do
    # shellcheck disable=SC2086  # several words
    expect 0 "" "$bands" $options --result "edges.png" "$photo"
    grep -qx 'the same bytes' stdout.txt || fail "other bytes with '$options': $(cat stdout.txt)"
    is_png edges.png
    [ -e first.png ] || cp edges.png first.png
    cmp edges.png first.png || fail "another picture with '$options'"
done
grep -qx '384 x 303 pixels in bands of 7 rows' stdout.txt || fail "another size: $(cat stdout.txt)"
grep -qx 'in bands on 8 threads: .* ms, .* times as fast' stdout.txt || fail "no times: $(cat stdout.txt)"

# without a photo, a large picture is drawn
expect 0 "" "$bands"
grep -qx 'the same bytes' stdout.txt || fail "other bytes of the drawn picture: $(cat stdout.txt)"

expect 1 "cannot read 'missing.png': No such file" "$bands" missing.png
expect 1 "cannot write" "$bands" --result missing/edges.png "$photo"
expect 2 "usage" "$bands" --rows
expect 2 "usage" "$bands" --rows 0 "$photo"
expect 2 "usage" "$bands" --threads 0 "$photo"
expect 2 "usage" "$bands" --threads 2x "$photo"
expect 2 "usage" "$bands" --columns 4 "$photo"
expect 2 "usage" "$bands" "$photo" "$photo"

echo "$failures failures"
[ $failures -eq 0 ]
