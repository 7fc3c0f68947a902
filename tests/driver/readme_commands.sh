#!/bin/sh
# Runs the command lines in the code blocks of README.md, with the programs of a build first on PATH.
# Blocks that set up and build are left out, since they run this test.
# Usage: readme_commands.sh FOLDER_OF_PROGRAMS..., from the project's root.
set -eu
for folder; do PATH="$folder:$PATH"; done
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp -r examples README.md "$scratch"
cd "$scratch"
awk '/^```sh$/ { inside = 1; next } /^```$/ { inside = 0 } inside && !/^scripts\// && !/^bench\//' \
    README.md >commands
[ "$(wc -l <commands)" -ge 5 ] || { echo "README.md has too few commands" >&2; exit 1; }
sh -eux commands
