#!/bin/bash
# The pictures of the pages are what the gallery makes now, pixel by pixel; and that would be noticed if it were not so.
#
#     pictures_test.sh GALLERY SAME_PICTURES PICTURES_FOLDER SCRATCH_FOLDER
set -eu
gallery=$1
same=$2
pictures=$3
scratch=$4
rm -rf "$scratch"
mkdir -p "$scratch"

"$pictures/make" "$gallery" "$scratch/made"
"$same" "$pictures" "$scratch/made"

cp "$scratch/made/pyramid-down.png" "$scratch/made/morph-gradient-3.png"
if "$same" "$pictures" "$scratch/made" >/dev/null; then
    echo "another picture passes for morph-gradient-3.png"
    exit 1
fi
rm "$scratch/made/morph-gradient-3.png"
if "$same" "$pictures" "$scratch/made" >/dev/null; then
    echo "a picture that is missing is not missed"
    exit 1
fi
