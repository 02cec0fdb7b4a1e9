#include "gfx/pixel/hsgcreateproc.h"

#include <algorithm>
#include <vector>

namespace {

// Number n stands at n - 1.
std::vector<hsGCreateProc>& Procs() {
  static std::vector<hsGCreateProc> procs;
  return procs;
}

}  // namespace

uint32_t hsGRegisterCreateProc(hsGCreateProc proc) {
  auto& procs = Procs();
  auto found = std::find(procs.begin(), procs.end(), proc);
  if (found == procs.end()) found = procs.insert(procs.end(), proc);
  return uint32_t(found - procs.begin()) + 1;
}

hsGCreateProc hsGFindCreateProc(uint32_t number) {
  const auto& procs = Procs();
  return number - 1 < procs.size() ? procs[number - 1] : nullptr;
}
