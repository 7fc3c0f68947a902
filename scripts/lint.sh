#!/bin/sh
# Checks that the code is formatted and that clang-tidy and shellcheck find nothing. Needs
# scripts/setup.sh --developer.
#   scripts/lint.sh [FILE.cpp ...]   all files if none is named
set -eu
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
git ls-files '*.sh' .ci/run | xargs shellcheck
cmake --preset bench >/dev/null
# shellcheck disable=SC2046  # the names have no blanks
[ $# -gt 0 ] || set -- $(git ls-files '*.cpp')
printf '%s\n' "$@" | xargs -P "$(nproc)" -n 1 clang-tidy --quiet -p build/bench 2>/dev/null
