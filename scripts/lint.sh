#!/bin/sh
# Checks that the code is formatted and that clang-tidy and shellcheck find nothing. Prints findings
# only. Needs scripts/setup.sh --lint.
#   scripts/lint.sh                all source files: half an hour on two cores
#   scripts/lint.sh --recent N     clang-tidy only for the N source files that were committed last;
#                                  a header counts as its source file
#   scripts/lint.sh FILE.cpp ...   clang-tidy only for these
set -eu
cd "$(dirname "$0")/.."
failed=0
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror || failed=1
git grep -lE '^#!/bin/(ba)?sh' | xargs shellcheck || failed=1

# The last N source files, newest first; foo.cpp when foo.h has changed.
recent() {
    git log --format= --name-only --diff-filter=d -- '*.cpp' '*.h' | sed 's/\.h$/.cpp/' |
        awk '!seen[$0]++' | while IFS= read -r file; do [ ! -f "$file" ] || echo "$file"; done |
        head -n "$1"
}
chosen() {
    case "${1:-}" in
        "") git ls-files '*.cpp' ;;
        --recent) recent "$2" ;;
        *) printf '%s\n' "$@" ;;
    esac
}
cmake --preset bench >/dev/null # Has the flags of all sources but the fuzz targets.
# shellcheck disable=SC2016  # the inner shell expands it
chosen "$@" | xargs -P "$(nproc)" -n 1 sh -c '
    findings=$(clang-tidy --quiet -p build/bench "$1" 2>&1) ||
        { printf "%s\n" "$findings" >&2; exit 1; }' sh || failed=1
exit "$failed"
