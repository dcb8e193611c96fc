#!/usr/bin/env bash
# What somebody outside this tree does with it: installs it, builds the examples against the installation in both ways,
# runs them, and builds the whole for a module whose sysroot is an installed host platform.
#
#   outsider_test.sh SOURCE_DIR BUILD_DIR WORK_DIR CC CXX TOOLCHAIN_FILE [EMULATOR ...]
#
# WORK_DIR is emptied first. Everything is written below it. The compilers come with the words that they need; only a
# cross build has a TOOLCHAIN_FILE that is not empty, and an EMULATOR, the words that stand before its programs.
set -euo pipefail

source_dir=$1
build=$2
work=$3
cc=$4
cxx=$5
cross=(${6:+-DCMAKE_TOOLCHAIN_FILE="$6"})
emulator=("${@:7}")
expected=$source_dir/tests/end_to_end/outsider
unset CFLAGS CXXFLAGS LDFLAGS CC CXX DESTDIR MAKEFLAGS MFLAGS LD_LIBRARY_PATH PKG_CONFIG_PATH \
    MOBILE_AP_LOG MOBILE_AP_LOG_LEVEL MOBILE_AP_FAULTS
export LC_ALL=C
failures=0

fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# quietly NAME COMMAND...: its output is shown only when it fails, and then the test ends.
quietly() {
    local name=$1
    shift
    if ! "$@" >"$work/$name.log" 2>&1; then
        cat "$work/$name.log" >&2
        echo "FAILED: $*" >&2
        exit 1
    fi
}

# expect STATUS EXPECTED_FILE PROGRAM...: compares exit status and standard output, byte for byte.
expect() {
    local wanted_status=$1 wanted=$expected/$2 status=0
    shift 2
    "${emulator[@]}" "$@" >"$work/out" 2>"$work/err" || status=$?
    if [ "$status" -ne "$wanted_status" ]; then
        cat "$work/err" >&2
        fail "$* ended with $status, not $wanted_status"
    fi
    diff -u --label "expected: ${wanted##*/}" --label "$*" "$wanted" "$work/out" >&2 || fail "$*: wrong output"
}

fresh_state() {
    rm -rf "$work/state"
    mkdir "$work/state"
    export MOBILE_AP_STATE=$work/state
}

needed() {
    readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'
}

rm -rf "$work"
mkdir -p "$work/make" "$work/plain"

# ---- installation; it can be moved as a whole ----
for component in runtime development host_platform; do
    quietly "install_$component" cmake --install "$build" --component "$component" --prefix "$work/elsewhere"
done
mv "$work/elsewhere" "$work/prefix"
prefix=$work/prefix
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig

# ---- the examples, built in both ways, find the library by themselves ----
quietly make make -C "$source_dir/examples" OUT="$work/make" CC="$cc" CXX="$cxx" CFLAGS="-O1 -Wall -Wextra -pedantic -Werror" \
    CXXFLAGS="-O1 -Wall -Wextra -pedantic -Werror"
quietly find_package cmake -S "$source_dir/examples" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_FIND_ROOT_PATH="$prefix" "${cross[@]}"
quietly find_package_build cmake --build "$work/cmake"

for way in make cmake; do
    fresh_state
    expect 0 firewall_first.txt "$work/$way/firewall"
    expect 0 firewall_again.txt "$work/$way/firewall"
    expect 0 lan_services_first.txt "$work/$way/lan_services"
    expect 0 lan_services_again.txt "$work/$way/lan_services"
done

# Still on the state of the last run.
expect 1 firewall_unknown_profile.txt "$work/make/firewall" 99
expect 1 lan_services_unknown_profile.txt "$work/make/lan_services" 99
for word in "" -1 1x 4294967296; do
    expect 2 nothing.txt "$work/make/firewall" "$word"
    expect 2 nothing.txt "$work/make/lan_services" "$word"
done
expect 2 nothing.txt "$work/make/firewall" 1 1
expect 2 nothing.txt "$work/make/lan_services" 1 1
MOBILE_AP_STATE=$work/missing expect 1 firewall_no_session.txt "$work/make/firewall"
MOBILE_AP_STATE=$work/missing expect 1 lan_services_no_session.txt "$work/make/lan_services"

fresh_state
MOBILE_AP_FAULTS="AddFireWallEntry#2=fail:62" expect 1 firewall_full.txt "$work/make/firewall"

# ---- the example of docs/library.md, with nothing but what pkg-config says ----
# shellcheck disable=SC2016  # the backquotes stand in the page
awk '/^```c$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source_dir/docs/library.md" >"$work/plain/reserve.c"
# shellcheck disable=SC2046,SC2086  # words are what the compiler is to get
quietly plain $cc -std=c99 -pedantic -Wall -Wextra -Werror -o "$work/plain/reserve" "$work/plain/reserve.c" \
    $(pkg-config --cflags --libs zr_nexa_client_api)
fresh_state
LD_LIBRARY_PATH=$prefix/lib expect 0 reserve_first.txt "$work/plain/reserve"
LD_LIBRARY_PATH=$prefix/lib expect 1 reserve_again.txt "$work/plain/reserve"

# A connected profile, servers from the network, and a reservation (the one just made) that has to be changed.
"${emulator[@]}" "$prefix/bin/zr_nexa" WAN Connect connect 1 46 | grep -q "^CMD OK" || fail "the installed command cannot connect"
"${emulator[@]}" "$build/bin/mobile_ap_demo" sip add --bridge 0 --family 4 --address 198.51.100.61
"${emulator[@]}" "$build/bin/mobile_ap_demo" sip add --bridge 0 --family 4 --fqdn pcscf2.example
expect 0 lan_services_connected.txt "$work/make/lan_services"

# ---- result codes in words, in both languages ----
codes=(0x0 0x4 0x6 0xd 0x30 0x1000 0x2003 0x202b 0x6fff 0x7000 0xffffffff)
for language in "c -std=c99" "c++ -std=c++17"; do
    # shellcheck disable=SC2086  # several words
    quietly result_words $cxx -x $language -pedantic -Wall -Wextra -Wconversion -Werror -o "$work/result_words" \
        "$expected/result_words.c" -I "$source_dir/examples" -I "$prefix/include"
    expect 0 result_words.txt "$work/result_words" "${codes[@]}"
done

# ---- the device build, on a sysroot that holds nothing of this project but an installed host platform ----
sysroot=$work/sysroot
device=$work/device
quietly install_sysroot cmake --install "$build" --component host_platform --prefix "$sysroot"
quietly device cmake -S "$source_dir" --preset device -B "$device" -DZR_NEXA_PLATFORM_SYSROOT="$sysroot" \
    "${cross[@]}"
quietly device_build cmake --build "$device"
[ -z "$(find "$device" -name 'libqcmap_client*' -o -name 'libdiag*')" ] || fail "the device build holds a host platform"
fresh_state
LD_LIBRARY_PATH=$sysroot/lib expect 0 sfe.txt "$device/bin/zr_nexa" General SFE get
for file in bin/zr_nexa lib/libzr_nexa_client_api.so; do
    [ -n "$(needed "$device/$file")" ] || fail "$device/$file needs nothing"
    diff -u --label "host $file" --label "device $file" <(needed "$build/$file") <(needed "$device/$file") >&2 ||
        fail "$file of the device build needs other libraries"
done

[ "$failures" -eq 0 ] && echo "all as expected"
[ "$failures" -eq 0 ]
