// The hybrid window of the backward LP analysis (ITU-T G.729 Annex E): 145 samples, the newest last, of which a recursive part
// leaves the window for good in each frame of 80, and 35 stay in its non-recursive part.
#pragma once

namespace zpp {

inline constexpr int kHybridLength = 145, kHybridLags = 31;
inline constexpr int kRecursiveFrom = 30, kNonRecursiveFrom = 110;
inline constexpr int kHybridStateSize = 4 * kHybridLags;  // the recursive sums: bytes in either format

}  // namespace zpp
