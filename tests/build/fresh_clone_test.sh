#!/usr/bin/env bash
# The order run, ctl, test, run in a fresh clone on a machine without libyaml: what each command installs and builds.
#
#   fresh_clone_test.sh SOURCE_DIR WORK_DIR
#
# WORK_DIR is emptied first. Nothing is installed: the machine is one in which the package is there from the first
# apt-get on.
set -euo pipefail

source_dir=$1
work=$2
# shellcheck source=tests/support/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
rm -rf "$work"
mkdir -p "$work/clone" "$work/bin" "$work/state"
tar -C "$source_dir" --exclude=./build --exclude=./.git -cf - . | tar -C "$work/clone" -xf -

stand_in() { # NAME: its lines come from standard input; $real is what it stands in for
    { printf '#!/usr/bin/env bash\nwork=%q\nreal=%q\n' "$work" "$(command -v "$1" || true)" && cat; } >"$work/bin/$1"
    chmod +x "$work/bin/$1"
}
stand_in dpkg-query <<'END'
if [ "${!#}" = libyaml-dev ] && [ ! -e "$work/installed" ]; then exit 1; fi
echo installed
END
stand_in apt-get <<'END'
[ "$1" = update ] && exit
echo "$*" >>"$work/installed"
END
stand_in sudo <<'END'
exec "$@"
END
stand_in pkg-config <<'END'
if [[ " $* " == *yaml* ]] && [ ! -e "$work/installed" ]; then exit 1; fi
exec "$real" "$@"
END
# Not optimised, and without all the test programs.
stand_in cmake <<'END'
case $* in
--preset*)
    echo "$*" >>"$work/configured"
    exec "$real" "$@" -DCMAKE_CXX_FLAGS_RELEASE=-O0 -DCMAKE_C_FLAGS_RELEASE=-O0
    ;;
--build*--target*) exec "$real" "$@" ;;
--build*) exec "$real" "$@" --target zr_nexactl mobile_ap_ctl ;;
*) exec "$real" "$@" ;;
esac
END
export PATH=$work/bin:$PATH MOBILE_AP_STATE=$work/state ZR_NEXACTL_STATE=$work/held

built() { # NAME COMMAND...
    local name=$1
    shift
    quietly "$name" "$work/clone/scripts/$name" "$@"
}
expect_lines() { # FILE LINE...
    local file=$1
    shift
    printf '%s\n' "$@" | diff - "$file" >&2 || fail "$file"
}
expect_nothing_done() { # the last command found all as it was
    expect_lines "$work/clone/build/host/build.log" "ninja: no work to do."
    expect_lines "$work/installed" "$installed"
    expect_lines "$work/configured" "${configured[@]}"
}
configured=("--preset host")
installed="install -y --no-install-recommends libyaml-dev"

built run General SFE get
grep -q '^CMD OK' "$work/run.log" || fail "run printed $(cat "$work/run.log")"
[ ! -e "$work/installed" ] || fail "run installed something: $(cat "$work/installed")"
[ ! -e "$work/clone/build/host/bin/zr_nexactl" ] || fail "run built zr_nexactl"
expect_lines "$work/configured" "${configured[@]}"

built ctl show
grep -q '^version: 1$' "$work/ctl.log" || fail "ctl printed $(cat "$work/ctl.log")"
configured+=("--preset host -DZR_NEXA_BUILD_CTL=ON")
expect_lines "$work/installed" "$installed"
expect_lines "$work/configured" "${configured[@]}"

built test -R '^keys_page_test$'
grep -q '^100% tests passed, 0 tests failed out of 1$' "$work/test.log" || fail "test printed $(cat "$work/test.log")"
configured+=("--preset host -DZR_NEXA_BUILD_CTL=ON -DZR_NEXA_BUILD_MAN=ON")
expect_nothing_done

built run General SFE get
grep -q '^CMD OK' "$work/run.log" || fail "run printed $(cat "$work/run.log")"
expect_nothing_done
built ctl show
expect_nothing_done

# As after run alone, where libyaml was there before: what was built is installed.
rm "$work/clone/build/host/bin/zr_nexactl"
quietly install cmake --install "$work/clone/build/host" --prefix "$work/root"
[ -x "$work/root/bin/zr_nexa" ] || fail "the command is not installed"
finish
