# Where things are installed, and with it where they are built: the build folder has the form of the installation, so that
# a run path relative to the file that bears it serves both.
include(GNUInstallDirs)

# folder_below_prefix(RESULT FOLDER): an install folder relative to the prefix.
function(folder_below_prefix result folder)
  if(IS_ABSOLUTE ${folder})
    file(RELATIVE_PATH folder ${CMAKE_INSTALL_PREFIX} ${folder})
  endif()
  if(folder MATCHES "^\\.\\.")
    message(FATAL_ERROR "${folder} is not below the prefix ${CMAKE_INSTALL_PREFIX}: what is installed finds its own files "
      "relative to each other")
  endif()
  set(${result} ${folder} PARENT_SCOPE)
endfunction()

folder_below_prefix(ZR_NEXA_BIN_FOLDER ${CMAKE_INSTALL_BINDIR})
folder_below_prefix(ZR_NEXA_LIB_FOLDER ${CMAKE_INSTALL_LIBDIR})
folder_below_prefix(ZR_NEXA_INCLUDE_FOLDER ${CMAKE_INSTALL_INCLUDEDIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${ZR_NEXA_BIN_FOLDER})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${ZR_NEXA_LIB_FOLDER})
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${ZR_NEXA_LIB_FOLDER})

# CMake's own run paths for a build folder are absolute, and end in an empty entry, which the loader takes for the current
# folder: so the installed form is linked at once. With CMAKE_SKIP_INSTALL_RPATH there is none, here and there.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
file(RELATIVE_PATH ZR_NEXA_LIB_FROM_BIN /${ZR_NEXA_BIN_FOLDER} /${ZR_NEXA_LIB_FOLDER})
set(ZR_NEXA_PROGRAM_RPATH "$ORIGIN/${ZR_NEXA_LIB_FROM_BIN}")
set(ZR_NEXA_LIBRARY_RPATH "$ORIGIN")
set(CMAKE_INSTALL_RPATH ${ZR_NEXA_PROGRAM_RPATH})
