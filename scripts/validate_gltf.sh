#!/bin/sh
# Exports scenes to GLB and glTF and checks each file with the Khronos validator. Prints its findings, and
# fails if there is any error or warning. Needs vrmlexport in build/release, node and npm; fetches the
# validator from the npm registry the first time.
#   scripts/validate_gltf.sh [FOLDER ...]   the scenes of examples, tests/scenes and these folders
set -eu
cd "$(dirname "$0")/.."
work=build/gltf-validator
mkdir -p "$work"
[ -d "$work/node_modules/gltf-validator" ] ||
    npm install --silent --no-fund --no-audit --prefix "$work" gltf-validator@2.0.0-dev.3.10
rm -rf "$work/out"
mkdir -p "$work/out"
# Scenes that cannot be read give no file; scenes without shapes give an empty glTF scene.
find examples tests/scenes "$@" -name '*.wrl' -type f | sort | while IFS= read -r scene; do
    for format in glb gltf; do
        name=$(printf '%s' "$scene" | tr -c 'A-Za-z0-9.-' _)
        build/release/tools/vrmlexport/vrmlexport --quiet "$scene" "$work/out/$name.$format" \
            2>>"$work/failures" || true
    done
done
NODE_PATH="$work/node_modules" node scripts/validate_gltf.js "$work/out"
