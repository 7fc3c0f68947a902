#!/bin/sh
# Installs the dependencies, builds, converts a scene and lists its objects. Then makes a page and a picture
# of the scene, and prints where they are.
#   scripts/demo.sh [SCENE]
set -eu
"$(dirname "$0")/setup.sh"
scene="${1:-$(dirname "$0")/../examples/house.wrl}"
"$(dirname "$0")/build.sh" release meshcast geomtool vrmlexport
programs="$(dirname "$0")/../build/release"
"$programs/driver/meshcast" <"$scene" | "$programs/tools/geomtool/geomtool" info

folder="$programs/demo"
name=$(basename "$scene")
name=${name%.wrl}
mkdir -p "$folder"
for kind in html png; do
    "$programs/tools/vrmlexport/vrmlexport" "$scene" "$folder/$name.$kind"
done
folder=$(cd "$folder" && pwd)
echo
echo "Page, to be opened in a browser: $folder/$name.html"
echo "Picture: $folder/$name.png"
