#!/usr/bin/env bash
# walkthrough_example_test.sh SOURCE WORK PROGRAM...: examples/walkthrough.yaml, applied to a fresh module, gives what the
# commands of docs/walkthrough.md give, and applied again changes nothing.
#
# WORK is emptied first.
set -euo pipefail

source=$1
work=$2
shift 2
rm -rf "$work"
mkdir -p "$work/document" "$work/commands" "$work/held"
export ZR_NEXACTL_STATE=$work/held
document=$source/examples/walkthrough.yaml

export MOBILE_AP_STATE=$work/document
"$@" apply "$document" >"$work/apply.txt" 2>&1 || { cat "$work/apply.txt" >&2; exit 1; }
"$@" show --handles >"$work/document.yaml" 2>"$work/notes.txt"
"$@" diff "$document"

# The commands up to where they are refused and taken down again; connecting is no setting.
export MOBILE_AP_STATE=$work/commands
commands=$(sed '/^## What is refused/,$d' "$source/docs/walkthrough.md" | sed -n 's/^\$ zr_nexa //p' | grep -v '^WAN Connect')
[ "$(wc -l <<<"$commands")" -ge 40 ]
while read -r words; do
    # shellcheck disable=SC2086 # words as they stand
    "$@" run $words >/dev/null </dev/null || { echo "refused: $words" >&2; exit 1; }
done <<<"$commands"
"$@" show --handles >"$work/commands.yaml" 2>"$work/notes.txt"

diff "$work/commands.yaml" "$work/document.yaml"
"$@" diff "$document"
