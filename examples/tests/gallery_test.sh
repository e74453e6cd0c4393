#!/bin/bash
# Runs the gallery program as a user does: what it writes, what it says to wrong files, and its exit statuses.
#
#     gallery_test.sh GALLERY SCRATCH_FOLDER
set -u
here=$(cd "$(dirname "$0")" && pwd)
gallery=$1
scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
# shellcheck source=examples/tests/expectations.sh
. "$here/expectations.sh"

# a picture of the page is there, is a PNG file, and stands on the page
check_page()
{
    local folder=$1 files file cards
    files=$(grep -o 'src="[^"]*"' "$folder/index.html" | cut -d'"' -f2)
    for file in $files; do
        is_png "$folder/$file"
    done
    cards=$(grep -c '<figure' "$folder/index.html")
    [ "$cards" -ge 26 ] || fail "only $cards pictures on $folder/index.html"
    [ "$cards" -eq "$(find "$folder" -name "*.png" | wc -l)" ] || fail "$folder holds other pictures than its page"
    [ "$(grep -o '<b>[0-9.]* ms</b>' "$folder/index.html" | wc -l)" -ge 23 ] || fail "times are missing on the page"
    grep -qi '<script\|http' "$folder/index.html" && fail "the page has scripts or needs the network"
    for file in lumiAbsDiff_8u_C1R lumiAddWeighted_8u32f_C1IR lumiFilterRowBorderPipeline_8u16s_C1R \
        lumiFilterColumnPipeline_16s8u_C1R lumiFilterGaussian_8u_C1R lumiFilterGaussian_32f_C1R \
        lumiMinMaxIndx_8u_C1R lumiIntegral_8u32s_C1R lumiRectStdDev_32f_C1R lumiApplyHaarClassifier_32f_C1R \
        lumiHarrisCorner_8u32f_C1R lumiMinEigenVal_8u32f_C1R lumiEigenValsVecs_8u32f_C1R lumiFindPeaks3x3_32f_C1R \
        lumiCannyBorder_8u_C1R lumiFastN_8u_C1R lumiHoughLine_8u32f_C1R lumiHoughProbLine_8u32f_C1R \
        lumiPyramidLayerDown_8u_C1R lumiPyramidLayerUp_8u_C1R lumiOpticalFlowPyrLK_8u_C1R \
        lumiDistanceTransform_3x3_8u32f_C1R lumiDistanceTransform_5x5_8u32f_C1R lumiTrueDistanceTransform_8u32f_C1R \
        lumiFastMarching_8u32f_C1R lumiInpaint_8u_C3R lumiFloodFill_Range8Con_8u_C3IR lumiFloodFill_Grad8Con_8u_C3IR \
        lumiLabelMarkers_8u32s_C1R lumiSegmentWatershed_8u16u_C1IR lumiMarkSpeckles_8u_C1IR \
        lumiFGMMForeground_8u_C3R lumiFGMMBackground_8u_C3R lumiUpdateMotionHistory_8u32f_C1IR \
        lumiUndistortRadial_8u_C3R lumiCreateMapCameraUndistort_32f_C1R lumiCopySubpix_8u_C1R \
        lumiCopySubpixIntersect_8u_C1R lumiSampleLine_8u_C3R lumiGradientColorToGray_8u_C3C1R; do
        grep -q "<summary>[^<]*$file" "$folder/index.html" || fail "$file is not on the page"
    done
}

# without an image: the program's own scene
expect 0 "" "$gallery" --out scene
check_page scene
grep -q '^\[ 1/' stdout.txt || fail "no progress is shown"

# one pixel is enough, and the same pictures come out of it each time
base64 -d >one.png <<<iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5ErkJggg==
expect 0 "" "$gallery" one.png --out one/deeper
check_page one/deeper
expect 0 "" "$gallery" one.png --out again
for file in again/*.png; do
    cmp -s "$file" "one/deeper/$(basename "$file")" || fail "$file differs from run to run"
done

# an image arrives unchanged; the page survives a name that HTML would take for a tag
cp again/running-average.png '<b>&.png'
expect 0 "" "$gallery" '<b>&.png' --out image
check_page image
cmp -s '<b>&.png' image/source-gray.png || fail "the source is not the image that was given"
grep -q '&lt;b&gt;&amp;.png' image/index.html || fail "the file's name is not escaped on the page"

# the named pictures alone, small: 960 pixels become 320
expect 0 "" "$gallery" --out few --only extrema,canny-40-100 --width 400
[ "$(cd few && echo *)" = "canny-40-100.png extrema.png index.html" ] || fail "few holds $(cd few && echo *)"
[ "$(od -An -tu1 -j16 -N8 few/extrema.png | tr -s ' ')" = " 0 0 1 64 0 0 0 213" ] || fail "few/extrema.png is not small"
grep -q '960 &times; 640 pixels' few/index.html || fail "the page tells another size than that of the work"
expect 1 "no picture 'bogus'" "$gallery" --out bad --only extrema,bogus

# files that cannot be read
expect 1 "No such file" "$gallery" missing.png --out bad
: >empty.png
expect 1 "empty" "$gallery" empty.png --out bad
echo "this is text, whatever its name says" >text.png
expect 1 "not a PNG" "$gallery" text.png --out bad
head -c 5 scene/source-rgb.png >signature.png
expect 1 "not a PNG" "$gallery" signature.png --out bad
expect 1 "folder" "$gallery" scene --out bad
head -c 8 scene/source-rgb.png >header.png
expect 1 "cannot read 'header.png'" "$gallery" header.png --out bad
head -c 5000 scene/source-rgb.png >truncated.png
expect 1 "cannot read 'truncated.png'" "$gallery" truncated.png --out bad
{ head -c 3000 scene/source-rgb.png && echo garbage && tail -c +3009 scene/source-rgb.png; } >damaged.png
expect 1 "cannot read 'damaged.png'" "$gallery" damaged.png --out bad
# 65535 x 65535 pixels, says the header of this file of 66 bytes
base64 -d >huge.png <<<iVBORw0KGgoAAAANSUhEUgAA//8AAP//CAAAAACTboaMAAAACUlEQVR4nGMAAAABAAFe/335AAAAAElFTkSuQmCC
expect 1 "too many" "$gallery" huge.png --out bad
[ -e bad ] && fail "a folder was made for an image that cannot be read"

# places that cannot be written
: >in-the-way
expect 1 "cannot make the folder" "$gallery" one.png --out in-the-way
expect 1 "cannot make the folder" "$gallery" one.png --out in-the-way/below
mkdir -p blocked/source-rgb.png
expect 1 "cannot write 'blocked/source-rgb.png'" "$gallery" one.png --out blocked
mkdir -p pageless/index.html
expect 1 "cannot write 'pageless/index.html'" "$gallery" one.png --out pageless

# command lines that make no sense
expect 2 "usage" "$gallery" one.png
expect 2 "usage" "$gallery" --out
expect 2 "usage" "$gallery" one.png one.png --out twice
expect 2 "usage" "$gallery" --in one.png --out twice
expect 2 "usage" "$gallery" --out twice --out again
expect 2 "usage" "$gallery" --out twice --only
expect 2 "usage" "$gallery" --out twice --only ""
expect 2 "usage" "$gallery" --out twice --width 0
expect 2 "usage" "$gallery" --out twice --width 12x

echo "$failures failures"
[ $failures -eq 0 ]
