#!/usr/bin/env bash
# What the files at the project's root say, against what they are about.
#
#   project_files_test.sh SOURCE_DIR BUILD_DIR VERSION
set -euo pipefail

source_dir=$1
build=$2
version=$3
# shellcheck source=tests/support/checks.sh
. "$source_dir/tests/support/checks.sh"

# same WHAT WANTED SEEN
same() {
    [ "$2" = "$3" ] || fail "$1: $3, not $2"
}

# ---- one version: the newest of the changelog, and wherever it is told ----
same CHANGELOG.md "$version" "$(sed -n 's/^## \([0-9][0-9.]*\) - [0-9]\{4\}-[0-9][0-9]-[0-9][0-9]$/\1/p' \
    "$source_dir/CHANGELOG.md" | head -n 1)"
headings=$(sed -n 's/^## \([^ ]*\).*/\1/p' "$source_dir/CHANGELOG.md")
same "CHANGELOG.md, the first heading" Unreleased "$(head -n 1 <<<"$headings")"
same "CHANGELOG.md, in its order" "$(sed 1d <<<"$headings")" "$(sed 1d <<<"$headings" | sort -rV)"
same pkg-config "$version" "$(sed -n 's/^Version: //p' "$build/client_api/zr_nexa_client_api.pc")"
same CMake "$version" \
    "$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")$/\1/p' "$build/client_api/zr_nexa_client_apiConfigVersion.cmake")"
library=$(find "$build" -maxdepth 3 -name 'libzr_nexa_client_api.so.*.*.*' -print -quit)
same "the library's file name" "libzr_nexa_client_api.so.$version" "${library##*/}"
zr_nexactl=$build/bin/zr_nexactl
[ ! -x "$zr_nexactl" ] || same "zr_nexactl --version" "zr_nexactl $version" "$(emulated "$zr_nexactl" --version)"

# ---- what the pages link to is there, and so is the heading that is named ----
cd "$source_dir"
pages=(*.md docs/*.md examples/*.md)
links=0
while IFS=: read -r page target; do
    links=$((links + 1))
    file=${target%%#*}
    [ -n "$file" ] || file=${page##*/}
    [ -e "${page%"${page##*/}"}$file" ] || fail "$page links to $target, which is not there"
    [[ $target == *#* ]] || continue
    sed -n 's/^##* //p' "${page%"${page##*/}"}$file" | tr '[:upper:] ' '[:lower:]-' | tr -cd 'a-z0-9_\n-' |
        grep -qxF -e "${target#*#}" || fail "$page links to $target, which has no such heading"
done < <(grep -oE '\]\([^) ]+\)' "${pages[@]}" | sed 's/](\(.*\))$/\1/' | grep -v ':https:')
[ "$links" -gt 100 ] || fail "only $links links were found"

# ---- editors indent as clang-format does ----
wanted=$(sed -n 's/^IndentWidth: /indent_size = /p; s/^ColumnLimit: /max_line_length = /p' "$source_dir/.clang-format")
same .editorconfig "$wanted" "$(sed -n '/^\[\*\.{h,c,cpp}\]$/,/^$/p' "$source_dir/.editorconfig" | grep '=')"

# ---- the variables that SECURITY.md names are those that are read, and command and library read none ----
read_in() {
    (cd "$source_dir" && grep -rhoE '\b(getenv|variable)\("[A-Z_]+"\)' --include='*.cpp' --include='*.h' "$@" |
        sed 's/.*"\(.*\)".*/\1/' | sort -u) || true
}
# shellcheck disable=SC2016  # the page's backticks
same "variables in SECURITY.md" "$(read_in ctl platform/host)" \
    "$(sed -n 's/^  | \(`[^|]*`\) |.*/\1/p' "$source_dir/SECURITY.md" | grep -o '[A-Z_]*' | sort -u)"
same "variables of the command and the library" "" "$(read_in cli client_api)"

finish
