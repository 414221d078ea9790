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

# Hardening of what is built, not of those who link it: none of this is part of a target's interface. A sanitizer sees more, and not beside
# it. tests/boundary/hardening_test.py looks for the result in the files.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)  # programs are linked as what they are compiled for
if(NOT TARN7_SANITIZE AND NOT TARN7_BUILD_FUZZERS)
  include(CheckCXXCompilerFlag)
  add_compile_options(-fstack-protector-strong)
  set(CMAKE_REQUIRED_FLAGS -Werror)  # Clang warns of a flag that its processor has no use for
  check_cxx_compiler_flag(-fstack-clash-protection TARN7_HAS_STACK_CLASH_PROTECTION)
  check_cxx_compiler_flag(-mbranch-protection=standard TARN7_HAS_BRANCH_PROTECTION)  # 64-bit Arm's: hints that older processors pass over
  unset(CMAKE_REQUIRED_FLAGS)
  if(TARN7_HAS_STACK_CLASH_PROTECTION)
    add_compile_options(-fstack-clash-protection)
  endif()
  if(TARN7_HAS_BRANCH_PROTECTION)
    add_compile_options(-mbranch-protection=standard)
  endif()
  # The checks need the optimiser. The third level knows sizes that are computed, too.
  set(tarn7_fortify 3)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 12)
    set(tarn7_fortify 2)
  endif()
  add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=${tarn7_fortify}>")
  add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()
