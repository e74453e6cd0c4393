#!/usr/bin/env bash
# The record digests.txt has one line for each export of exports.txt, in the same order: its name and 16 digits.
set -u
cd "$(dirname "$0")" || exit 1
failed=0
if ! diff <(cut -d' ' -f1 digests.txt) <(LC_ALL=C sort exports.txt) >/dev/null; then
    echo "exports without a digest, or digests of what is no export:"
    LC_ALL=C comm -3 <(LC_ALL=C sort exports.txt) <(cut -d' ' -f1 digests.txt | LC_ALL=C sort) | sed 's/^/    /'
    failed=1
fi
if grep -nvxE '[A-Za-z0-9_]+ [0-9a-f]{16}' digests.txt; then
    echo "lines of another form"
    failed=1
fi
exit $failed
