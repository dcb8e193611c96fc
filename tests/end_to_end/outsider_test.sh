#!/usr/bin/env bash
# What somebody outside this tree does with it: installs it, builds the examples against the installation in both ways and
# runs them.
#
#   outsider_test.sh SOURCE_DIR BUILD_DIR WORK_DIR
#
# WORK_DIR is emptied first. Everything is written below it.
set -euo pipefail

source_dir=$1
build=$2
work=$3
expected=$source_dir/tests/end_to_end/outsider
# shellcheck source=tests/support/checks.sh
. "$source_dir/tests/support/checks.sh"

rm -rf "$work"
mkdir -p "$work/make" "$work/plain"

# ---- installation; it can be moved as a whole ----
for component in command library development host_platform; do
    quietly "install_$component" cmake --install "$build" --component "$component" --prefix "$work/elsewhere"
done
mv "$work/elsewhere" "$work/prefix"
prefix=$work/prefix
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig

# ---- the examples, built in both ways, find the library by themselves ----
quietly make make -C "$source_dir/examples" OUT="$work/make" CC="${cc[*]}" CXX="${cxx[*]}" \
    CFLAGS="-O1 -Wall -Wextra -pedantic -Werror" \
    CXXFLAGS="-O1 -Wall -Wextra -pedantic -Werror"
quietly find_package configure -S "$source_dir/examples" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_FIND_ROOT_PATH="$prefix"
quietly find_package_build cmake --build "$work/cmake"

for way in make cmake; do
    fresh_state
    expect 0 "$expected/firewall_first.txt" "$work/$way/firewall"
    expect 0 "$expected/firewall_again.txt" "$work/$way/firewall"
    expect 0 "$expected/lan_services_first.txt" "$work/$way/lan_services"
    expect 0 "$expected/lan_services_again.txt" "$work/$way/lan_services"
done

# Still on the state of the last run.
expect 1 "$expected/firewall_unknown_profile.txt" "$work/make/firewall" 99
expect 1 "$expected/lan_services_unknown_profile.txt" "$work/make/lan_services" 99
for word in "" -1 1x 4294967296; do
    expect 2 "$expected/nothing.txt" "$work/make/firewall" "$word"
    expect 2 "$expected/nothing.txt" "$work/make/lan_services" "$word"
done
expect 2 "$expected/nothing.txt" "$work/make/firewall" 1 1
expect 2 "$expected/nothing.txt" "$work/make/lan_services" 1 1
MOBILE_AP_STATE=$work/missing expect 1 "$expected/firewall_no_session.txt" "$work/make/firewall"
MOBILE_AP_STATE=$work/missing expect 1 "$expected/lan_services_no_session.txt" "$work/make/lan_services"

fresh_state
MOBILE_AP_FAULTS="AddFireWallEntry#2=fail:62" expect 1 "$expected/firewall_full.txt" "$work/make/firewall"

# ---- the example of docs/library.md, and the line that builds it, with this installation's folder ----
awk '/^```c$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source_dir/docs/library.md" >"$work/plain/reserve.c"
line=$(sed -n '/^    cc -o reserve /,/[^\\]$/p' "$source_dir/docs/library.md" | sed "s|/opt/zr_nexa|$prefix|g")
[ -n "$line" ] || fail "docs/library.md has no line that builds the example"
cd "$work/plain"
quietly plain env -u PKG_CONFIG_PATH bash -c "cc() { ${cc[*]} -std=c99 -pedantic -Wall -Wextra -Werror \"\$@\"; }; $line"
cd "$work"
fresh_state
expect 0 "$expected/reserve_first.txt" "$work/plain/reserve"
expect 1 "$expected/reserve_again.txt" "$work/plain/reserve"

# A connected profile, servers from the network, and a reservation (the one just made) that has to be changed.
emulated "$prefix/bin/zr_nexa" WAN Connect connect 1 46 | grep -q "^CMD OK" || fail "the installed command cannot connect"
emulated "$build/bin/mobile_ap_ctl" sip add --bridge 0 --family 4 --address 198.51.100.61
emulated "$build/bin/mobile_ap_ctl" sip add --bridge 0 --family 4 --fqdn pcscf2.example
expect 0 "$expected/lan_services_connected.txt" "$work/make/lan_services"

# ---- a listener in its event loop, while other processes make calls ----
heard() {
    for _ in {1..300}; do
        grep -qxF "$1" "$work/heard" && return
        sleep 0.1
    done
    fail "the listener did not tell: $1"
}
fresh_state
: >"$work/heard"
"${emulator[@]}" "$work/make/listener" >"$work/heard" 2>&1 &
listener=$!
heard listening
emulated "$prefix/bin/zr_nexa" WAN Connect connect 1 46 >"$work/out"
emulated "$build/bin/mobile_ap_ctl" report 1
emulated "$build/bin/mobile_ap_ctl" call drop 1 --family 4 >"$work/out"
emulated "$build/bin/mobile_ap_ctl" call refuse 1 --family 4
emulated "$prefix/bin/zr_nexa" WAN Connect connect 1 4 >"$work/out"
heard "profile 1: IPv4 connecting failed"
kill -TERM "$listener"
wait "$listener" || fail "the listener ended with $?"
diff -u "$expected/listener.txt" "$work/heard" >&2 || fail "the listener heard something else"
expect 0 "$expected/listener_nothing.txt" "$work/cmake/listener" 0
for word in "" -1 1x 86401; do
    expect 2 "$expected/nothing.txt" "$work/make/listener" "$word"
done
MOBILE_AP_STATE=$work/missing expect 1 "$expected/listener_no_session.txt" "$work/make/listener" 0

# ---- Python, on the installed library of this machine's own CPU ----
if [ ${#emulator[@]} -eq 0 ]; then
    export ZR_NEXA_LIBRARY=$prefix/lib/libzr_nexa_client_api.so.1
    lease_time=$source_dir/examples/lease_time.py
    fresh_state
    expect 0 "$expected/lease_time_first.txt" "$lease_time" 7200
    expect 0 "$expected/lease_time_again.txt" "$lease_time" 7200
    expect 1 "$expected/lease_time_unknown_profile.txt" "$lease_time" 3600 99
    fresh_state
    "$build/bin/mobile_ap_ctl" call refuse 1 --family 4 --reason 6:36
    expect 1 "$expected/lease_time_failed.txt" "$lease_time" 7200
    for word in "" 0 -1 1x 4294967296; do
        expect 2 "$expected/nothing.txt" "$lease_time" "$word"
    done
    MOBILE_AP_STATE=$work/missing expect 1 "$expected/lease_time_no_session.txt" "$lease_time" 7200
fi

# ---- result codes in words, in both languages ----
codes=(0x0 0x4 0x6 0xd 0x30 0x1000 0x2003 0x202b 0x6fff 0x7000 0xffffffff)
for language in "c -std=c99" "c++ -std=c++17"; do
    # shellcheck disable=SC2086  # several words
    quietly result_words "${cxx[@]}" -x $language -pedantic -Wall -Wextra -Wconversion -Werror -o "$work/result_words" \
        "$expected/result_words.c" -I "$source_dir/examples" -I "$prefix/include"
    expect 0 "$expected/result_words.txt" "$work/result_words" "${codes[@]}"
done

finish
