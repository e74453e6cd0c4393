#!/bin/bash
# Runs a test program of another build with the libraries of this one, after making sure that these are what it loads.
# LUMCV_PRELOAD: a library to be loaded before all others, if any.
#
#     run_with_library.sh LIBLUMCV LIBLUMCORE PROGRAM [ARGUMENTS...]
set -eu
library=$1
core=$2
shift 2
LD_LIBRARY_PATH=$(dirname "$library"):$(dirname "$core")
export LD_LIBRARY_PATH
loaded=$(ldd "$1" | sed -n 's/^\tliblumcv[^ ]* => \([^ ]*\) .*/\1/p')
if ! [ "$loaded" -ef "$library" ]; then
    echo "$1 loads '$loaded' and not '$library'"
    exit 1
fi
exec env ${LUMCV_PRELOAD:+"LD_PRELOAD=$LUMCV_PRELOAD"} "$@"
