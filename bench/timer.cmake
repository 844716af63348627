# Timers: MessageLoopTimer's lateness and throughput against Boost.Asio's
# steady_timer (header-only, optional).
find_package(Boost QUIET)
tessel_add_benchmark(bench_timer ${CMAKE_CURRENT_LIST_DIR}/timer_bench.cc LIBS Threads::Threads)
if(TARGET Boost::headers)
  target_link_libraries(bench_timer PRIVATE Boost::headers)
  target_compile_definitions(bench_timer PRIVATE TESSEL_BENCH_HAVE_ASIO)
elseif(TARGET Boost::boost)
  target_link_libraries(bench_timer PRIVATE Boost::boost)
  target_compile_definitions(bench_timer PRIVATE TESSEL_BENCH_HAVE_ASIO)
endif()
