#!/usr/bin/env bash
# Every public header serves a C99 and a C++11 program, alone and beside the others, and no compiler says a word.
#
#   headers_test.sh INCLUDE_DIR CC CXX
#
# clang and clang++ are asked as well where they are installed.
set -euo pipefail

include=$1
c_compilers=("$2")
cxx_compilers=("$3")
if command -v clang >/dev/null && command -v clang++ >/dev/null; then
    c_compilers+=(clang)
    cxx_compilers+=(clang++)
fi
failures=0

# check UNIT COMPILER LANGUAGE STANDARD
check() {
    local unit=$1 said status=0
    shift
    said=$("$1" -x "$2" -std="$3" -Wall -Wextra -Wpedantic -Wredundant-decls -Werror -I "$include" -fsyntax-only - \
        <<<"$unit" 2>&1) || status=$?
    [ $status -eq 0 ] && [ -z "$said" ] && return
    printf 'FAILED: %s -std=%s, status %s\n%s\n%s\n' "$1" "$3" "$status" "$unit" "$said" >&2
    failures=$((failures + 1))
}

# serves HEADER...: one unit that includes them in this order.
serves() {
    local unit compiler
    unit=$(printf '#include <%s>\n' "$@")
    for compiler in "${c_compilers[@]}"; do
        check "$unit" "$compiler" c c99
    done
    for compiler in "${cxx_compilers[@]}"; do
        check "$unit" "$compiler" c++ c++11
    done
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

[ $failures -eq 0 ]
