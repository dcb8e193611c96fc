#!/usr/bin/env bash
# Two builds of the same sources in different folders are the same, byte for byte.
#
#   reproducible_test.sh SOURCE_DIR BUILD_DIR WORK_DIR
#
# WORK_DIR is emptied first.
set -euo pipefail

source_dir=$1
build=$2
work=$3
# shellcheck source=tests/support/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
rm -rf "$work"
mkdir -p "$work/another folder"

tar -C "$source_dir" --exclude=./build --exclude=./.git -cf - . | tar -C "$work/another folder" -xf -
# Configured as BUILD_DIR was.
mapfile -t settings < <(sed -nE 's/^((CMAKE_(BUILD_TYPE|C(XX)?_(COMPILER|FLAGS(_[A-Z]+)?)|TOOLCHAIN_FILE|INSTALL_LIBDIR)|ZR_NEXA_BUILD_MAN):.*)/-D\1/p' \
    "$build/CMakeCache.txt")
quietly configure cmake -G Ninja -S "$work/another folder" -B "$work/elsewhere" -DZR_NEXA_BUILD_TESTS=OFF "${settings[@]}"
quietly build cmake --build "$work/elsewhere"
mapfile -t files < <(cd "$work/elsewhere" && elf_files .)
[ ${#files[@]} -ge 7 ] || fail "only ${#files[@]} files were built: ${files[*]}"
for file in "${files[@]}"; do
    cmp "$work/elsewhere/$file" "$build/$file" || fail "$file differs"
done
finish
