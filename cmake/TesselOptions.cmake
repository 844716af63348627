# Warning and sanitizer flags shared by every target of ours.
function(tessel_target_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(TESSEL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

if(TESSEL_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS)
  add_link_options(-fsanitize=address,undefined -fno-sanitize-recover=all)
elseif(TESSEL_SANITIZE STREQUAL "fuzzer")
  # Coverage for libFuzzer plus ASan+UBSan; fuzz targets add -fsanitize=fuzzer.
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined
                      -fno-sanitize-recover=all -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS)
  add_link_options(-fsanitize=address,undefined -fno-sanitize-recover=all)
elseif(TESSEL_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT TESSEL_SANITIZE STREQUAL "")
  message(FATAL_ERROR "TESSEL_SANITIZE must be empty, 'address', 'thread' or 'fuzzer'")
endif()
