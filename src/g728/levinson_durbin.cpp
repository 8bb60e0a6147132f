// Levinson-Durbin recursion and bandwidth expansion (ITU-T G.728 clause 3.7, blocks 37, 38, 44, 45, 50, 51 and 85, Annex G).
#include "g728/levinson_durbin.h"

#include "core/checks.h"
#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr int kFirstWarningStage = 12;

// Predictor with its prediction error, as a recursion carries it on
struct Predictor {
  Zpp16s a[kMaxLevinsonOrder];
  Zpp16s rc1 = 0, residual = 0;
  int order = 0, shift = 0;  // coefficients have 15 - shift bits behind the point

  // Stage 1. A first correlation as large as the energy or larger passes; the second stage then breaks down.
  bool start(const Zpp16s* r) {
    if (r[0] <= 0) return false;
    const Reflection reflection{quotientQ16(static_cast<Zpp32u>(r[1] < 0 ? -r[1] : r[1]), static_cast<Zpp32u>(r[0])), r[1] > 0};
    rc1 = a[0] = reflection.rounded();
    residual = rounded(r[0] * Zpp64s{65536} + Zpp64s{2} * rc1 * r[1]);
    order = 1;
    return true;
  }

  // Stages up to the order; the status is that of the breakdown, if there is one.
  ZppStatus advance(const Zpp16s* r, int finalOrder) {
    if (order == 0 && !start(r)) return zppStsLpcCalcErr;
    order = ownLevinsonDurbin_G728_16s(r, order, finalOrder, a, &residual, &shift);
    if (order == finalOrder) return zppStsOk;
    return order + 1 < kFirstWarningStage ? zppStsLpcCalcErr : zppStsOverflowWarn;
  }

  void deliver(Zpp16s* dst, int len, Zpp16s* error, int* scale) const {
    std::copy_n(a, order, dst);
    std::fill(dst + order, dst + len, Zpp16s{});
    *error = residual;
    *scale = 15 - shift;
  }
};

}  // namespace

ZppStatus zppsLevinsonDurbin_G728_16s_Sfs(const Zpp16s* src, int order, Zpp16s* dst, Zpp16s* rc1, Zpp16s* residual,
                                          int* scale) {
  if (anyNull(src, dst, rc1, residual, scale)) return zppStsNullPointer;
  if (outside(order, 1, kMaxLevinsonOrder)) return zppStsBadSize;
  Predictor p;
  const ZppStatus status = p.advance(src, order);
  if (status < 0) return status;
  p.deliver(dst, order, residual, scale);
  *rc1 = p.rc1;
  return status;
}

ZppStatus zppsLevinsonDurbin_G728_16s_ISfs(const Zpp16s* src, int startOrder, int order, Zpp16s* srcDst, Zpp16s* rc1,
                                           Zpp16s* residual, int* scale) {
  if (anyNull(src, srcDst, rc1, residual, scale)) return zppStsNullPointer;
  if (outside(order, 1, kMaxLevinsonOrder)) return zppStsBadSize;
  if (outside(startOrder, 0, order)) return zppStsOutOfRange;
  if (outside(*scale, 0, 15)) return zppStsBadScale;
  Predictor p;
  if (startOrder > 0) {
    std::copy_n(srcDst, startOrder, p.a);
    p.residual = *residual;
    p.shift = 15 - *scale;
    p.order = startOrder;
  }
  const ZppStatus status = p.advance(src, order);
  if (status < 0) return status;
  p.deliver(srcDst, order, residual, scale);
  if (startOrder == 0) *rc1 = p.rc1;
  return status;
}

ZppStatus zppsWeightLPC_G728_16s_Sfs(const Zpp16s* src, const Zpp16s* weight, Zpp16s* dst, int len, int scale) {
  if (anyNull(src, weight, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(scale, 13, 15)) return zppStsBadScale;
  if (!ownWeightLPC_G728_16s(src, weight, dst, len, 16 - scale)) return zppStsOverflowWarn;
  return zppStsOk;
}
