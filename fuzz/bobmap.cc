// Line tables: what is read is written as it was read.
#include "kit/lines/bobmap.h"
#include "kit/errors.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    const BobMap map = parseBobMap("f.bobmap", {reinterpret_cast<const char*>(data), size});
    CodePlaces places;
    places.add(map.codes);
    for (const BobCodeLines& code : map.codes)
      if (places.placeOf(code.hash, 7).empty()) __builtin_trap();
    const BobMap again = parseBobMap("f.bobmap", bobMapText("f.bobmap", map));
    for (size_t i = 0; i < map.codes.size(); ++i) {
      BobCodeLines code = again.codes.at(i);
      code.file = map.codes[i].file;  // a path that leads out of the root is another then
      if (code != map.codes[i]) __builtin_trap();
    }
  } catch (const KitError&) {
  }
  return 0;
}
