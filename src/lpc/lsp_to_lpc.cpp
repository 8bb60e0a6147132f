// LSPs to LP coefficients (ITU-T G.729 clause 3.2.6, 3GPP TS 26.090 clause 5.2.4).
#include "core/fixed_point.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

// The polynomial whose roots are five LSPs, every other one from lsp on: coefficients 0..5, Q24. Multiplied out without
// looking: false when a step left 32 bits, which the standard saturates. As long as four roots are multiplied none can: the
// coefficients of (1 + z)^8 bound them, 70 at the most, of which two come to 112 in the last step, where 128 is too large.
bool expandRootsExactly(const Zpp16s* lsp, Zpp32s* g) {
  Zpp64s f[6] = {1 << 24, -1024 * lsp[0]};
  const auto multiplied = [&f](int m, Zpp64s q) { return (((f[m - 1] >> 1) * q) >> 15) * 4; };
#pragma GCC unroll 4
  for (int i = 2; i <= 4; ++i) {
    const Zpp64s q = lsp[2 * (i - 1)];
    f[i] = f[i - 2];
#pragma GCC unroll 4
    for (int m = i; m >= 2; --m) f[m] += f[m - 2] - multiplied(m, q);
    f[1] -= 1024 * q;
  }
  const Zpp64s q = lsp[8];
  Zpp64s beyond = 0;  // from bit 32 on set where something was
  f[5] = f[3];
#pragma GCC unroll 4
  for (int m = 5; m >= 2; --m) {
    const Zpp64s twice = multiplied(m, q);
    f[m] += f[m - 2] - twice;
    beyond |= (twice + (Zpp64s{1} << 31)) | (f[m] + (Zpp64s{1} << 31));
  }
  f[1] -= 1024 * q;
  for (int i = 0; i <= 5; ++i) g[i] = static_cast<Zpp32s>(f[i]);
  return beyond >> 32 == 0;
}

// The same with saturation at every step
void expandRootsSaturating(const Zpp16s* lsp, Zpp32s* g) {
  g[0] = 1 << 24;
  g[1] = -1024 * lsp[0];
  for (int i = 2; i <= 5; ++i) {
    const Zpp16s q = lsp[2 * (i - 1)];
    g[i] = g[i - 2];
    for (int m = i; m >= 2; --m) {
      const Zpp32s twice = shlSat32(static_cast<Zpp32s>((Zpp64s{g[m - 1] >> 1} * q) >> 15), 2);
      g[m] = subSat32(addSat32(g[m], g[m - 2]), twice);
    }
    g[1] = subSat32(g[1], 1024 * q);
  }
}

void expandRoots(const Zpp16s* lsp, Zpp32s* g) {
  if (!expandRootsExactly(lsp, g)) expandRootsSaturating(lsp, g);
}

Zpp16s toQ12(Zpp32s twice) { return wrap16((twice >> 13) + ((twice >> 12) & 1)); }

}  // namespace

void ownLSPToLPC_G729_16s(const Zpp16s* lsp, Zpp16s* a) {
  Zpp32s f1[6], f2[6];
  expandRoots(lsp, f1);
  expandRoots(lsp + 1, f2);
  for (int i = 5; i > 0; --i) {
    f1[i] = addSat32(f1[i], f1[i - 1]);
    f2[i] = subSat32(f2[i], f2[i - 1]);
  }
  a[0] = 4096;
  for (int i = 1; i <= 5; ++i) {
    a[i] = toQ12(addSat32(f1[i], f2[i]));
    a[11 - i] = toQ12(subSat32(f1[i], f2[i]));
  }
}
