#!/bin/bash
# What ./demo says to an image or a folder that cannot be right, before it installs or builds anything.
#
#     demo_arguments_test.sh DEMO SCRATCH_FOLDER
set -u
demo=$1
scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
failures=0

# expect STATUS WORDS ARGUMENTS...: ends with the status, says the words to stderr, and says nothing else
expect()
{
    local status=$1 words=$2 got
    shift 2
    "$demo" "$@" >stdout.txt 2>stderr.txt </dev/null
    got=$?
    if [ $got -ne "$status" ] || ! grep -qF -- "$words" stderr.txt || [ -s stdout.txt ]; then
        echo "FAILED: demo $*: status $got instead of $status, '$words' wanted: $(cat stdout.txt stderr.txt)"
        failures=$((failures + 1))
    fi
}

: >empty.png
echo "this is text" >text.png
printf '\211PNG\r\n\032\n' >signature.png

expect 1 "there is no file 'missing.png'" missing.png
expect 1 "is a folder" "$scratch"
expect 1 "is empty" empty.png
expect 1 "is not a PNG file" text.png
expect 2 "usage" signature.png signature.png
expect 2 "usage" --help
export LUMCV_GALLERY_DIR=text.png/below
expect 1 "cannot be written" signature.png

echo "$failures failures"
[ $failures -eq 0 ]
