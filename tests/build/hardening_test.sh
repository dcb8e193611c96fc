#!/usr/bin/env bash
# How the optimised build's files are protected, read out of the files.
#
#   hardening_test.sh BUILD_DIR WORK_DIR OBJDUMP
set -euo pipefail

build=$1
work=$2
objdump=$3
# shellcheck source=tests/support/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
rm -rf "$work"
mkdir -p "$work"

for file in $(elf_files "$build"); do
    name=${file##*/}
    readelf -dlhW "$file" >"$work/read"
    grep -q 'Type: *DYN' "$work/read" || fail "$name is not position-independent"
    grep -q 'GNU_RELRO' "$work/read" || fail "$name has no read-only relocations"
    grep -q 'GNU_STACK .* RW ' "$work/read" || fail "$name has an executable stack"
    case $name in
    zr_nexa | libzr_nexa_client_api.so.*)
        # Each method of the platform would be bound at each start.
        grep -q 'BIND_NOW\|Flags: NOW' "$work/read" && fail "$name binds all its symbols at its start"
        ;;
    *) grep -q 'BIND_NOW\|Flags: NOW' "$work/read" || fail "$name binds its symbols late" ;;
    esac
done

# asks_for FILE SYMBOL
asks_for() {
    grep -q " UND .*$2" <<<"$(readelf --dyn-syms -W "$1")" || fail "${1##*/} does not ask for $2"
}
for file in "$build/lib/libzr_nexa_client_api.so" "$build/lib/libqcmap_client.so" "$build/lib/libdiag.so" \
    "$build/bin/mobile_ap_ctl"; do
    asks_for "$file" __stack_chk_fail
done
asks_for "$build/bin/zr_nexa" __printf_chk
asks_for "$build/lib/libzr_nexa_client_api.so" '_chk@'

# Every function that another library may call begins with a landing pad, on CPUs that know such.
case $(readelf -h "$build/bin/zr_nexa" | sed -n 's/.*Machine: *//p') in
*X86-64*) pad=endbr64 ;;
AArch64) pad='bti|paciasp' ;;
*) pad='' ;;
esac
if [ -n "$pad" ]; then
    # The line behind a function's name is its first instruction.
    "$objdump" -d --no-show-raw-insn "$build/lib/libzr_nexa_client_api.so" |
        awk '/^[0-9a-f]+ <zr_nexa_[a-z0-9_]+>:$/ { name = $2; getline; print name, $0 }' >"$work/first"
    [ "$(wc -l <"$work/first")" -gt 100 ] || fail "the public functions were not found"
    grep -vE "$pad" "$work/first" >&2 && fail "these functions begin without a landing pad"
fi
finish
