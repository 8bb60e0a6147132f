// ITU-T G.726 ADPCM: portable kernels.
#include "g726/adpcm.h"
#include "g726/kernels.h"

using namespace zpp;
using namespace zpp::g726;

namespace {

class Predictor {
 public:
  explicit Predictor(const AdpcmState& s) {
    std::copy_n(s.coefficient, taps, coefficient);
    std::transform(s.history, s.history + taps, history, Floating::fromWord);
  }
  void store(AdpcmState& s) const {
    std::copy_n(coefficient, taps, s.coefficient);
    for (int k = 0; k < taps; ++k) s.history[k] = history[k].word();
  }

  Estimate estimate() const {
    int sum = 0;
    for (int k = 0; k < zeros; ++k) sum += multiplied(coefficient[k], history[k]);
    const int whole =
        sum + multiplied(coefficient[zeros], history[zeros]) + multiplied(coefficient[zeros + 1], history[zeros + 1]);
    return {wrap16(whole) >> 1, wrap16(sum) >> 1};
  }

  int pole1() const { return coefficient[zeros]; }
  int pole2() const { return coefficient[zeros + 1]; }

  template <int leak>
  void update(int new1, int new2, Difference dq, int reconstructed) {
    const int step = dq.magnitude == 0 ? 0 : withSign(128, dq.sign);
    for (int k = 0; k < zeros; ++k)
      coefficient[k] = wrap16(coefficient[k] + withSign(step, history[k].sign) - (coefficient[k] >> leak));
    coefficient[zeros] = static_cast<Zpp16s>(new1);
    coefficient[zeros + 1] = static_cast<Zpp16s>(new2);
    std::copy_backward(history, history + zeros - 1, history + zeros);
    history[0] = Floating::of(dq.sign, dq.magnitude);
    history[zeros + 1] = history[zeros];
    history[zeros] = Floating::of(reconstructed >> 31, std::abs(reconstructed) & 32767);
  }

  void clearCoefficients() { std::fill_n(coefficient, taps, Zpp16s{0}); }

 private:
  Zpp16s coefficient[taps];
  Floating history[taps];
};

}  // namespace

void ownEncode_G726_16s8u_PX(void* state, const Zpp16s* src, Zpp8u* dst, Zpp32u len) {
  encodeAtRate<Predictor>(state, src, dst, len);
}

void ownDecode_G726_8u16s_PX(void* state, const Zpp8u* src, Zpp16s* dst, Zpp32u len) {
  decodeAtRate<Predictor>(state, src, dst, len);
}
