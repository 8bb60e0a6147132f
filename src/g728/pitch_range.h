// Range of the pitch period of ITU-T G.728, in samples.
#pragma once

namespace zpp::g728 {

inline constexpr int kMinPitch = 20, kMaxPitch = 140;

}  // namespace zpp::g728
