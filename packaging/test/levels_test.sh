#!/bin/bash
# Of the builds that are installed side by side, the system's loader picks the best one that the processor can execute:
# this one, this one with features hidden from the loader, and emulated ones. Which one it was tells the version record.
#
#     levels_test.sh PROGRAM LIBRARY_FOLDER EMULATOR LEVEL...
#
# PROGRAM is cxx_consumer of consumers_test.sh; an empty EMULATOR leaves that part out.
set -eu
program=$1
export LD_LIBRARY_PATH=$2
emulator=$3
shift 3
installed=" $* "
# shellcheck source=cmake/executable_levels.sh
. "$(dirname "$0")/../../cmake/executable_levels.sh"

declare -A name=([base]="lumCV AVX (t7)" [v3]="lumCV AVX2 (v3)" [v4]="lumCV AVX-512 (v4)")
failed=0

# best LEVEL...: the last of the levels that is installed
best()
{
    local level found=none
    for level in "$@"; do
        [[ $installed == *" $level "* ]] && found=$level
    done
    echo "$found"
}

# expect WHERE LEVEL COMMAND...: the command runs the program with that level's build
expect()
{
    local where=$1 level=$2 printed wanted
    shift 2
    wanted="${name[$level]}: status 0, centre 41, beside it 25"
    printed=$("$@" 2>&1 | grep -v '^qemu-x86_64: warning') || true
    echo "$where: $printed"
    if [ "$printed" != "$wanted" ]; then
        echo "    instead of: $wanted"
        failed=1
    fi
}

mapfile -t executable < <(executable_levels)
expect "this processor" "$(best "${executable[@]}")" "$program"
expect "without AVX-512" "$(best "${executable[@]:0:2}")" \
    env GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX512F "$program"
expect "without AVX2" base env GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX512F,-AVX2 "$program"
if [ -n "$emulator" ]; then
    expect "emulated, with AVX" base "$emulator" -cpu SandyBridge "$program"
    expect "emulated, with AVX2" "$(best base v3)" "$emulator" -cpu Haswell "$program"
fi
exit $failed
