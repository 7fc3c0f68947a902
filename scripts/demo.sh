#!/bin/sh
# Sets up, builds, converts a scene and lists what came out, object by object.
#   scripts/demo.sh [SCENE]
set -eu
scene="${1:-$(dirname "$0")/../examples/bracket.wrl}"
"$(dirname "$0")/build.sh" release meshcast geomtool
programs="$(dirname "$0")/../build/release"
"$programs/driver/meshcast" <"$scene" | "$programs/tools/geomtool/geomtool" info
