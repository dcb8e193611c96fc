# shellcheck shell=bash
# What the test scripts share. A script sets work to a folder of its own, which it may empty, before it calls any of
# this.

# Nothing of the caller's environment is to reach the builds and programs of a test.
unset CFLAGS CXXFLAGS LDFLAGS CPPFLAGS CC CXX DESTDIR MAKEFLAGS MFLAGS LD_LIBRARY_PATH PKG_CONFIG_PATH \
    MOBILE_AP_LOG MOBILE_AP_LOG_LEVEL MOBILE_AP_FAULTS MOBILE_AP_JUDGE
export LC_ALL=C
failures=0

# How this build's programs are made and started; the build says it where they are another CPU's.
read -ra cc <<<"${ZR_NEXA_TEST_CC:-cc}"
read -ra cxx <<<"${ZR_NEXA_TEST_CXX:-c++}"
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

# expect STATUS EXPECTED_FILE PROGRAM...: compares exit status and standard output, byte for byte.
expect() {
    local wanted_status=$1 wanted=$2 status=0
    shift 2
    emulated "$@" >"$work/out" 2>"$work/err" || status=$?
    if [ "$status" -ne "$wanted_status" ]; then
        cat "$work/err" >&2
        fail "$* ended with $status, not $wanted_status"
    fi
    diff -u --label "expected: ${wanted##*/}" --label "$*" "$wanted" "$work/out" >&2 || fail "$*: wrong output"
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
