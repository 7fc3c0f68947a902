#!/bin/sh
# Sets up, builds and passes every test.
#   scripts/test.sh [PRESET]   release if none is named; sanitize runs the tests under the sanitizers
set -eu
cd "$(dirname "$0")/.."
preset="${1:-release}"
scripts/build.sh "$preset"
ctest --preset "$preset" --parallel "$(nproc)"
