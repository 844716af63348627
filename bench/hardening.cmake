# Not a benchmark: one huge input per run, for scripts/check-memory, which
# measures peak memory with /usr/bin/time -v.
add_executable(huge_inputs ${CMAKE_CURRENT_SOURCE_DIR}/huge_inputs.cc)
target_link_libraries(huge_inputs PRIVATE tessel::depends)
