# The flags that every target of this project is compiled with.
#
# zort_build_flags: what the results depend on. They are defined to the bit, so no contraction of floating-point
# operations and no extended precision. zort_warnings: for our own code.

add_library(zort_build_flags INTERFACE)
target_compile_options(zort_build_flags INTERFACE -ffp-contract=off)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "i[3-6]86|x86$")
  target_compile_options(zort_build_flags INTERFACE -msse2 -mfpmath=sse)
endif()

add_library(zort_warnings INTERFACE)
target_compile_options(zort_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                                               -Wcast-align -Wformat=2)
if(ZORT_WARNINGS_AS_ERRORS)
  target_compile_options(zort_warnings INTERFACE -Werror)
endif()

if(ZORT_SANITIZE)
  add_compile_options(-fsanitize=${ZORT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${ZORT_SANITIZE})
endif()
if(ZORT_BUILD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
