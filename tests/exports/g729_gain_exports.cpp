#include "exports/export_table.h"

namespace test {

std::vector<Export> g729GainExports() {
  const Argument memory = inOut("memory", 4), index = in("index", 2).orNull(), gain = inOut("gain", 2);
  const auto quantiser = [&](const char* name, auto* function) {
    return row(name, function, in("target", 40), in("adaptive", 40), in("code", 40), in("filtered", 40), memory,
               out("index", 2), out("gain", 2), choice("taming", 0, {-1, 2}));
  };
  return {
      row(FUNCTION(zppsDecodeGain_G729_16s), value("energy", 40000000), memory, index, gain),
      row(FUNCTION(zppsDecodeGain_G729I_16s), value("energy", 40000000), value("attenuation", 29491), memory, index, gain),
      quantiser(FUNCTION(zppsGainQuant_G729_16s)),
      quantiser(FUNCTION(zppsGainQuant_G729D_16s)),
  };
}

}  // namespace test
