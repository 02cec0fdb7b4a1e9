#include "gfx/pixel/hsgcreateproc.h"

#include <algorithm>

#include "gfx/foundation/hsglibrary.h"

// Number n lies at n - 1.

uint32_t hsGRegisterCreateProc(hsGCreateProc proc) {
  auto& procs = hsGLibrary::Current().fCreateProcs;
  auto found = std::find(procs.begin(), procs.end(), proc);
  if (found == procs.end()) found = procs.insert(procs.end(), proc);
  return uint32_t(found - procs.begin()) + 1;
}

hsGCreateProc hsGFindCreateProc(uint32_t number) {
  const auto& procs = hsGLibrary::Current().fCreateProcs;
  return number - 1 < procs.size() ? procs[number - 1] : nullptr;
}
