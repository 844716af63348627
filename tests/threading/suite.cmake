# The tests construct the host's user-interface loop themselves, so they share
# the base library with TesselSDK-Depends.
target_link_libraries(test_threading PRIVATE tessel_base)
# What only Linux lets a test observe (per-thread switch counts, eventfd).
if(NOT WIN32)
  target_sources(test_threading PRIVATE ${CMAKE_CURRENT_LIST_DIR}/posix/native_loop_test.cc)
endif()
