# Packaging of TesselSDK-Depends: the Windows DLL's name and entry routine, and
# what `cmake --install` puts under the prefix (library, public headers, CMake
# package, pkg-config file). Included at the end of the top CMakeLists.txt,
# once every target exists. Headers are picked by folder at install time, so
# new families need no change here.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(tessel_header_root tessel_depends)
set(tessel_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TesselSDKDepends)
set(tessel_pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Windows: the DLL carries the product's own name (no "lib" prefix), as does
# its import library; the entry routine is the one Windows-only source.
if(WIN32)
  set_target_properties(TesselSDK-Depends PROPERTIES PREFIX "" IMPORT_PREFIX "")
  target_sources(TesselSDK-Depends PRIVATE ${PROJECT_SOURCE_DIR}/win32/dll_main.cc)
endif()

# The installed library finds the base-library stand-in next to itself.
if(NOT WIN32 AND NOT APPLE)
  set_target_properties(TesselSDK-Depends PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()

set_target_properties(TesselSDK-Depends PROPERTIES EXPORT_NAME depends)
set(tessel_installed_targets TesselSDK-Depends)
# The host's base-library stand-in is a shared library the library links; it
# ships beside it, without headers (they are not part of the interface).
if(TARGET tessel_base)
  get_target_property(tessel_base_type tessel_base TYPE)
  if(tessel_base_type STREQUAL "SHARED_LIBRARY")
    set_target_properties(tessel_base PROPERTIES EXPORT_NAME base)
    if(NOT WIN32 AND NOT APPLE)
      set_target_properties(tessel_base PROPERTIES INSTALL_RPATH "$ORIGIN")
    endif()
    list(APPEND tessel_installed_targets tessel_base)
  endif()
endif()

install(TARGETS ${tessel_installed_targets}
  EXPORT TesselSDKDependsTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${tessel_header_root})

# Public headers keep their tree below include/tessel_depends/, so that
# "json11/..." and "common/..." resolve with that one include directory.
# platform/ is internal and never installed.
foreach(dir gen common json11 i18n)
  if(IS_DIRECTORY ${PROJECT_SOURCE_DIR}/${dir})
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/${dir}
      DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${tessel_header_root}
      FILES_MATCHING PATTERN "*.h")
  endif()
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/tessel_depends.h
              ${PROJECT_BINARY_DIR}/generated/tessel_depends_version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${tessel_header_root})

install(EXPORT TesselSDKDependsTargets
  NAMESPACE tessel::
  DESTINATION ${tessel_cmake_dir})
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/TesselSDKDependsConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/TesselSDKDependsConfig.cmake
  INSTALL_DESTINATION ${tessel_cmake_dir})
# 0.x releases may change the interface between minor versions, so a request
# for 0.1 accepts 0.1.x only (the SONAME carries major.minor likewise).
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/package/TesselSDKDependsConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/TesselSDKDependsConfig.cmake
              ${PROJECT_BINARY_DIR}/package/TesselSDKDependsConfigVersion.cmake
  DESTINATION ${tessel_cmake_dir})

# pkg-config: paths relative to the .pc file's own folder, so the package
# stays correct whatever prefix `cmake --install --prefix` chooses.
function(tessel_pc_path var dir)
  if(IS_ABSOLUTE ${dir})
    set(${var} ${dir} PARENT_SCOPE)
  else()
    set(${var} "\${prefix}/${dir}" PARENT_SCOPE)
  endif()
endfunction()
file(RELATIVE_PATH tessel_pc_up /${tessel_pc_dir} /)
string(REGEX REPLACE "/$" "" tessel_pc_up "${tessel_pc_up}")
set(TESSEL_PC_PREFIX "\${pcfiledir}/${tessel_pc_up}")
tessel_pc_path(TESSEL_PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
tessel_pc_path(TESSEL_PC_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
configure_file(${PROJECT_SOURCE_DIR}/tessel-depends.pc.in
               ${PROJECT_BINARY_DIR}/package/tessel-depends.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/tessel-depends.pc DESTINATION ${tessel_pc_dir})
