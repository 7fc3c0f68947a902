#!/bin/sh
# Builds the Debian packages meshcast, libmeshcast-dev and python3-geomstream into build/package, has lintian
# check them, and prints their names.
#   scripts/package.sh
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh --package
scripts/build.sh package
cd build/package
rm -f -- *.deb
umask 022 # The packages' files get the permissions of files made here.
cpack -G DEB >/dev/null
lintian --allow-root --fail-on error,warning --tag-display-limit 0 -- *.deb >&2
for package in *.deb; do echo "build/package/$package"; done
