# tarn7_warnings: what every one of our own sources is compiled with. It never reaches those who use the library.
add_library(tarn7_warnings INTERFACE)
target_compile_options(tarn7_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

if(TARN7_SANITIZE)
  add_compile_options(-fsanitize=${TARN7_SANITIZE} -fno-omit-frame-pointer -g1)  # what their reports need
  add_link_options(-fsanitize=${TARN7_SANITIZE})
  if(TARN7_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=all)
  endif()
  if(TARN7_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC warns about std::atomic_thread_fence in Boost.Asio's headers, which ThreadSanitizer does not model.
    add_compile_options(-Wno-tsan)
  endif()
endif()

if(TARN7_BUILD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)  # what is reached is counted; the fuzzers alone bring libFuzzer's main
endif()
