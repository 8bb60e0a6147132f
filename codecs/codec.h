// What the codecs of this library share: what a stream is started with, and calls into zppsc.
//
// A codec is a namespace with two classes, an Encoder and a Decoder, which registry.cpp puts into the table of codecs:
//
//   explicit Encoder(const Options& options);
//   int encode(const Zpp16s* pcm, Zpp8u* payload);      one frame; the octets written, 0 where nothing is sent
//   void setBitRate(int bitRate);                       codecs whose rate may change from frame to frame
//   int unsent(Zpp8u* payload) const;                   codecs whose standard keeps in its files what was not sent: that payload
//   unsigned flags() const;                             what the standard's test files tell of the last frame beside its bits
//
//   explicit Decoder(const Options& options);
//   bool isPayloadSize(int octets) const;               numbers of octets above 0 that a payload may have
//   bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm);
//                                                       octets 0: nothing was sent. False, with stream and pcm unchanged, where
//                                                       the octets are no payload
//   void conceal(Zpp16s* pcm);                          the frame was lost
//   bool decodeAs(int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm);
//                                                       codecs whose standard numbers receive types: this one holds, not what
//                                                       the payload says
//
// Codecs that code any number of whole frames in a call have other members: see SampleBasedEncoder in registry.h.
//
// An object is all of a stream's state: it has no pointers and no virtual functions, so that a copied block of memory continues
// the stream. Nothing allocates, throws, prints or locks.
#pragma once

#include "zppsc.h"

namespace codecs {

// As the table row has checked them: a bit rate of the codec, in bit/s, and features that it has
struct Options {
  int bitRate;
  bool dtx;
  int variant;
};

// For calls whose arguments are right by construction. Builds with sanitizers stop at a mistake.
inline void require([[maybe_unused]] ZppStatus status) {
#ifdef ZPPSC_CHECKED
  if (status != zppStsOk) __builtin_trap();
#endif
}

// The same for calls that may return a warning: whether they do
inline bool warns(ZppStatus status) {
  if (status <= 0) require(status);
  return status > 0;
}

}  // namespace codecs
