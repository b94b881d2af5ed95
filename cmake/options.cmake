# Build options and the compile flags that every target of this project shares.
option(QUENTA_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer (native only)" OFF)
option(QUENTA_TESTS "Build the tests" ON)
option(QUENTA_BENCH "Build the benchmarks" OFF)
option(QUENTA_WARNINGS_ARE_ERRORS "Fail on a compiler's warning" ON)

add_library(quenta_flags INTERFACE)
target_compile_options(quenta_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Werror
  -Wno-restrict)  # GCC 12 warns of overlapping copies inside std::string that cannot happen (its bug 105651)
if(NOT QUENTA_WARNINGS_ARE_ERRORS)
  target_compile_options(quenta_flags INTERFACE -Wno-error)
endif()
target_include_directories(quenta_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)

if(WIN32)
  target_compile_definitions(quenta_flags INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT WINVER=0x0A00 _WIN32_WINNT=0x0A00)
  # Everything is linked statically: the suite's machines have no compiler runtime of ours.
  target_link_options(quenta_flags INTERFACE -static -static-libgcc -static-libstdc++)
endif()
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Amounts are the same to the last digit whatever the width: left to itself, a 32-bit compiler computes on the x87 unit,
  # whose intermediate results are wider than float and double (56.75 at 6 % would be 60.15500 there, and is 60.15499 in 64
  # bits) and follow whatever precision the host has set that unit to. Every processor that runs Windows 10 has
  # SSE2.
  target_compile_options(quenta_flags INTERFACE -msse2 -mfpmath=sse)
  # A 32-bit host may call with the stack aligned to 4 bytes only, and SSE code of ours needs 16.
  target_compile_options(quenta_flags INTERFACE -mstackrealign)
endif()

if(QUENTA_SANITIZE)
  # The sanitizers' own code makes GCC take variants and optionals for uninitialised; the other builds keep the warning.
  target_compile_options(quenta_flags INTERFACE -Wno-maybe-uninitialized
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quenta_flags INTERFACE -fsanitize=address,undefined)
endif()
