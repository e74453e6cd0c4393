#!/bin/bash
# Every export stands in the generated reference, in one of its groups. That it is documented there in full is what
# doxygen's own warnings are about.
#
# Markup that doxygen has not understood, of which it does not warn, stands in its pages as it was written.
#
#     check_reference.sh OUTPUT_FOLDER LIST_OF_EXPORTS
set -euo pipefail
documented=$(awk '
    /<member kind="function">/ { name = "" }
    match($0, /<name>[^<]*/) { name = substr($0, RSTART + 6, RLENGTH - 6) }
    /<anchorfile>group__/ && name ~ /^lum(i|cv)[A-Z]/ { print name }' "$1/lumcv.tag" | sort -u)
missing=$(comm -13 <(echo "$documented") <(grep '^lum' "$2" | sort -u))
if [ -n "$missing" ]; then
    echo "not in the reference: ${missing//$'\n'/ }" >&2
    exit 1
fi
if grep -l '@ref\|@section\|&lt;table' "$1"/html/*.html >&2; then
    echo "these pages hold markup as it was written" >&2
    exit 1
fi
echo "$(grep -c '^lum' "$2") exports in the reference"
