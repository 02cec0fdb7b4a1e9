// Line tables: what is read is written as it was read, and found beside what it was made for.
#include "kit/lines/bobmap.h"
#include "folder.h"
#include "kit/errors.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (enterFolder()) std::ofstream("a.bob") << "x = 1;\n";
  writeBytes("f.bobmap", data, size);
  bobMapBeside("f.kpg", {'k'}, [](const KitMessage&) {});
  if (isBobMap({data, data + size}) && bobMapName("f.kpg") != "f.bobmap") __builtin_trap();
  try {
    const BobMap map = parseBobMap("f.bobmap", {reinterpret_cast<const char*>(data), size});
    map.isCurrent("a.bob");
    if (makeBobMap("k", map.codes).codes != map.codes) __builtin_trap();
    CodePlaces places;
    places.add(map.codes);
    for (const BobCodeLines& code : map.codes)
      if (places.placeOf(code.hash, 7).empty() || !places.linesOf(code.hash)) __builtin_trap();
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
