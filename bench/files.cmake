# Whole-file writes: FileUtils::writeFile against stdio truncate-and-write,
# with and without the same flush to stable storage.
tessel_add_benchmark(bench_files ${CMAKE_CURRENT_LIST_DIR}/files_bench.cc)
