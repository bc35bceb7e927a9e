# shellcheck shell=bash
# Sourced by ./run and ./test: the Debian 12 packages that building and testing need, and their installation.

build_packages=(
    g++ make cmake ninja-build pkg-config
    qtbase5-dev qtbase5-dev-tools qtmultimedia5-dev libqt5multimedia5-plugins libqt5serialport5-dev libqt5svg5-dev
    libqt5sql5-sqlite libopus0 libopus-dev libsodium-dev
    pulseaudio pulseaudio-utils xvfb xauth xdotool imagemagick fonts-dejavu-core espeak-ng
    clang-format cmark-gfm python3
)

is_installed() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Installs what is missing, with sudo where this is not root. Fails with the list where neither is possible.
install_missing() {
    local package missing=()
    for package in "${build_packages[@]}"; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing: ${missing[*]}"
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Please install as root: apt-get install ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -qy --no-install-recommends "${missing[@]}"
}
