#!/bin/sh
# The checks that need no expected results: scripts/lint.sh, then cppcheck, then valgrind's memcheck over
# every scene of examples/ and tests/scenes/. Prints findings only; ends with status 1 if there are any.
#   scripts/static.sh
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh --developer
failed=0

scripts/lint.sh || failed=1

git ls-files '*.cpp' | grep -v -e '^bench/' -e '^fuzz/' -e '^tests/' |
    xargs cppcheck --quiet -j "$(nproc)" --std=c++20 -I . --error-exitcode=1 \
        --enable=warning,style,performance,portability --suppressions-list=scripts/cppcheck-exceptions.txt ||
    failed=1

# Nodes and names are not freed before the program ends, on purpose. So memory that is still reachable is not
# a leak; nor are blocks with only a pointer into their middle ("possibly lost"), which the allocator of the
# nodes has.
scripts/build.sh release meshcast
for scene in examples/*.wrl tests/scenes/*.wrl; do
    messages=$(valgrind --quiet --leak-check=full --errors-for-leak-kinds=definite \
        --show-leak-kinds=definite --error-exitcode=99 \
        build/release/driver/meshcast <"$scene" 2>&1 >/dev/null) ||
        { printf '%s:\n%s\n' "$scene" "$messages" >&2; failed=1; }
done
exit "$failed"
