#!/bin/sh
# Installs the dependencies, builds, replays the corpus of every fuzz target and then fuzzes each for SECONDS.
#   scripts/fuzz.sh [SECONDS [TARGET]]   30 seconds and all targets by default
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh --fuzz
scripts/build.sh fuzz fuzzers
cmake --preset fuzz -D MESHCAST_FUZZ_SECONDS="${1:-30}" >/dev/null
ctest --preset fuzz --parallel "$(nproc)" --tests-regex "^Fuzz\.${2:-}"
