# Build-wide options: sanitizers, fuzzing instrumentation and the hardening
# flags that every build of the filter gets.
#
#   -DQUILLAROTH_SANITIZE=address,undefined   ASan + UBSan, stop at the first
#                                              error (scripts/check-sanitizers.sh)
#   -DQUILLAROTH_FUZZ=ON                       clang only: instrument everything
#                                              for libFuzzer and build fuzz/
#   -DQUILLAROTH_HARDEN=OFF                    drop the hardening flags
#
# Hardening (on by default, all build types): position-independent
# executables, full RELRO (-z relro -z now), -fstack-protector-strong and,
# where the optimiser runs, -D_FORTIFY_SOURCE=2.  tests/filter/hardening_test
# reads the built filter's ELF and fails if any of them is missing.

set(QUILLAROTH_SANITIZE "" CACHE STRING
    "Comma-separated -fsanitize= list, e.g. address,undefined (empty: none)")
option(QUILLAROTH_FUZZ "Build the libFuzzer targets in fuzz/ (clang only)" OFF)
option(QUILLAROTH_HARDEN "Build with PIE, full RELRO, stack protector and fortify" ON)

if(QUILLAROTH_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "QUILLAROTH_FUZZ needs clang: configure with -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang")
  endif()
  # The library and the filter carry the coverage hooks; only the fuzz
  # targets link libFuzzer's main().
  if(NOT QUILLAROTH_SANITIZE)
    set(QUILLAROTH_SANITIZE "address,undefined")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(QUILLAROTH_SANITIZE)
  # Every finding stops the run, so that a test or a fuzzer cannot miss it.
  add_compile_options(-fsanitize=${QUILLAROTH_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUILLAROTH_SANITIZE})
endif()

if(QUILLAROTH_HARDEN)
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  add_compile_options(-fstack-protector-strong)
  add_link_options(-Wl,-z,relro,-z,now)
  # _FORTIFY_SOURCE needs the optimiser (gcc warns, and so fails with
  # -Werror, at -O0) and hides string and memory calls from ASan's
  # interceptors, so sanitizer builds and Debug builds go without it.
  if(NOT QUILLAROTH_SANITIZE)
    add_compile_options(
      "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  endif()
endif()
