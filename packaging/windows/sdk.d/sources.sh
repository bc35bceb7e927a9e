# shellcheck shell=bash
# Sourced by packaging/windows/sdk: what it installs, and the source packages it builds from.

. "$here/../debian/build-packages.sh"
. "$here/packages.sh"

install_sdk_packages() {
    build_packages=("${windows_build_packages[@]}" "${windows_sdk_packages[@]}")
    install_missing
}

# An apt of our own for sources: the system's may not list them, and stays as it is.
sdk_apt() {
    local command=$1 apt=$sdk_work/apt
    shift
    "$command" -o Dir::Etc::sourcelist="$apt/sources.list" -o Dir::Etc::sourceparts=/dev/null \
        -o Dir::State::lists="$apt/lists" -o Dir::Cache="$apt/cache" -o APT::Sandbox::User=root "$@"
}

prepare_apt() {
    local apt=$sdk_work/apt signed='[signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]'
    [ ! -e "$apt/ready" ] || return 0
    mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial"
    printf 'deb-src %s %s main\n' "$signed http://deb.debian.org/debian" bookworm \
        "$signed http://deb.debian.org/debian-security" bookworm-security >"$apt/sources.list"
    sdk_apt apt-get update
    touch "$apt/ready"
}

download_source() {
    prepare_apt
    cd "$sdk_work"
    sdk_apt apt-get source --download-only "$1"
}

# get_source PACKAGE: Debian's sources of it with Debian's patches, in $sdk_work/PACKAGE.
get_source() {
    rm -rf "${sdk_work:?}/$1"
    download_source "$1"
    dpkg-source -x "$sdk_work/$1"_*.dsc "$sdk_work/$1"
}
