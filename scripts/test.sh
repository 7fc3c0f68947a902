#!/bin/sh
# Sets up, builds and passes every test. Fails when a test was skipped.
#   scripts/test.sh [PRESET]   release if none is named; sanitize runs the tests under the address and
#                              undefined behaviour sanitizers, thread those that use threads under
#                              the thread sanitizer
set -eu
cd "$(dirname "$0")/.."
preset="${1:-release}"
scripts/setup.sh --tests
scripts/build.sh "$preset"
ctest --preset "$preset" --parallel "$(nproc)" --output-junit tests.xml
if grep -q '<skipped' "build/$preset/tests.xml"; then
    echo "test: what a test needs is missing, and it was skipped: see above" >&2
    exit 1
fi
