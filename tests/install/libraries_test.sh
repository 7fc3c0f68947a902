#!/bin/sh
# Installs a build into a temporary folder and uses it from other projects: every header must compile
# alone, and the examples of all libraries are built with find_package and with pkg-config, by each
# installed compiler, and run.
# Usage: libraries_test.sh BUILD EXAMPLES FOLDER_OF_LIBRARIES
set -eu
build=$1
examples=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix="$scratch/prefix"
unset DESTDIR

cmake --install "$build" --prefix "$prefix" >/dev/null
export PKG_CONFIG_PATH="$prefix/$3/pkgconfig"
export LD_LIBRARY_PATH="$prefix/$3" # shared libraries are not found by run path there

fail() {
    echo "$*" >&2
    exit 1
}

# Runs the examples in a folder and checks what they print.
run_examples() {
    printf '#VRML V1.0 ascii\nCube { width 1,5 }\n' |
        "$1/tidy_example" 2>/dev/null >"$scratch/tidied.wrl"
    "$1/scene_example" <"$examples/bracket.wrl" | grep -qx IndexedFaceSet ||
        fail "$1/scene_example found no face set"
    "$1/geom_example" | "$1/geom_stream_example" | grep -q '^polyhedron, ' ||
        fail "$1/geom_example wrote no polyhedron"
    objects=$("$prefix/bin/meshcast" <"$scratch/tidied.wrl" | "$1/geom_stream_example" | wc -l)
    "$1/convert_example" <"$scratch/tidied.wrl" | grep -q "^$objects objects, " ||
        fail "$1/convert_example counts other objects than the filter writes"
    "$1/evaluate_example" <"$examples/house.wrl" | grep -q '^[1-9][0-9]* shapes, ' ||
        fail "$1/evaluate_example found no shapes"
    "$1/render_example" <"$examples/house.wrl" | grep -q '^[1-9][0-9]* % covered$' ||
        fail "$1/render_example draws an empty picture"
    "$1/export_example" <"$examples/house.wrl" >"$scratch/house.glb"
    "$prefix/bin/vrmlexport" --quiet --format glb - - <"$examples/house.wrl" |
        cmp - "$scratch/house.glb" || fail "$1/export_example writes another file than vrmlexport"
}

for compiler in g++ clang++; do
    command -v "$compiler" >/dev/null || continue

    (cd "$prefix/include/meshcast" && find . -name '*.h') | while IFS= read -r header; do
        printf '#include "%s"\n' "${header#./}" |
            "$compiler" -std=c++20 -Wall -Wextra -Werror -fsyntax-only -x c++ \
                "-I$prefix/include/meshcast" - || fail "$header does not compile alone"
    done

    cmake -S "$examples/library" -B "$scratch/$compiler" -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_PREFIX_PATH="$prefix" >"$scratch/log" 2>&1 || fail "$(cat "$scratch/log")"
    cmake --build "$scratch/$compiler" --parallel 2 >"$scratch/log" 2>&1 ||
        fail "$(cat "$scratch/log")"
    run_examples "$scratch/$compiler"

    mkdir "$scratch/$compiler/pkg-config"
    for source in "$examples"/library/*.cpp; do
        library=$(basename "$source" .cpp)
        # shellcheck disable=SC2046  # a list of words on purpose
        "$compiler" -std=c++20 "$source" -o "$scratch/$compiler/pkg-config/${library}_example" \
            $(pkg-config --cflags --libs "meshcast-$library")
    done
    run_examples "$scratch/$compiler/pkg-config"
done
