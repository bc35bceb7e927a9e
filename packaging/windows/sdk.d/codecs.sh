# shellcheck shell=bash
# Sourced by packaging/windows/sdk: the codec and the cipher, under the names by which the program loads them.

# build_autotools PACKAGE [CONFIGURE-ARGUMENT …]. Stack protection and fortified functions would want libssp beside it.
build_autotools() {
    local package=$1 build=$sdk_work/build-$1
    shift
    rm -rf "$build"
    mkdir -p "$build"
    cd "$sdk_work/$package"
    autoreconf -fi
    cd "$build"
    "$sdk_work/$package/configure" --host="$sdk_host" --prefix="$sdk_partial" --enable-shared --disable-static \
        CPPFLAGS=-D_FORTIFY_SOURCE=0 CFLAGS=-O2 LDFLAGS="-static-libgcc -Wl,-s" "$@"
    make -j"$sdk_jobs"
    make install
}

add_opus() {
    step "opus sources" get_source opus
    step "opus" build_autotools opus --disable-doc --disable-extra-programs --disable-stack-protector
}

add_sodium() {
    step "libsodium sources" get_source libsodium
    step "libsodium" build_autotools libsodium --disable-ssp --without-pthreads
    # It is named with the number of its interface.
    mv "$sdk_partial"/bin/libsodium-*.dll "$sdk_partial/bin/libsodium.dll"
    rm -f "$sdk_partial"/bin/libsodium-*.def
}
