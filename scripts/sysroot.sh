#!/bin/sh
# Unpacks the libraries of another machine, built by Debian, into build/sysroot/ARCHITECTURE, for a
# cross build with cmake/ARCHITECTURE.cmake. Nothing is installed: Debian would want the libraries
# of both machines in the same versions, and so might want to change those that are there.
#   scripts/sysroot.sh ARCHITECTURE   s390x or i386
# DEBIAN_MIRROR names another mirror than http://deb.debian.org/debian.
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

# apt-get as the other machine would run it, on lists of its own.
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
# They lead nowhere without the libraries' own packages; the archives beside them serve.
rm "$sysroot"/usr/lib/*/libtirpc.so "$sysroot"/usr/lib/*/libz.so "$sysroot"/usr/lib/*/libsodium.so
rm -r "$sysroot/packages"
touch "$sysroot/complete"
