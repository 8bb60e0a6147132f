/* G.726 codes, one a byte, on standard input; law code words of the decoder, one a byte, on standard output: RATE LAW (0 mu, 1
 * A). For scripts/conformance: the program zppcodec decodes to linear samples only. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include "zppsc.h"

int main(int argc, char** argv) {
  static char state[92];
  int c;
  const int rate = argc == 3 ? atoi(argv[1]) : 0;
  const ZppSpeechRate rates[] = {ZPP_RATE_16000, ZPP_RATE_24000, ZPP_RATE_32000, ZPP_RATE_40000};
  if (rate < 16 || rate > 40 || rate % 8 != 0) return 1;
  if (zppsDecodeInit_G726_8u16s(state, rates[rate / 8 - 2], atoi(argv[2])) != zppStsOk) return 1;
  while ((c = getchar()) != EOF) {
    const Zpp8u code = (Zpp8u)c;
    Zpp16s word;
    if (zppsDecode_G726_8u16s(state, &code, &word, 1) != zppStsOk) return 1;
    putchar(word & 255);
  }
  return 0;
}
