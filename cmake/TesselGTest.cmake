# GoogleTest for the test suites: the system's package in native builds. A
# cross build cannot link the host's copy, so it compiles GoogleTest from the
# Debian source package (googletest) with the target's compiler, under the
# same target names the package gives.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
  return()
endif()
set(TESSEL_GTEST_SOURCE_DIR /usr/src/googletest CACHE PATH
    "GoogleTest sources compiled in cross builds")
if(NOT EXISTS ${TESSEL_GTEST_SOURCE_DIR}/CMakeLists.txt)
  message(FATAL_ERROR "GoogleTest sources not found in ${TESSEL_GTEST_SOURCE_DIR} "
                      "(Debian package googletest)")
endif()
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${TESSEL_GTEST_SOURCE_DIR} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(lib gtest gtest_main gmock gmock_main)
  if(NOT TARGET GTest::${lib})
    add_library(GTest::${lib} ALIAS ${lib})
  endif()
endforeach()
