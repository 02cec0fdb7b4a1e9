// Project files: what is read can be planned.
#include "folder.h"
#include "kit/errors.h"
#include "kit/project/plan.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  enterFolder();
  writeBytes("vistrel.yaml", data, size);
  try {
    planProject(readProject("vistrel.yaml"));
  } catch (const KitError&) {
  }
  return 0;
}
