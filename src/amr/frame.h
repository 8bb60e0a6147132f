// Sizes that all steps of GSM-AMR share.
#pragma once

inline constexpr int kSubframe = 40;
