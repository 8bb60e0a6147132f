// ITU-T G.726 ADPCM: entries.
#include "core/checks.h"
#include "g726/kernels.h"
#include "g726/state.h"

using namespace zpp;
using namespace zpp::g726;

namespace {

// 0..3, or -1 for a rate that G.726 does not have
constexpr int rateIndex(Zpp32s rate) {
  switch (rate) {
    case ZPP_RATE_16000:
      return 0;
    case ZPP_RATE_24000:
      return 1;
    case ZPP_RATE_32000:
      return 2;
    case ZPP_RATE_40000:
      return 3;
    default:
      return -1;
  }
}

}  // namespace

ZppStatus zppsEncodeGetStateSize_G726_16s8u(Zpp32s* size) {
  if (anyNull(size)) return zppStsNullPointer;
  *size = encoderStateSize;
  return zppStsOk;
}

ZppStatus zppsDecodeGetStateSize_G726_8u16s(Zpp32s* size) {
  if (anyNull(size)) return zppStsNullPointer;
  *size = decoderStateSize;
  return zppStsOk;
}

ZppStatus zppsEncodeInit_G726_16s8u(void* state, Zpp32s rate) {
  if (anyNull(state)) return zppStsNullPointer;
  if (rateIndex(rate) < 0) return zppStsOutOfRange;
  ownEncodeInit_G726_16s8u(state, rateIndex(rate));
  return zppStsOk;
}

ZppStatus zppsDecodeInit_G726_8u16s(void* state, Zpp32s rate, Zpp32s law) {
  if (anyNull(state)) return zppStsNullPointer;
  if (rateIndex(rate) < 0) return zppStsOutOfRange;
  if (outside(law, 0, 2)) return zppStsOutOfRange;
  ownDecodeInit_G726_8u16s(state, rateIndex(rate), law);
  return zppStsOk;
}

ZppStatus zppsEncode_G726_16s8u(void* state, const Zpp16s* src, Zpp8u* dst, Zpp32u len) {
  if (anyNull(state, src, dst)) return zppStsNullPointer;
  if (len == 0) return zppStsBadSize;
  ownEncode_G726_16s8u(state, src, dst, len);
  return zppStsOk;
}

ZppStatus zppsDecode_G726_8u16s(void* state, const Zpp8u* src, Zpp16s* dst, Zpp32u len) {
  if (anyNull(state, src, dst)) return zppStsNullPointer;
  if (len == 0) return zppStsBadSize;
  ownDecode_G726_8u16s(state, src, dst, len);
  return zppStsOk;
}

void ownEncodeInit_G726_16s8u(void* state, int rate) {
  AdpcmState reset;
  reset.rate = static_cast<Zpp8u>(rate);
  std::memset(state, 0, encoderStateSize);
  storeState(reset, state);
}

void ownDecodeInit_G726_8u16s(void* state, int rate, int law) {
  AdpcmState reset;
  reset.rate = static_cast<Zpp8u>(rate);
  reset.law = static_cast<Zpp8u>(law);
  std::memset(state, 0, decoderStateSize);
  storeState(reset, state);
}
