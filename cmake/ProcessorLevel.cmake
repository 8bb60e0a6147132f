# The processor level of the build and the compiler flags of each level.
#
#   px portable   a6 SSE   w7 SSE2   t7 SSE3   v3 AVX2 (x86-64-v3)
#
# A build has one level. A kernel file named *_a6.cpp, *_w7.cpp or *_t7.cpp is compiled with exactly the flags of its own
# level and takes part in builds of that level and above; every other file is compiled with the flags of the build's level.
# In a v3 build all files have its flags: the encodings of AVX, in which the SSE kernels are faster, do not mix well with others.

set(ZPPSC_LEVELS px a6 w7 t7 v3)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
  set(_default t7)
else()
  set(_default px)
endif()
set(ZPPSC_LEVEL ${_default} CACHE STRING "Processor level: px, a6, w7, t7 or v3")
set_property(CACHE ZPPSC_LEVEL PROPERTY STRINGS ${ZPPSC_LEVELS})
list(FIND ZPPSC_LEVELS "${ZPPSC_LEVEL}" ZPPSC_LEVEL_INDEX)
if(ZPPSC_LEVEL_INDEX EQUAL -1)
  message(FATAL_ERROR "ZPPSC_LEVEL is '${ZPPSC_LEVEL}'; it must be one of: ${ZPPSC_LEVELS}")
endif()

# No -mfma: results of single precision are those of the other levels.
set(_v3 -mavx2 -mbmi -mbmi2 -mlzcnt -mmovbe -mpopcnt -mno-fma -mno-avx512f)
if(EMSCRIPTEN)
  # The tool chain's own headers map the intrinsics of SSE2 to WebAssembly's vectors.
  set(ZPPSC_FLAGS_px "")
  set(ZPPSC_FLAGS_a6 -msse -msimd128)
  set(ZPPSC_FLAGS_w7 -msse2 -msimd128)
elseif(_default STREQUAL px)
  set(ZPPSC_FLAGS_px "")
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Callers built for the old i386 ABI enter with the stack aligned to 4 bytes: realign it wherever SSE needs more.
  set(ZPPSC_FLAGS_px -march=i686 -mtune=generic -mstackrealign $<$<CXX_COMPILER_ID:Clang>:-mstack-alignment=4>)
  set(ZPPSC_FLAGS_a6 ${ZPPSC_FLAGS_px} -msse -mfpmath=sse -mno-sse2)
  set(ZPPSC_FLAGS_w7 ${ZPPSC_FLAGS_px} -msse2 -mfpmath=sse -mno-sse3)
  set(ZPPSC_FLAGS_t7 ${ZPPSC_FLAGS_px} -msse3 -mfpmath=sse -mno-ssse3)
  set(ZPPSC_FLAGS_v3 ${ZPPSC_FLAGS_px} ${_v3} -mfpmath=sse)
else()
  # SSE2 is part of the x86-64 ABI, so the lower levels differ in the kernels they link, not in flags.
  set(ZPPSC_FLAGS_px -march=x86-64 -mtune=generic -mno-sse3)
  set(ZPPSC_FLAGS_a6 ${ZPPSC_FLAGS_px})
  set(ZPPSC_FLAGS_w7 ${ZPPSC_FLAGS_px})
  set(ZPPSC_FLAGS_t7 -march=x86-64 -mtune=generic -msse3 -mno-ssse3)
  set(ZPPSC_FLAGS_v3 -march=x86-64 -mtune=generic ${_v3})
endif()

# Whether this machine can run what is compiled for the level
set(ZPPSC_RUNS_HERE TRUE)
if(ZPPSC_LEVEL STREQUAL v3)
  include(CheckCXXSourceRuns)
  check_cxx_source_runs("int main() { return __builtin_cpu_supports(\"avx2\") && __builtin_cpu_supports(\"bmi2\") ? 0 : 1; }"
    ZPPSC_HAS_AVX2)
  set(ZPPSC_RUNS_HERE ${ZPPSC_HAS_AVX2})
endif()
