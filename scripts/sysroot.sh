#!/bin/sh
# Unpacks Debian's libraries for another architecture into build/sysroot/ARCHITECTURE, for a cross build
# with cmake/ARCHITECTURE.cmake. Nothing is installed: Debian requires the same version of a library for
# both architectures, so installing could change libraries of this machine.
#   scripts/sysroot.sh ARCHITECTURE   s390x or i386
# DEBIAN_MIRROR sets the mirror; the default is http://deb.debian.org/debian.
set -eu
cd "$(dirname "$0")/.."
architecture="$1"
sysroot="$PWD/build/sysroot/$architecture"
[ ! -e "$sysroot/complete" ] || exit 0

rm -rf "$sysroot"
mkdir -p "$sysroot/packages/lists/partial" "$sysroot/packages/archives/partial"
cd "$sysroot/packages"
: >status
echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]" \
    "${DEBIAN_MIRROR:-http://deb.debian.org/debian} bookworm main" >sources.list

# Runs apt-get for the other architecture, with separate package lists.
foreign_apt() {
    apt-get -qq -o APT::Architecture="$architecture" -o APT::Architectures="$architecture" \
        -o APT::Sandbox::User=root -o Acquire::Languages=none -o Dir::State="$PWD" \
        -o Dir::State::status="$PWD/status" -o Dir::Cache="$PWD" \
        -o Dir::Etc::SourceList="$PWD/sources.list" -o Dir::Etc::SourceParts=/dev/null "$@"
}
foreign_apt update
foreign_apt download libtirpc-dev libsodium-dev libcli11-dev nlohmann-json3-dev libgtest-dev \
    libgmock-dev googletest zlib1g-dev
for package in *.deb; do
    dpkg-deb -x "$package" "$sysroot"
done
# Without the packages of the shared libraries, these links are broken. The linker then uses the static
# libraries.
rm "$sysroot"/usr/lib/*/libtirpc.so "$sysroot"/usr/lib/*/libz.so "$sysroot"/usr/lib/*/libsodium.so
rm -r "$sysroot/packages"
touch "$sysroot/complete"
