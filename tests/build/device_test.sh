#!/usr/bin/env bash
# The build for a module, on a sysroot that holds nothing of this project but an installed host platform.
#
#   device_test.sh SOURCE_DIR BUILD_DIR WORK_DIR
#
# WORK_DIR is emptied first.
# shellcheck disable=SC2317  # functions are called by name
set -euo pipefail

source_dir=$1
build=$2
work=$3
# shellcheck source=tests/support/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../support/checks.sh"
rm -rf "$work"
mkdir -p "$work/tools"

sysroot=$work/sysroot
device=$work/device
for_device() {
    configure -S "$source_dir" --preset device -B "$device" "$@"
}
needed() {
    readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'
}
quietly install cmake --install "$build" --component host_platform --prefix "$sysroot"

# ---- what is missing is said at once ----
# A toolchain file may name a sysroot of its own, which is then looked at.
if [ -z "$toolchain" ]; then
    refused no_sysroot "No platform to build for" for_device
else
    refused no_sysroot "lacks: header diag_msg.h" for_device
fi
refused wrong_sysroot "lacks: header diag_msg.h header ds_utils.h header qcmap_client.h" for_device \
    -DZR_NEXA_PLATFORM_SYSROOT="$work/tools"
grep -q 'library libdsutils.so' "$work/wrong_sysroot.log" || fail "missing libraries are not said"
mv "$sysroot/lib/libqmi_cci.so" "$work"
refused no_library "lacks: library libqmi_cci.so" for_device -DZR_NEXA_PLATFORM_SYSROOT="$sysroot"
mv "$work/libqmi_cci.so" "$sysroot/lib"
mv "$sysroot/include/qmi_error.h" "$work"
refused no_header "lacks: header qmi_error.h" for_device -DZR_NEXA_PLATFORM_SYSROOT="$sysroot"

# A module's headers are its own affair: what our flags would warn of there stops nothing.
mv "$work/qmi_error.h" "$sysroot/include"
cat >>"$sysroot/include/qcmap_client.h" <<'END'
inline int qcmap_low_word(unsigned long long handle, int unused) { return (int)handle; }
inline bool qcmap_is_set(int flags, unsigned int bit) { int flags_left = flags; { int flags_left = flags; (void)flags_left; } return flags & bit; }
END

# ---- the compilers of an SDK are taken, and configuring again keeps the folder ----
printf '#!/bin/sh\nexec %s "$@"\n' "${cc[*]}" >"$work/tools/sdk-cc"
printf '#!/bin/sh\nexec %s "$@"\n' "${cxx[*]}" >"$work/tools/sdk-c++"
chmod +x "$work"/tools/sdk-*
with_sdk() {
    CC=$work/tools/sdk-cc CXX=$work/tools/sdk-c++ cmake -S "$source_dir" --preset device -B "$device" -DZR_NEXA_PLATFORM_SYSROOT="$sysroot" \
        -DZR_NEXA_WARNINGS_AS_ERRORS=ON
}
rm -rf "$device"
quietly configure with_sdk
quietly device_build cmake --build "$device"
grep -q "^CMAKE_CXX_COMPILER:[A-Z]*=.*/sdk-c++\$" "$device/CMakeCache.txt" || fail "CXX was not taken"
quietly configure_again with_sdk
cmake --build "$device" -- -n | grep -q 'no work to do' || fail "configuring again made the folder's work undone"

# ---- the same link line as on this machine, and no host platform ----
[ -z "$(find "$device" -name 'libqcmap_client*' -o -name 'libdiag*')" ] || fail "the device build holds a host platform"
for file in bin/zr_nexa lib/libzr_nexa_client_api.so; do
    [ -n "$(needed "$device/$file")" ] || fail "$device/$file needs nothing"
    diff -u --label "host $file" --label "device $file" <(needed "$build/$file") <(needed "$device/$file") >&2 ||
        fail "$file of the device build needs other libraries"
done
fresh_state
LD_LIBRARY_PATH=$sysroot/lib emulated "$device/bin/zr_nexa" General SFE get | grep -q '^CMD OK' ||
    fail "the device build's command does not run"

# ---- a sysroot as SDKs lay it out ----
mkdir -p "$work/sdk/usr"
cp -a "$sysroot/include" "$work/sdk/usr/include"
cp -a "$sysroot/lib" "$work/sdk/usr/lib64"
quietly sdk_layout configure -S "$source_dir" --preset device -B "$work/sdk_layout" -DZR_NEXA_PLATFORM_SYSROOT="$work/sdk"
grep -q "$work/sdk/usr/lib64" "$work/sdk_layout/build.ninja" || fail "the libraries of usr/lib64 are not linked"
finish
