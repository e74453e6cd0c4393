#!/usr/bin/env bash
# Runs the quick tests of a program on an emulated processor with AVX and nothing newer.
# usage: emulated_suite.sh EMULATOR PROGRAM
set -u
output=$("$1" -cpu SandyBridge "$2" '--gtest_filter=*Quick*' 2>&1)
status=$?
echo "$output"
if [ $status -ne 0 ]; then
    exit 1
fi
if ! grep -qE '^\[  PASSED  \] [1-9][0-9]* tests?\.' <<<"$output"; then
    echo "no test ran"
    exit 1
fi
