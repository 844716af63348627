# JSON: json11::Json against nlohmann/json and RapidJSON on the standard
# corpora in bench/data/. Each peer is optional; its cases are left out when
# its headers are missing.
set(json_bench_libs)
set(json_bench_defs)
find_package(nlohmann_json 3 QUIET)
if(nlohmann_json_FOUND)
  list(APPEND json_bench_libs nlohmann_json::nlohmann_json)
  list(APPEND json_bench_defs TESSEL_BENCH_HAVE_NLOHMANN=1)
endif()
find_path(RAPIDJSON_INCLUDE_DIR rapidjson/document.h)
if(RAPIDJSON_INCLUDE_DIR)
  list(APPEND json_bench_defs TESSEL_BENCH_HAVE_RAPIDJSON=1)
endif()
tessel_add_benchmark(bench_json json_bench.cc LIBS ${json_bench_libs})
target_compile_definitions(bench_json PRIVATE ${json_bench_defs})
if(RAPIDJSON_INCLUDE_DIR)
  target_include_directories(bench_json SYSTEM PRIVATE ${RAPIDJSON_INCLUDE_DIR})
endif()
