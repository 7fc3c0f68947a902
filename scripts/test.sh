#!/bin/sh
# Sets up, builds and passes every test.
#   scripts/test.sh [PRESET]   release if none is named; sanitize runs the tests under the address and
#                              undefined behaviour sanitizers, thread those that use threads under
#                              the thread sanitizer
set -eu
cd "$(dirname "$0")/.."
preset="${1:-release}"
scripts/build.sh "$preset"
ctest --preset "$preset" --parallel "$(nproc)"
