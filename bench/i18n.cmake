# Translation catalogs against the C library's gettext (dcgettext), both on a
# catalog of 6,000 messages that the benchmark compiles with GNU msgfmt when
# it starts. Without msgfmt the program reports an error and measures nothing.
find_program(TESSEL_BENCH_MSGFMT msgfmt)
tessel_add_benchmark(bench_i18n ${CMAKE_CURRENT_SOURCE_DIR}/i18n_bench.cc)
if(TESSEL_BENCH_MSGFMT)
  target_compile_definitions(bench_i18n PRIVATE TESSEL_MSGFMT="${TESSEL_BENCH_MSGFMT}")
endif()
