#include <algorithm>

#include "g729/fixed_codebook/fixed_codebook.h"
#include "g729/fixed_codebook/kernels.h"
#include "kernels/rig.h"

namespace test {

using namespace zpp;

ZPP_G729_FCB_KERNELS(ZPP_KERNEL_TYPE)

void runG729FcbKernels(const Options& options, Tally& tally);
void runG729FcbKernels(const Options& options, Tally& tally) { ZPP_G729_FCB_KERNELS(ZPP_RUN_KERNEL) }

namespace {

// Runs of different inputs for each kind of content
const Sizes repeated = {{1, 2, 3, 4, 5, 6, 7, 8}, {1}};

// A response that decays as those of speech do
void decaying(Random& random, Zpp16s* h) {
  double level = 4096;
  for (int n = 0; n < kSubframe; ++n, level *= 0.8)
    h[n] = static_cast<Zpp16s>(level * (1 + 0.2 * static_cast<double>(random.between(-3, 3))));
}

// The usual level and the full range, whose sums may saturate
template <class Rig>
const Zpp16s* impulse(Rig& rig) {
  if (rig.keep) return rig.template made<Zpp16s>(kSubframe, [&](Zpp16s* h) { decaying(rig.random, h); });
  const Zpp16s most = rig.scalar(0, 1) == 0 ? Zpp16s{32767} : Zpp16s{5000};
  return rig.template in<Zpp16s>(kSubframe, static_cast<Zpp16s>(-most - 1), most);
}

// Few large magnitudes among many small ones, as the peaks of a backward-filtered target; or the rig's contents
template <class Rig>
const Zpp16s* magnitudes(Rig& rig) {
  if (!rig.keep && rig.scalar(0, 1) == 0) return rig.template in<Zpp16s>(kSubframe, 0, 32767);
  return rig.template made<Zpp16s>(kSubframe, [&](Zpp16s* d) {
    for (int n = 0; n < kSubframe; ++n) d[n] = static_cast<Zpp16s>(rig.scalar(0, 90) * rig.scalar(0, 90));
  });
}

// The matrix of a response, whose energies are positive and close to each other; or the rig's contents
template <class Rig>
const Zpp16s* matrix(Rig& rig, void (*build)(const Zpp16s*, Zpp16s*)) {
  if (!rig.keep && rig.scalar(0, 1) == 0) return rig.template in<Zpp16s>(kMatrix);
  return rig.template made<Zpp16s>(kMatrix, [&](Zpp16s* r) {
    Zpp16s h[kSubframe];
    decaying(rig.random, h);
    build(h, r);
  });
}

// A threshold that lets some of the triples pass, as the search's own does
template <class Rig>
Zpp16s threshold(Rig& rig, const Zpp16s* d) {
  int sum = 0, most = 0;
  for (int track = 0; track < 3; ++track) {
    for (int i = 0; i < kPositions; ++i) sum += d[kPositions * track + i];
    most += *std::max_element(d + kPositions * track, d + kPositions * (track + 1));
  }
  const int mean = sum / 8, percent = rig.keep ? 40 : rig.scalar(-10, 110);
  return sat16(mean + (most - mean) * percent / 100);
}

template <class Rig>
TrackTerms terms(Rig& rig) {
  const auto values = [&] { return rig.template in<Zpp16s>(kPositions); };
  return {rig.keep || rig.scalar(0, 1) == 0 ? rig.template in<Zpp16s>(kPositions, 0, 8191) : values(), values()};
}

}  // namespace

DRIVE(ownToeplizMatrix_G729_16s, repeated) { rig.run(impulse(rig), rig.out<Zpp16s>(kMatrix)); }
DRIVE(ownToeplizMatrix_G729_16s32s, repeated) { rig.run(impulse(rig), rig.out<Zpp32s>(kMatrix)); }
DRIVE(ownToeplizMatrix_G729D_16s, repeated) { rig.run(impulse(rig), rig.out<Zpp16s>(kMatrix)); }
DRIVE(ownToeplizMatrix_G729D_16s32s, repeated) { rig.run(impulse(rig), rig.out<Zpp32s>(kMatrix)); }
DRIVE(ownCorrMatrix_G729E_16s, repeated) { rig.run(impulse(rig), rig.out<Zpp16s>(kDiagonals + kTracks * kBlock)); }
DRIVE(ownFixedCodebookCorrSign, repeated) {
  rig.run(rig.inOut<Zpp16s>(kBlocks * kBlock), kTrackPairsAnnexD, kBlocks, rig.in<Zpp16s>(kSubframe), rig.in<Zpp16s>(kSubframe),
          rig.in<Zpp16s>(kSubframe));
}
DRIVE(ownFixedCodebookCorrSign_32s16s, repeated) {
  rig.run(rig.inOut<Zpp32s>(kMatrix), kTrackPairs, rig.in<Zpp16s>(kSubframe), rig.in<Zpp16s>(kSubframe),
          rig.in<Zpp16s>(kSubframe), rig.out<Zpp16s>(kMatrix));
}
DRIVE(ownFixedCodebookSearch_G729, repeated) {
  const Zpp16s* d = magnitudes(rig);
  rig.run(d, matrix(rig, ownToeplizMatrix_G729_16s_PX), threshold(rig, d), rig.keep ? 105 : rig.scalar(-80, 600),
          rig.out<Zpp8u>(4));
}
DRIVE(ownFixedCodebookSearch_G729A, repeated) {
  rig.run(magnitudes(rig), matrix(rig, ownToeplizMatrix_G729_16s_PX), rig.out<Zpp8u>(4));
}
DRIVE(ownD2i40_11, repeated) { rig.run(magnitudes(rig), matrix(rig, ownToeplizMatrix_G729D_16s_PX), rig.out<Zpp8u>(2)); }
DRIVE(ownPulsePair_G729E_16s, repeated) {
  const TrackTerms outer = terms(rig), inner = terms(rig);
  rig.run(rig.scalar<Zpp16s>(-32768, 32767), rig.scalar<Zpp16s>(0, 20000), outer, inner, rig.in<Zpp16s>(kBlock));
}

}  // namespace test
