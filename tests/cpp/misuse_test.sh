#!/usr/bin/env bash
# Wrong calls through lumcv.hpp do not compile, with words that help; a status that nobody looks at is an error like any
# warning; and without NDEBUG a view that is smaller than the ROI ends the program.
# usage: misuse_test.sh INCLUDE_FOLDER CXX_COMPILER
set -u
include=$1
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# what stands before each piece of code
cat >"$work/head.cpp" <<'END'
#include <lumcv/lumcv.hpp>
using lumcv::call;
inline void piece(lumcv::View<const Lum8u> source, lumcv::View<Lum8u> result, lumcv::View<Lum16u> words,
                  lumcv::View<Lum8u, 3> colour, LumiSize size)
{
    (void)source, (void)result, (void)words, (void)colour, (void)size;
END

compile()  # OPTIONS...: the piece of code on stdin
{
    { cat "$work/head.cpp" - && echo '}'; } >"$work/piece.cpp"
    "$compiler" -std=c++20 -Wall -Wextra -Wpedantic -Werror -I"$include" "$@" "$work/piece.cpp" 2>"$work/messages"
}

# as it should be, with and without exceptions
right='call<lumiAbsDiffC_8u_C1R>(source, result, size, 9)'
for exceptions in -fexceptions -fno-exceptions; do
    if ! compile -fsyntax-only "$exceptions" <<<"if (!$right.ok()) return;"; then
        echo "does not compile with $exceptions"
        cat "$work/messages"
        failed=1
    fi
done

# one wrong call in each line, and words of the message about it
fits='an Argument does not fit its Parameter'
wrong=(
    "$fits" 'if (call<lumiAbsDiffC_8u_C1R>(words, result, size, 9).ok()) return;'
    "$fits" 'if (call<lumiAbsDiffC_8u_C1R>(source, source, size, 9).ok()) return;'
    "$fits" 'if (call<lumiAbsDiffC_8u_C1R>(source, result, 9, size).ok()) return;'
    'too few or too many arguments' 'if (call<lumiAbsDiffC_8u_C1R>(source, result, size).ok()) return;'
    'has other channels' 'if (call<lumiAbsDiffC_8u_C1R>(colour, result, size, 9).ok()) return;'
    nodiscard "$right;"
    throwIfError "$right.throwIfError();"
)
first=$(($(wc -l <"$work/head.cpp") + 1))
if compile -fsyntax-only -fno-exceptions < <(printf '%.0s%s\n' "${wrong[@]}"); then
    echo "wrong calls compile"
    failed=1
fi
for ((i = 0; i < ${#wrong[@]}; i += 2)); do
    # what the compiler says about an instantiation names the line, within a few lines of the words
    if ! grep -B 4 -A 8 "piece.cpp:$((first + i / 2)):" "$work/messages" | grep -qF -- "${wrong[i]}"; then
        echo "no message says '${wrong[i]}': ${wrong[i + 1]}"
        failed=1
    fi
done
[ $failed -eq 0 ] || head -n 100 "$work/messages"

# a view smaller than the ROI: the function is one of this program, so that no library is needed
code='}
extern "C" LumStatus lumiAbsDiffC_8u_C1R(const Lum8u*, Lum32s, Lum8u*, Lum32s, LumiSize, Lum32s) { return lumOk; }
int main(int count, char**)
{
    Lum8u pixels[8] = {};
    const LumiSize size = {4, 2};
    return call<lumiAbsDiffC_8u_C1R>(lumcv::View(pixels, size), lumcv::View(pixels, {4, count}), size, 9).code();'
compile -UNDEBUG -O1 -o "$work/checked" <<<"$code" || { cat "$work/messages"; failed=1; }
"$work/checked" second || { echo "an image of the size of the ROI is refused"; failed=1; }
if words=$("$work/checked" 2>&1) || [[ $words != *'a view is smaller than the ROI'* ]]; then
    echo "a view smaller than the ROI passes"
    failed=1
fi
exit $failed
