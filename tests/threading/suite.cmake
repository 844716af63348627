# The tests construct the host's user-interface loop themselves, so they share
# the base library with TesselSDK-Depends.
target_link_libraries(test_threading PRIVATE tessel_base)
