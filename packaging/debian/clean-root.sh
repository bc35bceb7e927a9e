# shellcheck shell=bash
# Sourced by the checks: a bare Debian 12 in a folder, and how to run commands in it. Needs root.

clean_root_packages=(debootstrap debian-archive-keyring util-linux)
clean_root_image=${XDG_CACHE_HOME:-$HOME/.cache}/evox-sinar/bookworm-minbase.tar

make_image() {
    local mirror folder
    mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' 'Codename: bookworm' 'Component: main')
    mirror=${mirror%%$'\n'*}
    [ -n "$mirror" ] || fail "apt has no source for Debian 12"
    folder=$(mktemp -d)
    chmod 755 "$folder"
    debootstrap --variant=minbase --keyring=/usr/share/keyrings/debian-archive-keyring.gpg \
        bookworm "$folder" "$mirror" >&2
    rm -f "$folder"/var/cache/apt/archives/*.deb
    mkdir -p "$(dirname "$clean_root_image")"
    tar -C "$folder" -cf "$clean_root_image.part" .
    mv "$clean_root_image.part" "$clean_root_image"
    rm -rf "$folder"
}

# unpack_clean_root FOLDER: a bare Debian 12, from an image that is made once and kept.
unpack_clean_root() {
    [ "$(id -u)" -eq 0 ] || fail "a clean root needs root"
    [ -e "$clean_root_image" ] || make_image
    tar -C "$1" -xf "$clean_root_image"
    cp /etc/resolv.conf "$1/etc/resolv.conf"
    printf '127.0.0.1\tlocalhost\n::1\tlocalhost\n' >"$1/etc/hosts" # as the installer writes it
    in_root "$1" apt-get -q update >&2
}

# in_root FOLDER COMMAND…: in a process and mount space of its own, so that nothing of it outlives the command.
in_root() {
    unshare --mount --pid --fork --kill-child bash -c '
        mount -t proc proc "$0/proc" && mount --rbind /dev "$0/dev" &&
            exec chroot "$0" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
                DEBIAN_FRONTEND=noninteractive http_proxy="${http_proxy:-}" "$@"' "$@" </dev/null
}
