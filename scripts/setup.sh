#!/bin/sh
# Installs the missing packages that meshcast needs on Debian 12. Needs root or sudo. Prints and changes
# nothing if all are installed.
#   scripts/setup.sh [OPTION ...]
# Without an option, installs what the build and the programs need. In addition, with
#   --tests        what the tests need, with a browser
#   --package      what scripts/package.sh needs
#   --fuzz         what fuzzing needs
#   --lint         what scripts/lint.sh needs
#   --developer    all of the above, and what the other checks of CONTRIBUTING.md and the benchmarks need
#   --portability  cross compilers and an emulator for scripts/portability.py
set -eu

packages="ca-certificates g++ cmake ninja-build pkg-config libtirpc-dev libsodium-dev libcli11-dev
nlohmann-json3-dev zlib1g-dev libglm-dev libglu1-mesa-dev libfreetype-dev
libfontconfig-dev libstb-dev libtinygltf-dev libassimp-dev libgtest-dev libgmock-dev parallel groff-base python3
libegl-dev libgles-dev libegl-mesa0 libgl1-mesa-dri libjs-three"
tests="chromium chromium-driver python3-selenium python3-pil python3-numpy bash-completion dpkg-dev lintian"
fuzz="clang libclang-rt-14-dev"
lint="clang-format clang-tidy shellcheck git libbenchmark-dev"
for option; do
    case "$option" in
        --tests) packages="$packages $tests" ;;
        --package) packages="$packages dpkg-dev lintian" ;;
        --fuzz) packages="$packages $fuzz" ;;
        --lint) packages="$packages $lint" ;;
        --developer) packages="$packages $tests $fuzz $lint cppcheck valgrind debootstrap" ;;
        --portability) packages="$packages clang g++-s390x-linux-gnu g++-i686-linux-gnu qemu-user" ;;
        *) echo "setup: unknown option $option" >&2; exit 2 ;;
    esac
done

missing=""
for package in $packages; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = "installed" ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: needs root or sudo to install:$missing" >&2; exit 1; }
    as_root="sudo"
fi
echo "setup: installing$missing" >&2
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# shellcheck disable=SC2086  # both are lists of words on purpose
if ! { $as_root apt-get update && $as_root env DEBIAN_FRONTEND=noninteractive \
       apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
