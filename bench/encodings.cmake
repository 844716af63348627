# Encodings: MD5 and Base64 against OpenSSL (libcrypto), the UTF-8/UTF-16
# conversions against glibc iconv, s2ws/ws2s against std::wstring_convert.
find_package(OpenSSL COMPONENTS Crypto)
set(encodings_peer_libs)
if(OpenSSL_FOUND)
  list(APPEND encodings_peer_libs OpenSSL::Crypto)
endif()
tessel_add_benchmark(bench_encodings ${CMAKE_CURRENT_LIST_DIR}/encodings_bench.cc
                     LIBS ${encodings_peer_libs})
if(OpenSSL_FOUND)
  target_compile_definitions(bench_encodings PRIVATE TESSEL_BENCH_HAVE_OPENSSL=1)
endif()
