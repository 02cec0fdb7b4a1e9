// Page sources: what builds is dumped, has an outline, doesn't differ from itself, and is checked.
#include "folder.h"
#include "kit/check/checkpage.h"
#include "kit/diff/pagediff.h"
#include "kit/errors.h"
#include "kit/source/pagebuild.h"
#include "kit/source/pagedump.h"
#include "kit/source/pageoutline.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  enterFolder();
  writeBytes("p.yaml", data, size);
  try {
    const BuiltPage built = compilePage("p.yaml");
    outlineJson(outlinePage("p.yaml", built.bytes, built.places));
    dumpPage("p.kpg", built.bytes);
    if (!pageDifferences("p.yaml", "p.yaml").empty()) __builtin_trap();
    checkPageSource("p.yaml");
  } catch (const KitError&) {
  }
  return 0;
}
