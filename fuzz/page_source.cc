// Page sources, beside two files of scripts: what builds is dumped and has an outline. Some, for it takes a player, are
// also checked, and don't differ from themselves.
#include "choices.h"
#include "folder.h"
#include "kit/check/checkpage.h"
#include "kit/diff/pagediff.h"
#include "kit/errors.h"
#include "kit/source/pagebuild.h"
#include "kit/source/pagedump.h"
#include "kit/source/pageoutline.h"
#include "kit/source/pagesource.h"

namespace {

void tryPlain() {
  try {
    plainPageSource("p.yaml");
  } catch (const KitError&) {  // it says why
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (enterFolder()) {
    std::ofstream("s.bob") << "define f() {\n  topFrame.LoadPage(\"y.kpg\");\n}\n";
    std::ofstream("bad.bob") << "x = (1;\n";
  }
  writeBytes("p.yaml", data, size);
  try {
    const BuiltPage built = compilePage("p.yaml", [](const KitMessage&) {}, {.lines = size % 2 == 0});
    outlineJson(outlinePage("p.yaml", built.bytes, built.places));
    dumpPage("p.kpg", built.bytes);
    if (!isOneOf(16, data, size)) return 0;
    if (!pageDifferences("p.yaml", "p.yaml").empty()) __builtin_trap();
    checkPageSource("p.yaml");
  } catch (const KitError&) {
    tryPlain();
  }
  return 0;
}
