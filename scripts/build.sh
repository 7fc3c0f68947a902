#!/bin/sh
# Sets up the machine and builds a preset of CMakePresets.json (release if none is named) into
# build/PRESET, saying as little as a build can.
set -eu
cd "$(dirname "$0")/.."
preset="${1:-release}"
scripts/setup.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --parallel "$(nproc)" -- --quiet >&2
