# One interface target carries what every target of the project is compiled with.
add_library(meta_analysis_options INTERFACE)

target_compile_options(meta_analysis_options INTERFACE -Wall -Wextra -Wshadow -Wconversion)
if(META_ANALYSIS_WARNINGS_AS_ERRORS)
  target_compile_options(meta_analysis_options INTERFACE -Werror)
endif()

# A fused multiply-add rounds once where the formula rounds twice: without this, the last digit of a
# result depends on the machine that the library was compiled for.
target_compile_options(meta_analysis_options INTERFACE -ffp-contract=off)

# The library is not made to have its functions replaced from outside, so its calls of its own functions need not
# go through a table, and may be inlined.
target_compile_options(meta_analysis_options INTERFACE -fno-semantic-interposition)

if(META_ANALYSIS_SANITIZERS)
  set(sanitizer_flags -fsanitize=${META_ANALYSIS_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(meta_analysis_options INTERFACE ${sanitizer_flags})
  target_link_options(meta_analysis_options INTERFACE ${sanitizer_flags})
endif()
