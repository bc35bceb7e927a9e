# shellcheck shell=bash
# Sourced by packaging/windows/sdk: Qt's modules beside the base, built with the qmake of the SDK itself.

# build_module PACKAGE PROJECT FOLDERS [QMAKE-ARGUMENT …]: builds and installs these folders of a source package.
build_module() {
    local package=$1 project=$2 folders=$3 folder build=$sdk_work/build-$1
    shift 3
    rm -rf "$build"
    mkdir -p "$build"
    cd "$build"
    "$sdk_partial/bin/qmake" "$sdk_work/$package/$project" -- "$@"
    make -j"$sdk_jobs" sub-src-qmake_all
    for folder in $folders; do
        make -C "$folder" -j"$sdk_jobs"
        make -C "$folder" install
    done
}

# The library and the plug-in of Windows' own sound; the players need systems that we do not.
add_qtmultimedia() {
    step "qtmultimedia sources" get_source qtmultimedia-opensource-src
    step "qtmultimedia" build_module qtmultimedia-opensource-src qtmultimedia.pro \
        "src/multimedia src/plugins/windowsaudio" -no-gstreamer -no-directshow -no-wmf -no-evr -no-feature-wasapi
}

add_qtsvg() {
    step "qtsvg sources" get_source qtsvg-opensource-src
    step "qtsvg" build_module qtsvg-opensource-src qtsvg.pro "src/svg src/plugins"
}

# Not every mirror has these sources; the program is then built with packaging/windows/serialport.
add_qtserialport() {
    if (get_source qtserialport-opensource-src) >"$sdk_work/qtserialport-sources.log" 2>&1; then
        step "qtserialport" build_module qtserialport-opensource-src qtserialport.pro "src/serialport"
    else
        echo "Windows SDK: the sources of qtserialport cannot be had, our own stand-in takes its place"
    fi
}
