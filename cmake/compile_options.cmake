# What every target of this project is compiled and linked with.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()

add_library(zr_nexa_options INTERFACE)
target_compile_options(zr_nexa_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wcast-align -Wcast-qual -Wformat=2 -Wundef -Wconversion -Wsign-conversion
  -Wvla
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>
  $<$<BOOL:${ZR_NEXA_WARNINGS_AS_ERRORS}>:-Werror>)
if(ZR_NEXA_SANITIZE)
  target_compile_options(zr_nexa_options INTERFACE -fsanitize=${ZR_NEXA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zr_nexa_options INTERFACE -fsanitize=${ZR_NEXA_SANITIZE})
else()
  target_link_options(zr_nexa_options INTERFACE -Wl,-z,defs)
endif()

# Hardening that every compiler for the CPU has: stack protector, and landing pads for indirect jumps (x86 CET, ARM BTI).
set(CMAKE_REQUIRED_FLAGS -Werror)  # clang takes a flag of another CPU with a warning
foreach(flag -fstack-protector-strong -fcf-protection -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER "ZR_NEXA_COMPILER_HAS${flag}" known)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    target_compile_options(zr_nexa_options INTERFACE ${flag})
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)
# The C library's checked functions want an optimised build; whoever brings a level of their own keeps it.
string(TOUPPER "CMAKE_CXX_FLAGS_${CMAKE_BUILD_TYPE}" flags_of_type)
set(flags "${CMAKE_CXX_FLAGS} ${${flags_of_type}}")
if(flags MATCHES "-O[1-3s]" AND NOT flags MATCHES "_FORTIFY_SOURCE" AND NOT ZR_NEXA_SANITIZE)
  target_compile_options(zr_nexa_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
target_link_options(zr_nexa_options INTERFACE -Wl,-z,relro -Wl,-z,noexecstack)

# No file says where it was built: two builds in different folders are the same. Coverage data needs the true places.
if(NOT flags MATCHES "--coverage")
  target_compile_options(zr_nexa_options INTERFACE
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)
endif()

# All symbols bound at the start: for everything but the command and its library, which would pay for each method of the
# platform at each run.
add_library(zr_nexa_bind_now INTERFACE)
target_link_options(zr_nexa_bind_now INTERFACE -Wl,-z,now)

# The command and the client interface: no exceptions, no type information, nothing constructed at their start.
add_library(zr_nexa_product_options INTERFACE)
target_link_libraries(zr_nexa_product_options INTERFACE zr_nexa_options $<$<BOOL:${ZR_NEXA_BIND_NOW}>:zr_nexa_bind_now>)
target_compile_options(zr_nexa_product_options INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>
  -fvisibility=hidden -Wmissing-declarations)

# For the command's link line: the C++ runtime as a dependency of its own, before the library that brings it anyway. The
# loader looks a symbol up in this order, and nearly all that the platform's client library asks for is in the runtime;
# bench/run shows what it saves. The command itself asks for nothing there, so the linker has to be told to keep it.
set(ZR_NEXA_CXX_RUNTIME_FIRST "")
foreach(library ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
  if(library MATCHES "c\\+\\+$" AND NOT ZR_NEXA_SANITIZE)  # a sanitizer's own runtime must stand first
    set(ZR_NEXA_CXX_RUNTIME_FIRST -Wl,--push-state,--no-as-needed -l${library} -Wl,--pop-state)
    break()
  endif()
endforeach()
