#!/bin/sh
# Installs the dependencies, builds and runs every test. Fails if a test fails or is skipped.
#   scripts/test.sh [PRESET]   release by default. sanitize runs the tests under the address and
#                              undefined behaviour sanitizers. thread runs the tests that use threads
#                              under the thread sanitizer.
set -eu
cd "$(dirname "$0")/.."
preset="${1:-release}"
scripts/setup.sh --tests
scripts/build.sh "$preset"
ctest --preset "$preset" --parallel "$(nproc)" --output-junit tests.xml
if grep -q '<skipped' "build/$preset/tests.xml"; then
    echo "test: a test was skipped; the output above names what it needs" >&2
    exit 1
fi
