#!/usr/bin/env bash
# A life of the packages in this root: the previous version is installed and used, upgraded, used by a program from
# outside, and removed.
#
#   life.sh PROJECT WORK_DIR PREVIOUS_VERSION VERSION
#
# WORK_DIR holds files previous and packages, with the paths of each version's packages. It is not written.
set -euo pipefail

project=$1
lists=$2
previous=$3
version=$4
work=$(mktemp -d)
# shellcheck source=tests/support/checks.sh
. "$project/tests/support/checks.sh"
unset MOBILE_AP_STATE XDG_STATE_HOME
export DEBIAN_FRONTEND=noninteractive HOME=/home/traveller
mkdir "$HOME"
cd "$HOME"
names=(zr-nexa libzr-nexa-client-api1 libzr-nexa-client-api-dev zr-nexa-ctl zr-nexa-host-platform)

# install_list FILE VERSION
install_list() {
    local packages name
    mapfile -t packages <"$1"
    quietly "install_$2" dpkg --install "${packages[@]}"
    for name in "${names[@]}"; do
        [ "$(dpkg-query -W -f '${db:Status-Status} ${Version}' "$name")" = "installed $2" ] || fail "$name is not there as $2"
    done
}

# same WHAT EXPECTED: compares standard input, less its carriage returns.
same() {
    tr -d '\r' | diff -u --label "$1" --label "what comes" "$2" - >&2 || fail "$1 is another"
}

# ---- installed, nothing of the host platform stands where a module's libraries would ----
install_list "$lists/previous" "$previous"
for library in qcmap_client diag qmi_cci dsutils; do
    [[ $(ldconfig -p) != *lib$library.so* ]] || fail "the loader finds lib$library.so by itself"
done
refused alone "libqcmap_client.so: cannot open shared object file" zr_nexa General SFE get
quietly ctl_alone mobile_ap_ctl service away 0

# ---- the README's first session ----
readme=$project/README.md
read -ra words < <(sed -n 's|^    scripts/run ||p' "$readme")
zr_nexa-host zr_nexa "${words[@]}" | grep -q '^CMD OK' || fail "${words[*]} does not succeed"
read -ra words < <(sed -n 's|^    \$ scripts/run ||p' "$readme")
awk '/^    \$ scripts\/run / { inside = 1; next } !/^    / { inside = 0 } inside { print substr($0, 5) }' "$readme" >"$work/run.txt"
[ -s "$work/run.txt" ] || fail "the README shows no run"
zr_nexa-host zr_nexa "${words[@]}" | same "the README's run" "$work/run.txt"

# ---- upgraded, on the same state ----
install_list "$lists/packages" "$version"
zr_nexa-host zr_nexa "${words[@]}" | same "the README's run after the upgrade" "$work/run.txt"
quietly documented "$project/tests/ctl/documented_test.py" "$project" zr_nexa-host /usr/bin/zr_nexactl
awk '/^```$/ { inside = !inside; next } inside' "$project/docs/packages.md" >"$work/session.txt"
sed -n 's/^\$ //p' "$work/session.txt" >"$work/session"
[ -s "$work/session" ] || fail "docs/packages.md has no session"
while IFS= read -r line; do
    echo "\$ $line"
    eval "$line"
done <"$work/session" | same "the session of docs/packages.md" "$work/session.txt"

# ---- programs from outside: by the page's lines, by make and by CMake ----
awk '/^```c$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$project/docs/library.md" >reserve.c
sed -n 's/^    \(zr_nexa-host cc \)/\1/p' "$project/docs/packages.md" >"$work/link"
grep -q pkg-config "$work/link" || fail "docs/packages.md has no line that links a program"
quietly link sh -e "$work/link"
expected=$project/tests/end_to_end/outsider
expect 0 "$expected/reserve_first.txt" zr_nexa-host ./reserve
expect 1 "$expected/reserve_again.txt" zr_nexa-host ./reserve
examples=/usr/share/doc/libzr-nexa-client-api-dev/examples
mkdir made
quietly make zr_nexa-host make -C $examples OUT="$PWD/made"
quietly configure cmake -S $examples -B built
quietly build zr_nexa-host cmake --build built
for way in made built; do
    mkdir "$work/$way"
    MOBILE_AP_STATE=$work/$way expect 0 "$expected/firewall_first.txt" zr_nexa-host $way/firewall
done
rm -rf reserve.c reserve made built

# ---- removed ----
mapfile -t all < <(dpkg-query -W -f '${Package} ${Source}\n' | sed -n 's/ zr-nexa$//p')
quietly purge dpkg --purge "${names[@]}" "${all[@]}"
rm -rf "$work"
work=$HOME
finish
