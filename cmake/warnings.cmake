# How every target of the project is compiled.
add_library(tessolv_options INTERFACE)

# Results repeat to the bit: no contraction of a * b + c, whatever the processor offers. The other two change no value
# and let loops vectorise.
target_compile_options(tessolv_options INTERFACE -ffp-contract=off -fno-math-errno -fno-trapping-math)

# Counted instructions must not depend on the processor.
if(TESSOLV_BASELINE_ONLY)
  target_compile_definitions(tessolv_options INTERFACE TESSOLV_BASELINE_ONLY)
endif()

target_compile_options(tessolv_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion)
if(TESSOLV_WARNINGS_AS_ERRORS)
  target_compile_options(tessolv_options INTERFACE -Werror)
endif()

if(TESSOLV_SANITIZE)
  target_compile_options(tessolv_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tessolv_options INTERFACE -fsanitize=address,undefined)
endif()

if(TESSOLV_BUILD_FUZZERS)
  target_compile_options(tessolv_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(TESSOLV_COVERAGE)
  target_compile_options(tessolv_options INTERFACE --coverage)
  target_link_options(tessolv_options INTERFACE --coverage)
endif()
