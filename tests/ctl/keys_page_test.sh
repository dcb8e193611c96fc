#!/usr/bin/env bash
# keys_page_test.sh SOURCE PROGRAM...: docs/configuration.md has every key, as the table of keys says it.
set -euo pipefail

source=$1
shift
if ! diff <(sed '1,/^<!-- zr_nexactl keys -->$/d' "$source/docs/configuration.md") <("$@" keys); then
    echo "docs/configuration.md is not what zr_nexactl keys prints; CONTRIBUTING.md says how to renew it" >&2
    exit 1
fi
# The command's settings that the page names are there.
# shellcheck disable=SC2016 # the backquotes are the page's
settings=$("$@" keys | sed -n 's/^|.*| `\([A-Za-z]* [A-Za-z0-9]*\)` |$/\1/p' | sort -u)
[ "$(wc -l <<<"$settings")" -ge 15 ]
MOBILE_AP_STATE=$(mktemp -d)
export MOBILE_AP_STATE
trap 'rm -rf "$MOBILE_AP_STATE"' EXIT
while read -r category setting; do
    "$@" run "$category" "$setting" >/dev/null || {
        echo "docs/configuration.md names $category $setting, which the command does not have" >&2
        exit 1
    }
done <<<"$settings"
