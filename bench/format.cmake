# The positional formatter against the C library's snprintf on the same texts.
tessel_add_benchmark(bench_format ${CMAKE_CURRENT_SOURCE_DIR}/format_bench.cc)
