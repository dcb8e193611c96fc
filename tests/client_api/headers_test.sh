#!/usr/bin/env bash
# Every public header serves a C99 and a C++11 program, alone, beside the others and beside the platform's, and no
# compiler says a word.
#
#   headers_test.sh INCLUDE_DIR CC CXX
#
# clang and clang++ are asked as well where they are installed.
set -euo pipefail

include=$1
platform=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../platform/include" && pwd)
c_compilers=("$2")
cxx_compilers=("$3")
if command -v clang >/dev/null && command -v clang++ >/dev/null; then
    c_compilers+=(clang)
    cxx_compilers+=(clang++)
fi
failures=0

# compile UNIT COMPILER LANGUAGE STANDARD
compile() {
    "$2" -x "$3" -std="$4" -Wall -Wextra -Wpedantic -Wredundant-decls -Werror -I "$include" -I "$platform" \
        -fsyntax-only - <<<"$1" 2>&1
}

failed() {
    printf 'FAILED: %s\n' "$@" >&2
    failures=$((failures + 1))
}

# accepted UNIT COMPILER LANGUAGE STANDARD
accepted() {
    local said status=0
    said=$(compile "$@") || status=$?
    if [ $status -ne 0 ] || [ -n "$said" ]; then
        failed "$2 -std=$4, status $status" "$1" "$said"
    fi
}

# refused UNIT COMPILER LANGUAGE STANDARD: for the record that is declared twice.
refused() {
    local said
    if said=$(compile "$@") || ! grep -q 'error.*qcmap_msgr_wwan_statistics_type_v01' <<<"$said"; then
        failed "not refused: $2 -std=$4" "$1" "$said"
    fi
}

# in_c CHECK UNIT, in_cxx CHECK UNIT: with every compiler.
in_c() {
    local compiler
    for compiler in "${c_compilers[@]}"; do
        "$1" "$2" "$compiler" c c99
    done
}

in_cxx() {
    local compiler
    for compiler in "${cxx_compilers[@]}"; do
        "$1" "$2" "$compiler" c++ c++11
    done
}

# serves HEADER...: one unit that includes them in this order.
serves() {
    local unit
    unit=$(printf '#include <%s>\n' "$@")
    in_c accepted "$unit"
    in_cxx accepted "$unit"
}

mapfile -t headers < <(cd "$include" && find . -name '*.h' -printf '%P\n' | LC_ALL=C sort)
[ ${#headers[@]} -gt 1 ] || {
    echo "FAILED: no headers below $include" >&2
    exit 1
}
reversed=()
for header in "${headers[@]}"; do
    serves "$header"
    reversed=("$header" "${reversed[@]}")
done
serves "${headers[@]}"
serves "${reversed[@]}"
serves zr_nexa_client_api.h zr_nexa_client_api.h

# The platform's own record. The host platform's headers are C++; a module's may serve both and know no guard of ours.
interface='#include <zr_nexa_client_api.h>'
host='#include <qcmap_client.h>'
module='#include <stdint.h>
typedef struct {
    uint64_t bytes_rx, bytes_tx;
    uint32_t pkts_rx, pkts_tx, pkts_dropped_rx, pkts_dropped_tx;
} qcmap_msgr_wwan_statistics_type_v01;'
guard='#define QCMAP_MSGR_WWAN_STATISTICS_TYPE_V01_DEFINED'
use='uint32_t use(qcmap_msgr_wwan_statistics_type_v01* counts);
uint32_t use(qcmap_msgr_wwan_statistics_type_v01* counts)
{
    return zr_nexa_wan_statistics_get_v1(1, 4, counts);
}'
in_c accepted "$interface"$'\n'"$use"
in_cxx accepted "$interface"$'\n'"$use"
in_cxx accepted "$host"$'\n'"$interface"$'\n'"$use"
in_cxx accepted "$interface"$'\n'"$host"$'\n'"$use"
for run in in_c in_cxx; do
    $run accepted "$module"$'\n'"$guard"$'\n'"$interface"$'\n'"$use"
    $run refused "$module"$'\n'"$interface"$'\n'"$use"
    $run refused "$interface"$'\n'"$module"$'\n'"$use"
done

[ $failures -eq 0 ]
