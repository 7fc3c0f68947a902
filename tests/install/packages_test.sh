#!/bin/bash
# Makes the Debian packages of a build and checks them with lintian, if it is installed. If run as root
# and debootstrap is installed, installs them into a minimal Debian system and converts a scene there.
# Usage: packages_test.sh BUILD EXAMPLES
set -eu
build=$1
examples=$2
scratch=$(mktemp -d)
root="$scratch/root"
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf --one-file-system "$scratch"' EXIT
unset DESTDIR
umask 022

fail() {
    echo "$*" >&2
    exit 1
}

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$scratch/packages" >"$scratch/log" 2>&1 ||
    fail "$(cat "$scratch/log")"
cd "$scratch/packages"
dpkg-deb --extract meshcast_*.deb "$scratch/programs"
dpkg-deb --extract libmeshcast-dev_*.deb "$scratch/development"
[ -z "$(cd "$scratch" && find programs/usr/lib programs/usr/include development/usr/bin 2>/dev/null)" ] ||
    fail "programs and libraries are in the same package"
if command -v lintian >/dev/null; then
    # Only builds with the prefix /usr install the libraries in the folder that this tag requires.
    lintian --allow-root --fail-on error,warning --tag-display-limit 0 \
        --suppress-tags pkg-config-unavailable-for-cross-compilation -- *.deb
fi

# Prints the completions that bash offers for the last word of a command line.
offers() {
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE="$*" COMP_POINT=${#COMP_LINE} COMPREPLY=()
    _meshcast_programs "$1" "${*: -1}" "${*: -2:1}"
    echo "${COMPREPLY[*]}"
}
bash_completion=/usr/share/bash-completion/bash_completion
if [ -e $bash_completion ]; then
    export PATH="$scratch/programs/usr/bin:$PATH"
    set +eu
    # shellcheck disable=SC1090
    . $bash_completion
    # shellcheck disable=SC1091
    . "$scratch/programs/usr/share/bash-completion/completions/vrmltidy"
    [ "$(offers vrmltidy --st)" = --strict ] || fail "bash completes no option of vrmltidy"
    [ "$(offers geomtool e)" = export ] || fail "bash completes no command of geomtool"
    [ "$(offers geomtool export --fo)" = --format ] || fail "bash completes no option of a command"
    [ "$(offers vrmlexport --format gl)" = "glb gltf" ] || fail "bash completes no format"
    set -eu
fi

if [ "$(id -u)" -ne 0 ] || ! command -v debootstrap >/dev/null; then
    echo "the packages are not installed: that needs root and debootstrap"
    exit 0
fi
# shellcheck disable=SC1091
. /etc/os-release
debootstrap --variant=minbase "$VERSION_CODENAME" "$root" >"$scratch/log" 2>&1 ||
    fail "$(tail "$scratch/log")"
mount -t proc proc "$root/proc" || fail "cannot mount /proc in the Debian system"
cp ./*.deb "$examples/house.wrl" "$root/tmp"
inside() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root "$@"; }
inside sh -c 'apt-get install -y --no-install-recommends /tmp/*.deb libjs-three' >"$scratch/log" 2>&1 || fail "$(tail "$scratch/log")"
inside sh -c 'meshcast </tmp/house.wrl >/tmp/house.geom'
"$scratch/programs/usr/bin/meshcast" <"$examples/house.wrl" | cmp - "$root/tmp/house.geom" ||
    fail "the installed filter writes another stream"
inside meshcast-batch --to geom,html,png /tmp /tmp/output || fail "meshcast-batch fails"
counts='import geomstream; print(sum(1 for _ in geomstream.read("/tmp/house.geom")))'
[ "$(inside python3 -c "$counts")" -gt 100 ] || fail "the installed Python package reads no stream"
for file in house.geom house.html house.png index.html; do
    [ -s "$root/tmp/output/$file" ] || fail "meshcast-batch wrote no $file"
done
