#!/usr/bin/env bash
# A packager's day: the tree is built with flags of the packager's own, installed with the library folders that
# distributions have, below a staging folder and moved; each time a program of an outsider's is linked and run.
#
#   install_folders_test.sh SOURCE_DIR WORK_DIR
#
# WORK_DIR is emptied first.
set -euo pipefail

source_dir=$1
work=$2
# shellcheck source=tests/support/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
rm -rf "$work"
mkdir -p "$work/outsider"

cat >"$work/outsider/sfe.c" <<'END'
#include <stdio.h>
#include <zr_nexa_client_api.h>

int main(void)
{
    uint8_t on = 255;
    uint32_t result = zr_nexa_client_init(NULL);
    if (result == ZR_NEXA_OK) result = zr_nexa_general_sfe_get_v1(&on);
    printf("0x%x %d\n", (unsigned)result, on);
    zr_nexa_client_uninit();
    return 0;
}
END

# use PREFIX LIB_FOLDER: links the program in both ways against what lies there, and runs it and the command.
use() {
    local prefix=$1 lib=$1/$2
    fresh_state
    # shellcheck disable=SC2046  # words are what the compiler is to get
    quietly link "${cc[@]}" -o "$work/outsider/sfe" "$work/outsider/sfe.c" \
        $(PKG_CONFIG_PATH=$lib/pkgconfig pkg-config --cflags --libs zr_nexa_client_api) -Wl,-rpath,"$lib"
    [ "$(emulated "$work/outsider/sfe")" = "0x0 1" ] || fail "the outsider's program does not run on $lib"
    rm -rf "$work/cmake"
    quietly find_package configure -S "$source_dir/examples" -B "$work/cmake" \
        -Dzr_nexa_client_api_DIR="$lib/cmake/zr_nexa_client_api"
    quietly find_package_build cmake --build "$work/cmake" --target firewall
    emulated "$work/cmake/firewall" >"$work/firewall.txt" || fail "the example does not run on $lib"
    emulated "$prefix/bin/zr_nexa" General SFE get | grep -q '^CMD OK' || fail "the installed command does not run on $lib"
}

# Warnings that only somebody else's flags ask for do not stop a packager; nor does a wish for none of our run paths.
prepare() {
    quietly configure configure -S "$source_dir" -B "$work/build" -DZR_NEXA_BUILD_TESTS=OFF -DCMAKE_BUILD_TYPE=None \
        -DCMAKE_CXX_FLAGS="-O1 -Waggregate-return" -DCMAKE_INSTALL_PREFIX=/opt/zr_nexa "$@"
    quietly build cmake --build "$work/build"
}

install_into() {
    local component
    for component in command library development host_platform; do
        quietly "install_$component" "$@" cmake --install "$work/build" --component "$component" \
            --prefix "$prefix"
    done
}

for lib in lib lib64 lib/x86_64-linux-gnu; do
    prepare "-DCMAKE_INSTALL_LIBDIR=$lib"
    prefix=$work/$lib.prefix
    install_into
    use "$prefix" "$lib"

    # Moved as a whole.
    mkdir -p "$work/moved"
    rm -rf "$work/moved/here"
    mv "$prefix" "$work/moved/here"
    use "$work/moved/here" "$lib"

    # Staged: all of it below the prefix, and the prefix below the staging folder.
    rm -rf "$work/stage"
    prefix=/opt/zr_nexa
    install_into env DESTDIR="$work/stage"
    stray=$(find "$work/stage" -not -type d -not -path "$work/stage/opt/zr_nexa/*")
    [ -z "$stray" ] || fail "outside the prefix: $stray"
    for file in "$lib/libzr_nexa_client_api.so" "$lib/libqcmap_client.so" "$lib/pkgconfig/zr_nexa_client_api.pc" \
        "$lib/cmake/zr_nexa_client_api/zr_nexa_client_apiConfig.cmake" include/zr_nexa_client_api.h \
        include/qcmap_client.h bin/zr_nexa; do
        [ -e "$work/stage/opt/zr_nexa/$file" ] || fail "$file is not below the prefix"
    done
    use "$work/stage/opt/zr_nexa" "$lib"
    [ -z "$(find "$source_dir" -newer "$work/outsider/sfe.c" -name 'libzr_nexa*' -not -path '*/build/*')" ] ||
        fail "something was installed into the sources"
done

# No run paths where the packager wants none: the loader's own folders serve then.
rm -rf "$work/build/bin" "$work/build"/lib*
prepare -DCMAKE_INSTALL_LIBDIR=lib -DCMAKE_SKIP_INSTALL_RPATH=ON
prefix=$work/bare
install_into
for file in $(elf_files "$work/build" "$prefix"); do
    grep -q 'RPATH\|RUNPATH' <<<"$(readelf -d "$file")" && fail "$file has a run path"
done
fresh_state
for tree in "$work/build" "$prefix"; do
    LD_LIBRARY_PATH=$tree/lib emulated "$tree/bin/zr_nexa" General SFE get | grep -q '^CMD OK' ||
        fail "$tree/bin/zr_nexa does not run"
done

refused outside "is not below the prefix" configure -S "$source_dir" -B "$work/outside" -DCMAKE_INSTALL_PREFIX=/opt/a \
    -DCMAKE_INSTALL_LIBDIR=/usr/lib
finish
