# shellcheck shell=bash
# Sourced: the Debian 12 packages of the Windows build, beside those of packaging/debian/build-packages.sh.

# What compiling the program needs.
# shellcheck disable=SC2034
windows_build_packages=(
    g++-mingw-w64-x86-64-posix mingw-w64-tools binutils-mingw-w64-x86-64 cmake ninja-build imagemagick librsvg2-bin
)
# What making Qt, the codec and the cipher needs.
# shellcheck disable=SC2034
windows_sdk_packages=(g++ make perl pkg-config dpkg-dev xz-utils autoconf automake libtool)
# What running the tests needs.
# shellcheck disable=SC2034
windows_test_packages=(wine wine64 libc6-dev python3)
# What trying the setup needs beside that.
# shellcheck disable=SC2034
windows_check_packages=(fonts-wine)
