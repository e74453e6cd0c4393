#!/bin/bash
# Runs the tests of the Python package with this build's library, if Python and what the tests take are there.
#
#     python_tests.sh LIBRARY PACKAGE
set -eu
library=$1
package=$2

python=/usr/bin/python3
[ -x "$python" ] || python=python3
if ! "$python" -c 'import numpy, pytest' 2>/dev/null; then
    echo "left out: it takes Python with numpy and pytest"
    exit 77
fi
export LUMCV_LIBRARY=$library PYTHONPATH=$package PYTHONDONTWRITEBYTECODE=1
exec "$python" -m pytest -q -p no:cacheprovider --rootdir "$package" -c "$package/pyproject.toml" \
    --doctest-glob '*.md' --doctest-modules "$package/tests" "$package/lumcv/__init__.py" "$package/README.md"
