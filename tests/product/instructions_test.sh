#!/usr/bin/env bash
# The base build contains no instruction that a processor with AVX and nothing newer lacks. The check is checked first:
# it must accept instructions of AVX and object to one of every newer kind.
# usage: instructions_test.sh LIBRARY OBJDUMP C_COMPILER
set -u
library=$1
objdump=$2
compiler=$3
rules=$(dirname "$0")/avx_only.awk
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

disassemble() {
    "$objdump" -d --no-show-raw-insn "$1"
}

judge() {  # INSTRUCTION: prints what the rules object to
    printf '.text\nprobe:\n    %s\n' "$1" >"$work/probe.s"
    if ! "$compiler" -c "$work/probe.s" -o "$work/probe.o"; then
        echo "'$1' cannot be assembled"
        failed=1
        return 2
    fi
    disassemble "$work/probe.o" | awk -f "$rules" >"$work/objections"
}

while read -r instruction; do
    judge "$instruction"
    if [ $? -ne 0 ]; then
        echo "the check objects to '$instruction', which is AVX or older"
        failed=1
    fi
done <<'ACCEPTED'
vaddps %ymm1, %ymm2, %ymm3
vpaddw %xmm1, %xmm2, %xmm3
vpcmpeqb %xmm1, %xmm2, %xmm3
vcmpltps %ymm1, %ymm2, %ymm3
vbroadcastss (%rdi), %ymm0
vpmovzxbw (%rdi), %xmm0
vinsertf128 $1, %xmm1, %ymm2, %ymm3
vmovntdq %ymm0, (%rdi)
vzeroupper
popcnt %eax, %ebx
bsf %eax, %ebx
rep movsq
rep stosb
pshufb %xmm1, %xmm2
ACCEPTED

while read -r instruction; do
    judge "$instruction"
    if [ $? -ne 1 ]; then
        echo "the check overlooks '$instruction'"
        failed=1
    fi
done <<'REFUSED'
vpaddw %ymm1, %ymm2, %ymm3
vpcmpeqb %ymm1, %ymm2, %ymm3
vpxor %ymm1, %ymm2, %ymm3
vpbroadcastb %xmm0, %xmm1
vbroadcastss %xmm0, %ymm1
vpblendd $1, %xmm1, %xmm2, %xmm3
vinserti128 $1, %xmm1, %ymm2, %ymm3
vperm2i128 $1, %ymm1, %ymm2, %ymm3
vpermq $1, %ymm1, %ymm2
vpsllvd %xmm1, %xmm2, %xmm3
vpmaskmovd (%rdi), %xmm1, %xmm2
vpgatherdd %xmm1, (%rdi,%xmm2), %xmm3
vmovntdqa (%rdi), %ymm0
vpmovzxbw (%rdi), %ymm0
vfmadd213ps %ymm1, %ymm2, %ymm3
vfnmadd231ss %xmm1, %xmm2, %xmm3
vcvtph2ps %xmm0, %ymm1
vpaddd %zmm1, %zmm2, %zmm3
vaddps %xmm17, %xmm2, %xmm3
vaddps %ymm1, %ymm2, %ymm3{%k1}
vpternlogd $1, %xmm1, %xmm2, %xmm3
kmovd %eax, %k1
andn %eax, %ebx, %ecx
blsr %eax, %ebx
tzcnt %eax, %ebx
lzcnt %eax, %ebx
shlx %eax, %ebx, %ecx
mulx %rax, %rbx, %rcx
rorx $3, %eax, %ebx
movbe (%rdi), %eax
REFUSED

disassemble "$library" | awk -f "$rules" >"$work/objections"
if [ $? -ne 0 ]; then
    echo "instructions newer than AVX:"
    sed 's/^/    /' "$work/objections" | head -50
    failed=1
fi
exit $failed
