# One set of warnings for everything that we compile ourselves.
add_library(zppsc_warnings INTERFACE)
target_compile_options(zppsc_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wundef -Wvla -Wformat=2
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>
  $<$<BOOL:${ZPPSC_WERROR}>:-Werror>)
