/* zppsc: bit-exact speech-coding primitives with a C ABI.
 *
 * Every function performs one step of a speech codec on buffers that the caller owns. The integer functions reproduce the
 * fixed-point arithmetic of the standard that they name bit for bit. The library allocates nothing, keeps no hidden state,
 * prints nothing, and may be called from any number of threads as long as two calls do not share an output or a state block.
 *
 * Conventions, common to all functions:
 *
 * - Arguments: sources, destinations, lengths, then controls (rate, mode, scale factor); state blocks as each function says.
 *   Lengths count elements, never bytes. Buffers may have any alignment of their element type; state blocks any at all.
 * - Source and destination must not overlap unless they are the very same buffer or the function says otherwise. Filter
 *   coefficients and impulse responses must not overlap what is written.
 * - Checks run in a fixed order: null pointers, lengths, enumerated values, scale factors and shifts, ranges of coded
 *   parameters. The first that fails decides the status. On an error (a negative status) nothing has been written, unless a function says otherwise.
 *   A positive status is a warning: the function says what it has written.
 * - Names starting with an underscore are internal steps that codecs share: exported, but they trust their arguments unless
 *   their comment lists a status.
 * - "Qn" means a fixed-point value times 2^n. sat16 clamps to -32768..32767, sat32 to -2147483648..2147483647.
 * - "_I": in place. "Sfs": the exact result times 2^-scaleFactor, rounded to nearest with ties to even, saturated; factors
 *   beyond +-31 act as +-31. "NR": the final narrowing rounds half up.
 */
#ifndef ZPPSC_H
#define ZPPSC_H

#include "zppsc/types.h"

#include "zppsc/core.h"
#include "zppsc/lpc.h"

#include "zppsc/amr.h"
#include "zppsc/amrwb.h"
#include "zppsc/g711.h"
#include "zppsc/g7221.h"
#include "zppsc/g723.h"
#include "zppsc/g726.h"
#include "zppsc/g728.h"
#include "zppsc/g729.h"
#include "zppsc/gsmfr.h"

#endif
