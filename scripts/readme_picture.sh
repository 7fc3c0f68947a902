#!/bin/sh
# Draws the picture in README.md again.
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh release vrmlexport
build/release/tools/vrmlexport/vrmlexport --size 960x540 examples/house.wrl docs/house.png
