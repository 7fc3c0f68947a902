#!/bin/sh
# Builds a preset of CMakePresets.json into build/PRESET: release by default, and all targets unless some
# are named. Prints little. Installs nothing: see scripts/setup.sh.
#   scripts/build.sh [PRESET [TARGET ...]]
set -eu
cd "$(dirname "$0")/.."
preset="${1:-release}"
[ $# -eq 0 ] || shift
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"} -- --quiet >&2
