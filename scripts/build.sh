#!/bin/sh
# Builds a preset of CMakePresets.json (release if none is named), all of it or the targets named,
# into build/PRESET, and prints as little as a build can. Installs nothing: see scripts/setup.sh.
#   scripts/build.sh [PRESET [TARGET ...]]
set -eu
cd "$(dirname "$0")/.."
preset="${1:-release}"
[ $# -eq 0 ] || shift
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"} -- --quiet >&2
