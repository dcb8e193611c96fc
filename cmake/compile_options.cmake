# What every target of this project is compiled with.
add_library(zr_nexa_options INTERFACE)
target_compile_options(zr_nexa_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wcast-align -Wcast-qual -Wformat=2 -Wundef -Wconversion -Wsign-conversion
  -Wvla
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>
  $<$<BOOL:${ZR_NEXA_WARNINGS_AS_ERRORS}>:-Werror>)
if(ZR_NEXA_SANITIZE)
  target_compile_options(zr_nexa_options INTERFACE -fsanitize=${ZR_NEXA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zr_nexa_options INTERFACE -fsanitize=${ZR_NEXA_SANITIZE})
endif()

# The command and the client interface: no exceptions, no type information, and no C++ runtime of their own. The one
# thing they need of it, operator new, comes with the platform's client library: linked as C programs are, they do not
# ask for a runtime themselves.
add_library(zr_nexa_lean_options INTERFACE)
target_link_libraries(zr_nexa_lean_options INTERFACE zr_nexa_options)
target_compile_options(zr_nexa_lean_options INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>
  -fvisibility=hidden -Wmissing-declarations)
if(ZR_NEXA_LEAN)
  set(ZR_NEXA_LINKER_LANGUAGE C)
  set(CMAKE_CXX_IMPLICIT_LINK_LIBRARIES "")  # else C++ sources linked as C are given the runtime by name
else()
  set(ZR_NEXA_LINKER_LANGUAGE CXX)
endif()
