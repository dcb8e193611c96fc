#!/usr/bin/env bash
# docs/module_build.md, followed word for word.
#
#   module_build_test.sh SOURCE_DIR WORK_DIR
#
# WORK_DIR is emptied first.
set -euo pipefail

source_dir=$1
work=$2
# shellcheck source=tests/support/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
rm -rf "$work"
mkdir -p "$work"

# All that differs is the folder.
{
    echo "set -e"
    awk '/^```sh$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source_dir/docs/module_build.md" |
        sed "s|^work=.*|work='$work/page'|"
} >"$work/page.sh"
grep -q "^work='$work/page'" "$work/page.sh" || fail "the page does not name its folder"
mkdir "$work/page"
cd "$source_dir"
sh "$work/page.sh" >"$work/page.txt" 2>"$work/page.err" || {
    cat "$work/page.err" >&2
    fail "the page's commands end with an error"
}
grep -q '^General SFE: enabled' "$work/page.txt" || fail "the module's command does not answer"
grep -q '^CMD OK' "$work/page.txt" || fail "the module's command does not succeed"
tail -n 26 "$work/page.txt" | diff -u "$source_dir/tests/end_to_end/outsider/lan_services_first.txt" - >&2 ||
    fail "the program's output is another"

# What the page says is installed.
for file in bin/zr_nexa lib/libzr_nexa_client_api.so.1; do
    [ -e "$work/page/root/$file" ] || fail "$file is not installed"
done
[ "$(readelf -h "$work/page/root/bin/zr_nexa" | sed -n 's/.*Machine: *//p')" = AArch64 ] || fail "another CPU's command"
finish
