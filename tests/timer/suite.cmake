# The tests construct the host's user-interface loop themselves, so they share
# the base library with TesselSDK-Depends.
target_link_libraries(test_timer PRIVATE tessel_base)

# The Win32 pump runs only on Windows (under Wine in scripts/test-windows).
if(WIN32)
  add_executable(test_timer_win32 ${CMAKE_CURRENT_SOURCE_DIR}/timer/win32/win32_message_pump_test.cc)
  target_link_libraries(test_timer_win32 PRIVATE tessel::depends tessel_base GTest::gtest
                        GTest::gtest_main Threads::Threads)
  tessel_target_options(test_timer_win32)
  gtest_discover_tests(test_timer_win32
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    PROPERTIES LABELS timer TIMEOUT 300
    DISCOVERY_TIMEOUT 60)
endif()
