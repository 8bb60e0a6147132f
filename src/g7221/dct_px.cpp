// DCT-IV of 320 samples: portable kernels.
//
// Five splitting stages take the frame apart into 32 blocks of 10 samples, a 10-point DCT-IV (a matrix product) transforms
// each, and five stages of rotations put the blocks together again. Forward and inverse share this shape and differ in
// scaling: the forward transform halves in every splitting stage, the inverse one in the first only.
#include "core/fixed_point.h"
#include "g7221/kernels.h"
#include "g7221/tables.h"

using namespace zpp;

namespace {

constexpr int kFrame = 320;

Zpp16s halved(Zpp32s x) { return static_cast<Zpp16s>(x >> 1); }
Zpp16s saturated(Zpp32s x) { return sat16(x); }

// Splits each block of n samples: sums of neighbours fill its first half, differences its second half from the end.
template <Zpp16s (*scale)(Zpp32s)>
void split(const Zpp16s* x, Zpp16s* y, int n) {
  for (int block = 0; block < kFrame; block += n)
    for (int i = 0; i < n / 2; ++i) {
      const Zpp32s a = x[block + 2 * i], b = x[block + 2 * i + 1];
      y[block + i] = scale(a + b);
      y[block + n - 1 - i] = scale(a - b);
    }
}

// The first stage of the inverse transform, dithered and halved
void splitDithered(const Zpp16s* x, Zpp16s* y) {
  for (int i = 0; i < kFrame / 2; ++i) {
    const Zpp16s a = x[2 * i], b = x[2 * i + 1];
    y[i] = halved(addSat16(a, cnstDither_G722[2 * i]) + b);
    y[kFrame - 1 - i] = halved(addSat16(a, cnstDither_G722[2 * i + 1]) - b);
  }
}

// The 10-point transforms. Sums are exact and saturate once: two products fit 32 bits, ten do not.
void transformBlocks(const Zpp16s* x, Zpp16s* y, const Zpp16s* matrix) {
  for (int block = 0; block < kFrame; block += 10, x += 10, y += 10)
    for (int k = 0; k < 10; ++k) {
      const Zpp16s* row = matrix + 10 * k;
      Zpp64s sum = 0;
      for (int j = 0; j < 10; j += 2) sum += row[j] * x[j] + row[j + 1] * x[j + 1];
      y[k] = roundHigh16(sat32(2 * sum));
    }
}

// A rotated sample: factors are Q`shift`, two products fit 32 bits.
template <int shift>
Zpp16s rotated(Zpp32s sum) {
  return sat16((sum + (1 << (shift - 1))) >> shift);
}

// Joins the halves of each block of n samples by rotations; factors: (cos, -sin) of the stage's n/2 pairs. Even and odd
// positions rotate in opposite directions.
template <int shift>
void rotate(const Zpp16s* x, Zpp16s* y, int n, const Zpp16s* factors) {
  for (int block = 0; block < kFrame; block += n)
    for (int i = 0; i < n / 2; i += 2) {
      const Zpp16s *a = x + block + i, *b = a + n / 2, *f = factors + 2 * i;
      Zpp16s *first = y + block + i, *last = y + block + n - 1 - i;
      first[0] = rotated<shift>(a[0] * f[0] - b[0] * f[1]);
      last[0] = rotated<shift>(a[0] * f[1] + b[0] * f[0]);
      first[1] = rotated<shift>(a[1] * f[2] + b[1] * f[3]);
      last[-1] = rotated<shift>(a[1] * f[3] - b[1] * f[2]);
    }
}

// The frame is in x and stays there; y is scratch.
template <Zpp16s (*scale)(Zpp32s), int shift>
void transform(Zpp16s* x, Zpp16s* y, const Zpp16s* matrix, const Zpp16s* factors) {
  split<scale>(x, y, 160);
  split<scale>(y, x, 80);
  split<scale>(x, y, 40);
  split<scale>(y, x, 20);
  transformBlocks(x, y, matrix);
  rotate<shift>(y, x, 20, factors);
  rotate<shift>(x, y, 40, factors + 2 * 10);
  rotate<shift>(y, x, 80, factors + 2 * 30);
  rotate<shift>(x, y, 160, factors + 2 * 70);
  rotate<shift>(y, x, 320, factors + 2 * 150);
}

}  // namespace

void ownDCTFwd_G722_16s_PX(const Zpp16s* src, Zpp16s* dst) {
  Zpp16s x[kFrame], y[kFrame];
  for (int n = 0; n < kFrame; ++n) y[n] = addSat16(src[n], cnstAnalBias_G722[n]);
  split<halved>(y, x, kFrame);
  transform<halved, 15>(x, y, cnstDCTCoreFwd_G722, cnstCosSinFwd_G722);
  for (int n = 0; n < kFrame; ++n) dst[n] = x[n];
}

void ownDCTInv_G722_16s_PX(const Zpp16s* src, Zpp16s* dst) {
  Zpp16s x[kFrame], y[kFrame];
  splitDithered(src, x);
  transform<saturated, 14>(x, y, cnstDCTCoreInv_G722, cnstCosSinInv_G722);
  for (int n = 0; n < kFrame; ++n) dst[n] = addSat16(x[n], cnstSynthesisBias7khz_G722[n]);
}
