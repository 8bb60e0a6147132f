// The table of codecs. A codec moves in with one row.
#include "codecs/registry.h"

#include "codecs/amr/amr.h"
#include "codecs/amrwb/decoder.h"
#include "codecs/amrwb/encoder.h"
#include "codecs/g711/g711.h"
#include "codecs/g7221/g7221.h"
#include "codecs/g723/g723.h"
#include "codecs/g726/g726.h"
#include "codecs/g728/decoder.h"
#include "codecs/g728/encoder.h"
#include "codecs/g729/g729.h"
#include "codecs/g729/single_precision/g729f.h"
#include "codecs/gsmfr/gsmfr.h"

namespace codecs {
namespace {

constexpr unsigned kDtx = ZPPC_FEATURE_DTX, kConcealment = ZPPC_FEATURE_CONCEALMENT;

constexpr int k64000[] = {64000};
constexpr int kG726[] = {16000, 24000, 32000, 40000};
constexpr int kG7221[] = {24000, 32000};
constexpr int kG723[] = {5300, 6300};
constexpr int k16000[] = {16000};
constexpr int k8000[] = {8000};
constexpr int kAmrWb[] = {6600, 8850, 12650, 14250, 15850, 18250, 19850, 23050, 23850};
constexpr int k13000[] = {13000};
constexpr int kG729[] = {6400, 8000, 11800};

template <std::size_t count>
constexpr ZppcCodec about(const char* name, const char* standard, const char* rtpEncoding, int sampleRate, int delaySamples,
                          const int (&bitRates)[count], int defaultBitRate, unsigned features) {
  return {.name = name,
          .standard = standard,
          .rtpEncoding = rtpEncoding,
          .sampleRate = sampleRate,
          .frameSamples = 0,
          .delaySamples = delaySamples,
          .maxPayload = 0,
          .bitRates = bitRates,
          .bitRateCount = static_cast<int>(count),
          .defaultBitRate = defaultBitRate,
          .features = features};
}

// Encoder, decoder, samples a frame, octets at most; name, standard, RTP encoding, Hz, delay, bit rates, features; variants
constexpr CodecRow kRows[] = {
    codecRow<g711::Encoder<g711::Law::mu>, g711::Decoder<g711::Law::mu>, 1, 1>(
        about("g711-mulaw", "ITU-T G.711 mu-law", "PCMU", 8000, 0, k64000, 64000, 0)),
    codecRow<g711::Encoder<g711::Law::a>, g711::Decoder<g711::Law::a>, 1, 1>(
        about("g711-alaw", "ITU-T G.711 A-law", "PCMA", 8000, 0, k64000, 64000, 0)),
    codecRow<g726::Encoder, g726::Decoder, g726::kGroup, g726::kGroup * 5 / 8>(
        about("g726", "ITU-T G.726", "G726-32", 8000, 0, kG726, 32000, 0), 1),
    codecRow<g7221::Encoder, g7221::Decoder, 320, 80>(
        about("g722.1", "ITU-T G.722.1", "G7221", 16000, 320, kG7221, 24000, kConcealment)),
    codecRow<g723::Encoder, g723::Decoder, g723::kFrame, g723::kMaxPayload>(
        about("g723.1", "ITU-T G.723.1", "G723", 8000, 60, kG723, 6300, kDtx | kConcealment), 1),
    codecRow<g728::Encoder, g728::Decoder, g728::kCycle, g728::kPayload>(
        about("g728", "ITU-T G.728", "G728", 8000, 0, k16000, 16000, kConcealment), 1),
    codecRow<g729::Encoder, g729::Decoder, 80, 10>(
        about("g729", "ITU-T G.729", "G729", 8000, 40, k8000, 8000, kDtx | kConcealment)),
    codecRow<g729::EncoderA, g729::DecoderA, 80, 10>(
        about("g729a", "ITU-T G.729 Annex A", "G729", 8000, 40, k8000, 8000, kDtx | kConcealment)),
    codecRow<g729::EncoderI, g729::DecoderI, 80, 15>(
        about("g729i", "ITU-T G.729 Annex I", "G729", 8000, 40, kG729, 8000, kDtx | kConcealment)),
    codecRow<g729f::Encoder<g729f::MainBodyEncoder>, g729f::Decoder<g729f::MainBodyPostfilter>, 80, 10>(
        about("g729f", "ITU-T G.729 Annex C", "G729", 8000, 40, k8000, 8000, kConcealment)),
    codecRow<g729f::Encoder<g729f::AnnexAEncoder>, g729f::Decoder<g729f::AnnexAPostfilter>, 80, 10>(
        about("g729af", "ITU-T G.729 Annex C (Annex A)", "G729", 8000, 40, k8000, 8000, kConcealment)),
    codecRow<gsmfr::Encoder, gsmfr::Decoder, gsmfr::kFrame, gsmfr::kPayload>(
        about("gsm-fr", "3GPP TS 46.010 (GSM full rate)", "GSM", 8000, 0, k13000, 13000, kDtx | kConcealment)),
    codecRow<amr::Encoder, amr::Decoder, amr::kFrame, amr::kMaxPayload>(
        about("amr", "3GPP TS 26.071 (GSM-AMR)", "AMR", 8000, 40, amr::kBitRates, 12200, kDtx | kConcealment), 1),
    codecRow<amrwb::Encoder, amrwb::Decoder, amrwb::kInputFrame, amrwb::kMaxPayload>(
        about("amr-wb", "3GPP TS 26.171 (AMR-WB, ITU-T G.722.2)", "AMR-WB", 16000, 95, kAmrWb, 12650, kDtx | kConcealment)),
};

constexpr auto kPublic = [] {
  struct {
    ZppcCodec rows[std::size(kRows)];
  } table{};
  for (std::size_t i = 0; i < std::size(kRows); ++i) table.rows[i] = kRows[i].codec;
  return table;
}();

}  // namespace

std::span<const CodecRow> codecRows() { return kRows; }

const CodecRow* rowOf(const ZppcCodec* codec) {
  for (std::size_t i = 0; i < std::size(kRows); ++i)
    if (codec == &kPublic.rows[i]) return &kRows[i];
  return nullptr;
}

}  // namespace codecs

extern "C" const ZppcCodec* zppcCodecs(int* count) {
  if (count != nullptr) *count = static_cast<int>(std::size(codecs::kPublic.rows));
  return codecs::kPublic.rows;
}
