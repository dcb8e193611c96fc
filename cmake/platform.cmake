# zr_nexa_platform: the platform's headers and its four libraries, from a sysroot or from the host platform of this tree.
# The link line is the same either way.
add_library(zr_nexa_platform INTERFACE)
if(ZR_NEXA_PLATFORM_SYSROOT)
  target_include_directories(zr_nexa_platform SYSTEM INTERFACE ${ZR_NEXA_PLATFORM_SYSROOT}/include)
  target_link_directories(zr_nexa_platform INTERFACE ${ZR_NEXA_PLATFORM_SYSROOT}/lib)
  target_link_options(zr_nexa_platform INTERFACE -Wl,-rpath-link,${ZR_NEXA_PLATFORM_SYSROOT}/lib)
  target_link_libraries(zr_nexa_platform INTERFACE -lqcmap_client -ldiag -lqmi_cci -ldsutils)
else()
  target_include_directories(zr_nexa_platform INTERFACE ${PROJECT_SOURCE_DIR}/platform/include)
  target_link_libraries(zr_nexa_platform INTERFACE qcmap_client diag qmi_cci dsutils)
  add_subdirectory(platform/host)
endif()
