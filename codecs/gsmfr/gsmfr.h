// GSM full rate (3GPP TS 46.010), with the discontinuous transmission of TS 46.031 on request. A payload is 33 octets, speech
// or silence descriptor: the signature 13 in four bits, then the 76 parameters, the most significant bits first (RFC 3551).
//
// To read on: frame (the parameters and their bits), encoder with dtx for the pauses, decoder with reception for what takes the
// place of pauses and lost frames.
#pragma once

#include "codecs/gsmfr/decoder.h"
#include "codecs/gsmfr/encoder.h"
