# Timers: MessageLoopTimer's lateness and throughput against Boost.Asio's
# steady_timer (header-only, optional).
tessel_add_benchmark(bench_timer ${CMAKE_CURRENT_LIST_DIR}/timer_bench.cc LIBS Threads::Threads)
tessel_link_asio(bench_timer)
