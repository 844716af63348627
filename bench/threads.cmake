# Worker threads: DispatchAsync throughput against Boost.Asio's
# io_context::post (header-only, optional), and the DispatchSync round trip
# against a bare mutex/condition-variable ping-pong.
find_package(Boost QUIET)
tessel_add_benchmark(bench_threads ${CMAKE_CURRENT_LIST_DIR}/threads_bench.cc
                     LIBS Threads::Threads)
if(TARGET Boost::headers)
  target_link_libraries(bench_threads PRIVATE Boost::headers)
  target_compile_definitions(bench_threads PRIVATE TESSEL_BENCH_HAVE_ASIO)
elseif(TARGET Boost::boost)
  target_link_libraries(bench_threads PRIVATE Boost::boost)
  target_compile_definitions(bench_threads PRIVATE TESSEL_BENCH_HAVE_ASIO)
endif()
