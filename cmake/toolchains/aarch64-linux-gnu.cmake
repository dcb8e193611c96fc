# 64-bit ARM, with Debian's cross compiler. Libraries come from CMAKE_SYSROOT: a module's own, or else what
# scripts/sysroot has made. What the build runs, it runs through qemu there.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

cmake_path(SET packages NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/aarch64")
if(NOT CMAKE_SYSROOT AND EXISTS "${packages}")
  set(CMAKE_SYSROOT "${packages}")
endif()
if(CMAKE_SYSROOT)
  set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L "${CMAKE_SYSROOT}")
endif()

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
