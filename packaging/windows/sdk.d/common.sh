# shellcheck shell=bash
# Sourced by packaging/windows/sdk: where things are, and which parts an SDK has.

# Qt's version and the number of our build of it; a new number makes everybody build it again.
sdk_version=5.15.8-1
sdk_host=x86_64-w64-mingw32
sdk_cache=${XDG_CACHE_HOME:-$HOME/.cache}/evox-sinar
sdk_folder=$sdk_cache/windows-sdk-$sdk_version
sdk_partial=$sdk_folder.partial
sdk_work=$sdk_folder.build
sdk_jobs=${EVOX_JOBS:-$(nproc)}

# The parts in the order in which they are built, and a file that shows that a part is there.
sdk_modules=(
    qtbase:bin/qt.conf
    runtime:bin/libstdc++-6.dll
    qtmultimedia:plugins/audio/qtaudio_windows.dll
    qtsvg:plugins/iconengines/qsvgicon.dll
    opus:bin/libopus-0.dll
    sodium:bin/libsodium.dll
)

# missing_modules FOLDER: the names of the parts that are not in it, in building order.
missing_modules() {
    local module
    for module in "${sdk_modules[@]}"; do
        [ -e "$1/${module#*:}" ] || echo "${module%%:*}"
    done
}

fail() {
    echo "Windows SDK: $*" >&2
    exit 1
}

# step NAME COMMAND …: runs it and says how long it took; its output goes to a log, of which a failure shows the end.
step() {
    local name=$1 start=$SECONDS log
    log=$sdk_work/$(tr -c 'a-z0-9\n' - <<<"${name,,}").log
    shift
    echo "Windows SDK: $(date +%H:%M:%S) $name"
    if ! "$@" >"$log" 2>&1; then
        tail -n 20 "$log"
        fail "$name failed, see $log"
    fi
    echo "Windows SDK: $(date +%H:%M:%S) $name took $((SECONDS - start)) s"
}
