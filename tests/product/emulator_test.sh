#!/usr/bin/env bash
# The emulated processor of emulated_suite.sh executes AVX and refuses what is newer: without this, a suite that passes
# there would prove nothing.
# usage: emulator_test.sh EMULATOR C_COMPILER
set -u
emulator=$1
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

run() {  # INSTRUCTION: the exit status of a program that executes it
    printf 'int main(void) { __asm__ volatile("%s"); return 0; }\n' "$1" >"$work/probe.c"
    "$compiler" -O1 "$work/probe.c" -o "$work/probe" || exit 1
    { (ulimit -c 0; "$emulator" -cpu SandyBridge "$work/probe"); } >/dev/null 2>&1
}

illegalInstruction=$((128 + 4))  # how a shell reports a program that ended by SIGILL

for instruction in 'vaddps %ymm1, %ymm2, %ymm3' 'vpaddw %xmm1, %xmm2, %xmm3'; do
    if ! run "$instruction"; then
        echo "the emulator does not execute '$instruction'"
        failed=1
    fi
done
for instruction in 'vpaddw %ymm1, %ymm2, %ymm3' 'vfmadd213ps %ymm1, %ymm2, %ymm3' 'shlx %eax, %edx, %ecx' \
        'vpaddd %zmm1, %zmm2, %zmm3'; do
    run "$instruction"
    if [ $? -ne $illegalInstruction ]; then
        echo "the emulator does not refuse '$instruction'"
        failed=1
    fi
done
exit $failed
