#!/bin/sh
# Sets up the machine and builds a preset of CMakePresets.json (release if none is named), all of it
# or the targets named, into build/PRESET, saying as little as a build can.
#   scripts/build.sh [PRESET [TARGET ...]]
set -eu
cd "$(dirname "$0")/.."
preset="${1:-release}"
[ $# -eq 0 ] || shift
if [ "$preset" = fuzz ]; then scripts/setup.sh --fuzz; else scripts/setup.sh; fi
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"} -- --quiet >&2
