# The processor level of the build and the compiler flags of each level.
#
#   x86      px portable   a6 SSE   w7 SSE2   t7 SSE3   v3 AVX2 (x86-64-v3)
#   aarch64  px portable   n8 NEON
#   wasm     px portable   w7 SIMD of 128 bits, through emscripten's SSE2
#   others   px portable
#
# A build has one level, and with it the kernels of the levels below. A kernel file named *_a6.cpp, *_w7.cpp, *_t7.cpp or *_v3.cpp
# is compiled with exactly the flags of its own level; every other file with the flags of the build's level.
# In a v3 build all files have its flags: the encodings of AVX, in which the SSE kernels are faster, do not mix well with others.
# In an n8 build the kernels are those of SSE and SSE2, which SIMDe translates to NEON.

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
  set(ZPPSC_PROCESSOR x86)
  set(_levels px a6 w7 t7 v3)
  set(_default t7)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64|ARM64)$")
  set(ZPPSC_PROCESSOR aarch64)
  set(_levels px n8)
  find_path(ZPPSC_SIMDE_INCLUDE_DIR simde/x86/sse2.h)
  set(_default px)
  if(ZPPSC_SIMDE_INCLUDE_DIR)
    set(_default n8)
  endif()
elseif(EMSCRIPTEN)
  set(ZPPSC_PROCESSOR wasm)
  set(_levels px w7)
  set(_default w7)
else()
  set(ZPPSC_PROCESSOR other)
  set(_levels px)
  set(_default px)
endif()

list(JOIN _levels ", " _names)
set(ZPPSC_LEVEL ${_default} CACHE STRING "Processor level: ${_names}")
set_property(CACHE ZPPSC_LEVEL PROPERTY STRINGS ${_levels})
if(NOT ZPPSC_LEVEL IN_LIST _levels)
  message(FATAL_ERROR "ZPPSC_LEVEL is '${ZPPSC_LEVEL}'; on ${CMAKE_SYSTEM_PROCESSOR} it must be one of: ${_names}")
endif()
if(ZPPSC_LEVEL STREQUAL n8 AND NOT ZPPSC_SIMDE_INCLUDE_DIR)
  message(FATAL_ERROR "Level n8 needs SIMDe (Debian package libsimde-dev); -DZPPSC_LEVEL=px does without")
endif()

# The levels of x86 whose kernels take part, and their number, as which the sources know the level (src/core/variants.h)
set(ZPPSC_KERNEL_LEVELS px a6 w7 t7 v3)
string(REPLACE n8 w7 _highest ${ZPPSC_LEVEL})
list(FIND ZPPSC_KERNEL_LEVELS ${_highest} ZPPSC_LEVEL_INDEX)
math(EXPR _count "${ZPPSC_LEVEL_INDEX} + 1")
list(SUBLIST ZPPSC_KERNEL_LEVELS 0 ${_count} ZPPSC_KERNEL_LEVELS)

if(ZPPSC_PROCESSOR STREQUAL aarch64)
  set(ZPPSC_FLAGS_px -march=armv8-a)  # has NEON
  set(ZPPSC_FLAGS_n8 ${ZPPSC_FLAGS_px})
  if(ZPPSC_SIMDE_INCLUDE_DIR AND NOT ZPPSC_SIMDE_INCLUDE_DIR IN_LIST CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES)
    list(APPEND ZPPSC_FLAGS_n8 -isystem ${ZPPSC_SIMDE_INCLUDE_DIR})
  endif()
  set(ZPPSC_FLAGS_a6 ${ZPPSC_FLAGS_n8})
  set(ZPPSC_FLAGS_w7 ${ZPPSC_FLAGS_n8})
elseif(ZPPSC_PROCESSOR STREQUAL wasm)
  # The tool chain's own headers map the intrinsics of SSE2 to WebAssembly's vectors.
  set(ZPPSC_FLAGS_px "")
  set(ZPPSC_FLAGS_a6 -msse -msimd128)
  set(ZPPSC_FLAGS_w7 -msse2 -msimd128)
elseif(ZPPSC_PROCESSOR STREQUAL other)
  set(ZPPSC_FLAGS_px "")
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Callers built for the old i386 ABI enter with the stack aligned to 4 bytes: realign it wherever SSE needs more.
  set(ZPPSC_FLAGS_px -march=i686 -mtune=generic -mstackrealign $<$<CXX_COMPILER_ID:Clang>:-mstack-alignment=4>)
  set(ZPPSC_FLAGS_a6 ${ZPPSC_FLAGS_px} -msse -mfpmath=sse -mno-sse2)
  set(ZPPSC_FLAGS_w7 ${ZPPSC_FLAGS_px} -msse2 -mfpmath=sse -mno-sse3)
  set(ZPPSC_FLAGS_t7 ${ZPPSC_FLAGS_px} -msse3 -mfpmath=sse -mno-ssse3)
  set(_base ${ZPPSC_FLAGS_px} -mfpmath=sse)
else()
  # SSE2 is part of the x86-64 ABI, so the lower levels differ in the kernels they link, not in flags.
  set(_base -march=x86-64 -mtune=generic)
  set(ZPPSC_FLAGS_px ${_base} -mno-sse3)
  set(ZPPSC_FLAGS_a6 ${ZPPSC_FLAGS_px})
  set(ZPPSC_FLAGS_w7 ${ZPPSC_FLAGS_px})
  set(ZPPSC_FLAGS_t7 ${_base} -msse3 -mno-ssse3)
  # Without kernels of its own the portable level lives on the vectors that the compiler finds: 6 to 14 % faster, 12 % more code.
  list(APPEND ZPPSC_FLAGS_px $<$<CXX_COMPILER_ID:GNU>:-fvect-cost-model=dynamic>)
endif()

# Whether this machine can run what is compiled for the level
set(ZPPSC_RUNS_HERE TRUE)
if(ZPPSC_LEVEL STREQUAL v3)
  # No -mfma: results of single precision are those of the other levels.
  set(ZPPSC_FLAGS_v3 ${_base} -mavx2 -mbmi -mbmi2 -mlzcnt -mmovbe -mpopcnt -mno-fma -mno-avx512f)
  foreach(_level a6 w7 t7)
    set(ZPPSC_FLAGS_${_level} ${ZPPSC_FLAGS_v3})
  endforeach()
  include(CheckCXXSourceRuns)
  check_cxx_source_runs("int main() { return __builtin_cpu_supports(\"avx2\") && __builtin_cpu_supports(\"bmi2\") ? 0 : 1; }"
    ZPPSC_HAS_AVX2)
  set(ZPPSC_RUNS_HERE ${ZPPSC_HAS_AVX2})
endif()
