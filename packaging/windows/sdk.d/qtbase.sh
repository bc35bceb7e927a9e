# shellcheck shell=bash
# Sourced by packaging/windows/sdk: Qt's base, the compiler's runtime, and what a finished SDK can do without.

add_qtbase() {
    step "qtbase sources" get_source qtbase-opensource-src
    step "qtbase patches" patch_qtbase
    step "qtbase configure" configure_qtbase
    step "qtbase make" make -C "$sdk_work/build-qtbase" -j"$sdk_jobs"
    step "qtbase install" make -C "$sdk_work/build-qtbase" install
    # Paths relative to qmake: the folder moves.
    printf '[Paths]\nPrefix=..\n' >"$sdk_partial/bin/qt.conf"
}

# The import libraries of MinGW-w64 are lower case, and this file system tells cases apart.
patch_qtbase() {
    cd "$sdk_work/qtbase-opensource-src"
    sed -i 's/"-lSecur32" "-lCrypt32"/"-lsecur32" "-lcrypt32"/' src/network/ssl/ssl.pri
    sed -i 's/LIBS += -lOle32/LIBS += -lole32/' src/network/configure.json
}

# Debian's sources come without the files of tablets and of SQLite.
configure_qtbase() {
    rm -rf "$sdk_work/build-qtbase"
    mkdir -p "$sdk_work/build-qtbase"
    cd "$sdk_work/build-qtbase"
    MAKEFLAGS=-j$sdk_jobs "$sdk_work/qtbase-opensource-src/configure" \
        -prefix "$sdk_partial" -opensource -confirm-license -release -shared -silent \
        -xplatform win32-g++ -device-option "CROSS_COMPILE=$sdk_host-" -nomake examples -nomake tests \
        -no-opengl -no-dbus -no-icu -no-openssl -schannel -no-glib -no-cups -no-mtdev -no-evdev -no-libudev \
        -qt-zlib -qt-libpng -qt-libjpeg -qt-freetype -qt-pcre -qt-harfbuzz -qt-doubleconversion \
        -no-feature-vulkan -no-feature-direct2d -no-feature-tabletevent -no-feature-sql -no-feature-xml \
        -no-feature-concurrent -no-feature-printer -no-feature-ftp -no-feature-bearermanagement
}

# The libraries of the compiler that every program needs beside it.
add_runtime() {
    local library
    for library in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
        cp -f "$("$sdk_host-g++-posix" -print-file-name="$library")" "$sdk_partial/bin/"
    done
}

trim_sdk() {
    cd "$sdk_partial"
    rm -rf doc share lib/*.la lib/libQt5Bootstrap.* bin/{qvkgen,tracegen,qlalr,fixqt4headers.pl}
    strip bin/{moc,rcc,uic,qmake}
    find bin plugins -name '*.dll' -exec "$sdk_host-strip" --strip-unneeded {} +
    # shellcheck disable=SC2016
    sed -i -e 's#^prefix=.*#prefix=${pcfiledir}/../..#' -e "s#$sdk_partial#\${prefix}#g" lib/pkgconfig/*.pc
}
