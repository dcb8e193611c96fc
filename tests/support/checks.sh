# shellcheck shell=bash
# What the test scripts share. A script sets work to a folder of its own, which it may empty, before it calls any of
# this.

# Nothing of the caller's environment is to reach the builds and programs of a test.
unset CFLAGS CXXFLAGS LDFLAGS CPPFLAGS CC CXX DESTDIR MAKEFLAGS MFLAGS LD_LIBRARY_PATH PKG_CONFIG_PATH \
    MOBILE_AP_LOG MOBILE_AP_LOG_LEVEL MOBILE_AP_FAULTS
export LC_ALL=C
failures=0

# How this build's programs are made and started; the build says it where they are another CPU's.
cc=${ZR_NEXA_TEST_CC:-cc}
toolchain=${ZR_NEXA_TEST_TOOLCHAIN:-}
read -ra emulator <<<"${ZR_NEXA_TEST_EMULATOR:-}"

emulated() {
    "${emulator[@]}" "$@"
}

configure() {
    cmake -G Ninja ${toolchain:+"-DCMAKE_TOOLCHAIN_FILE=$toolchain"} "$@"
}

fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# quietly NAME COMMAND...: its output is shown only when it fails, and then the test ends.
quietly() {
    local name=$1
    shift
    if ! "$@" >"$work/$name.log" 2>&1; then
        cat "$work/$name.log" >&2
        echo "FAILED: $*" >&2
        exit 1
    fi
}

# refused NAME TEXT COMMAND...: it fails, and says this.
refused() {
    local name=$1 text=$2
    shift 2
    if "$@" >"$work/$name.log" 2>&1; then
        fail "$* did not fail"
    fi
    # What is said stands in lines of any length.
    tr -s ' \n' ' ' <"$work/$name.log" | grep -qF "$text" || {
        cat "$work/$name.log" >&2
        fail "$* did not say: $text"
    }
}

fresh_state() {
    rm -rf "$work/state"
    mkdir "$work/state"
    export MOBILE_AP_STATE=$work/state
}

# Programs and shared libraries below the folders, one a line, but for what CMake made for itself and what other test
# scripts work with.
elf_files() {
    find "$@" \( -name CMakeFiles -o -path '*/tests/scripts' \) -prune -o -type f -not -name '*.o' -exec sh -c '
        for file; do
            [ "$(head -c 4 "$file" | od -An -tx1)" = " 7f 45 4c 46" ] && echo "$file"
        done' sh {} +
}

# The script's last line.
finish() {
    [ "$failures" -eq 0 ] && echo "all as expected"
    exit $((failures > 0))
}
