// The intrinsics of SSE, and of SSE2 where the file's level has it. On aarch64 they are SIMDe's, which writes each as the NEON
// instructions of the same result: the kernels of x86 are those of level n8 too. Include it from *_a6.cpp and *_w7.cpp files
// only.
#pragma once

#if defined(__aarch64__)
#define SIMDE_ENABLE_NATIVE_ALIASES
#include <simde/x86/sse2.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#else
#include <xmmintrin.h>
#endif
