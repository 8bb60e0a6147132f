# The processor level of the build and the compiler flags of each level.
#
#   x86      px portable   a6 SSE   w7 SSE2   t7 SSE3
#   aarch64  px portable   n8 NEON
#   others   px portable
#
# A build has one level. A kernel file named *_a6.cpp, *_w7.cpp, *_t7.cpp or *_n8.cpp is compiled with exactly the flags of its
# own level and takes part in the builds that have the kernels of that level; every other file is compiled with the flags of the
# build's level. A level of x86 has the kernels of those below it. Level n8 has those of SSE and SSE2 as well, which SIMDe
# translates to NEON.

set(ZPPSC_KERNEL_FILES "a6|w7|t7|n8")

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
  set(ZPPSC_PROCESSOR x86)
  set(_levels px a6 w7 t7)
  set(_default t7)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64|ARM64)$")
  set(ZPPSC_PROCESSOR aarch64)
  set(_levels px n8)
  find_path(ZPPSC_SIMDE_INCLUDE_DIR simde/x86/sse2.h)
  if(ZPPSC_SIMDE_INCLUDE_DIR)
    set(_default n8)
  else()
    set(_default px)
    if(NOT DEFINED ZPPSC_LEVEL)
      message(STATUS "No SIMDe (Debian package libsimde-dev): building the portable level px instead of n8 (NEON)")
    endif()
  endif()
else()
  set(ZPPSC_PROCESSOR other)
  set(_levels px)
  set(_default px)
endif()

list(JOIN _levels ", " _names)
set(ZPPSC_LEVEL ${_default} CACHE STRING "Processor level: ${_names}")
set_property(CACHE ZPPSC_LEVEL PROPERTY STRINGS ${_levels})
list(FIND _levels "${ZPPSC_LEVEL}" _index)
if(_index EQUAL -1)
  message(FATAL_ERROR "ZPPSC_LEVEL is '${ZPPSC_LEVEL}'; on ${CMAKE_SYSTEM_PROCESSOR} it must be one of: ${_names}")
endif()
if(ZPPSC_LEVEL STREQUAL n8)
  if(NOT ZPPSC_SIMDE_INCLUDE_DIR)
    message(FATAL_ERROR "Level n8 needs SIMDe (Debian package libsimde-dev); -DZPPSC_LEVEL=px does without")
  endif()
  set(ZPPSC_KERNELS a6 w7 n8)
else()
  math(EXPR _count "${_index} + 1")
  list(SUBLIST _levels 0 ${_count} ZPPSC_KERNELS)
endif()

if(ZPPSC_PROCESSOR STREQUAL aarch64)
  # NEON is part of the ABI.
  set(ZPPSC_FLAGS_px -march=armv8-a)
  set(ZPPSC_FLAGS_n8 ${ZPPSC_FLAGS_px})
  if(ZPPSC_SIMDE_INCLUDE_DIR AND NOT ZPPSC_SIMDE_INCLUDE_DIR IN_LIST CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES)
    list(APPEND ZPPSC_FLAGS_n8 -isystem ${ZPPSC_SIMDE_INCLUDE_DIR})
  endif()
  set(ZPPSC_FLAGS_a6 ${ZPPSC_FLAGS_n8})
  set(ZPPSC_FLAGS_w7 ${ZPPSC_FLAGS_n8})
elseif(ZPPSC_PROCESSOR STREQUAL other)
  set(ZPPSC_FLAGS_px "")
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Callers built for the old i386 ABI enter with the stack aligned to 4 bytes: realign it wherever SSE needs more.
  set(ZPPSC_FLAGS_px -march=i686 -mtune=generic -mstackrealign $<$<CXX_COMPILER_ID:Clang>:-mstack-alignment=4>)
  set(ZPPSC_FLAGS_a6 ${ZPPSC_FLAGS_px} -msse -mfpmath=sse -mno-sse2)
  set(ZPPSC_FLAGS_w7 ${ZPPSC_FLAGS_px} -msse2 -mfpmath=sse -mno-sse3)
  set(ZPPSC_FLAGS_t7 ${ZPPSC_FLAGS_px} -msse3 -mfpmath=sse -mno-ssse3)
else()
  # SSE2 is part of the x86-64 ABI, so the lower levels differ in the kernels they link, not in flags.
  set(ZPPSC_FLAGS_px -march=x86-64 -mtune=generic -mno-sse3)
  set(ZPPSC_FLAGS_a6 ${ZPPSC_FLAGS_px})
  set(ZPPSC_FLAGS_w7 ${ZPPSC_FLAGS_px})
  set(ZPPSC_FLAGS_t7 -march=x86-64 -mtune=generic -msse3 -mno-ssse3)
endif()
