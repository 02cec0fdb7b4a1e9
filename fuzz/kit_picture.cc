// Pictures and colour tables as the kit reads them.
#include "kit/errors.h"
#include "kit/pictures/clutfile.h"
#include "kit/pictures/enginecolors.h"
#include "kit/pictures/gifpicture.h"
#include "kit/pictures/kpxfile.h"
#include "kit/pictures/png.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<uint8_t> bytes(data, data + size);
  parseClut(bytes);
  for (const auto& read : {
           +[](const std::vector<uint8_t>& b) { toEngineColors(decodePng("f", b), 0x102030); },
           +[](const std::vector<uint8_t>& b) { toEngineColors(decodeGif("f", b), {}); },
           +[](const std::vector<uint8_t>& b) { summarizeGif("f", b); },
           +[](const std::vector<uint8_t>& b) { parseKpx("f", b); },
       }) {
    try {
      read(bytes);
    } catch (const KitError&) {  // as it should
    }
  }
  return 0;
}
