# For the scripts that run what they build: executable_levels prints the levels that this processor can execute, of
# base, v3 and v4; nothing if there is none.

executable_levels()
{
    local flags feature level sets=("base avx" "v3 avx2 bmi1 bmi2 f16c fma abm movbe"
        "v4 avx512f avx512bw avx512cd avx512dq avx512vl")
    flags=" $(grep -m1 '^flags' /proc/cpuinfo | cut -d: -f2) "
    for level in "${sets[@]}"; do
        for feature in ${level#* }; do
            [[ $flags == *" $feature "* ]] || return 0
        done
        echo "${level%% *}"
    done
}
