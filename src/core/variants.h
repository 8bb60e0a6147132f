// Processor variants of kernels: how a room declares them and how a build chooses.
//
// A room lists its kernels once, in its kernels.h:
//
//   #define ZPP_CORE_KERNELS(KERNEL)
//     KERNEL(ownAdd_16s, W7, void(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len))
//   ZPP_CORE_KERNELS(ZPP_DECLARE_KERNEL)
//
// The second argument names the variants beside the portable one: A6, W7, T7, V3, or A6_W7, W7_T7, W7_V3 and so on for several.
// A line declares ownAdd_16s_PX and ownAdd_16s_W7, and ownAdd_16s as the best of those that the build's level has: this is what
// entries and other kernels call. tests/kernels walks the same list, so a variant is compared with the portable kernel and
// timed, or the tests do not compile. A kernel without variants is an ordinary function without suffix.
#pragma once

#include "zppsc.h"

namespace zpp {

enum class Level { px, a6, w7, t7, v3 };
inline constexpr Level buildLevel = static_cast<Level>(ZPPSC_LEVEL);

}  // namespace zpp

#define ZPP_DECLARE_KERNEL(name, variants, ...) ZPP_DECLARE_##variants(name, __VA_ARGS__)

#define ZPP_DECLARE_ONE(name, level, suffix, ...) \
  using name##_signature = __VA_ARGS__;           \
  name##_signature name##_PX, name##_##suffix;    \
  inline constexpr name##_signature* name = zpp::buildLevel >= zpp::Level::level ? name##_##suffix : name##_PX;

#define ZPP_DECLARE_TWO(name, level1, suffix1, level2, suffix2, ...)                                   \
  using name##_signature = __VA_ARGS__;                                                                \
  name##_signature name##_PX, name##_##suffix1, name##_##suffix2;                                      \
  inline constexpr name##_signature* name = zpp::buildLevel >= zpp::Level::level2   ? name##_##suffix2 \
                                            : zpp::buildLevel >= zpp::Level::level1 ? name##_##suffix1 \
                                                                                    : name##_PX;

#define ZPP_DECLARE_A6(name, ...) ZPP_DECLARE_ONE(name, a6, A6, __VA_ARGS__)
#define ZPP_DECLARE_W7(name, ...) ZPP_DECLARE_ONE(name, w7, W7, __VA_ARGS__)
#define ZPP_DECLARE_T7(name, ...) ZPP_DECLARE_ONE(name, t7, T7, __VA_ARGS__)
#define ZPP_DECLARE_V3(name, ...) ZPP_DECLARE_ONE(name, v3, V3, __VA_ARGS__)
#define ZPP_DECLARE_A6_W7(name, ...) ZPP_DECLARE_TWO(name, a6, A6, w7, W7, __VA_ARGS__)
#define ZPP_DECLARE_W7_T7(name, ...) ZPP_DECLARE_TWO(name, w7, W7, t7, T7, __VA_ARGS__)
#define ZPP_DECLARE_A6_V3(name, ...) ZPP_DECLARE_TWO(name, a6, A6, v3, V3, __VA_ARGS__)
#define ZPP_DECLARE_W7_V3(name, ...) ZPP_DECLARE_TWO(name, w7, W7, v3, V3, __VA_ARGS__)
