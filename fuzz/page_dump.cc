// Page files as the kit reads them, without a player: as a source, as an outline, and for what is wrong with them.
#include "kit/errors.h"
#include "kit/source/pagedump.h"
#include "kit/source/pagelimits.h"
#include "kit/source/pageoutline.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<uint8_t> page(data, data + size);
  try {
    dumpPage("p", page);
    outlineJson(outlinePage("p", page));
    pageProblems("p", page);
  } catch (const KitError&) {  // it says why
  }
  return 0;
}
