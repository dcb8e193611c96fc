#!/usr/bin/env bash
# Where programs and libraries look for libraries: beside themselves, and nowhere that depends on where they are run.
#
#   run_paths_test.sh BUILD_DIR WORK_DIR
#
# WORK_DIR is emptied first.
set -euo pipefail

build=$1
work=$2
# shellcheck source=tests/support/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
rm -rf "$work"
mkdir -p "$work/elsewhere"

# Every entry begins with $ORIGIN; an empty one is the current folder.
looks_beside_itself() {
    local file=$1 path entry entries
    path=$(readelf -d "$file" | sed -n 's/.*\(RPATH\|RUNPATH\)).*\[\(.*\)\]$/\2/p')
    grep -q 'RPATH)' <<<"$(readelf -d "$file")" && fail "$file has an RPATH, which stands before LD_LIBRARY_PATH"
    [ -n "$path" ] || return 0
    IFS=: read -ra entries <<<"$path:end"
    unset 'entries[-1]'
    for entry in "${entries[@]}"; do
        case $entry in
        "\$ORIGIN" | "\$ORIGIN/"*) ;;
        *) fail "$file has the run path [$path]" ;;
        esac
    done
}

for component in command library development host_platform; do
    quietly "install_$component" cmake --install "$build" --component "$component" --prefix "$work/prefix"
done
mapfile -t files < <(elf_files "$build" "$work/prefix")
for name in bin/zr_nexa bin/nat_test lib/libqcmap_client.so; do
    [[ " ${files[*]} " == *"/$name "* ]] || fail "$name was not looked at"
done
for file in "${files[@]}"; do
    looks_beside_itself "$file"
done

# What the loader would take for a library, in the folder where the command is run.
fresh_state
for library in libsqlite3.so.0 libqcmap_client.so libdiag.so libstdc++.so.6 libzr_nexa_client_api.so.1; do
    echo "not a library" >"$work/elsewhere/$library"
done
cd "$work/elsewhere"
for program in "$build/bin/zr_nexa" "$work/prefix/bin/zr_nexa"; do
    emulated "$program" General SFE get >"$work/out" 2>&1 || true
    grep -q '^CMD OK' "$work/out" || {
        cat "$work/out" >&2
        fail "$program takes libraries from the current folder"
    }
done
finish
