# Text core and dates: validators against std::regex compiled per call,
# URL coding and splitting throughput, DateTime calendar calls.
tessel_add_benchmark(bench_text ${CMAKE_CURRENT_LIST_DIR}/text_bench.cc)
